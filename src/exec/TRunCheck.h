#pragma once

#include "app/TTypes.h"

#include <QList>
#include <QSet>
#include <QString>

class IDevice;
class TDataCmd;

// What a run checks before it touches the chip: every checked command of its configuration, and of the
// configurations its jumps lead to, is bound and valid, and every data file those commands program,
// verify or sum up is sound and holds data for their range. A file that a read of the same run writes
// first is checked just before the command that uses it.
class TRunCheck {
public:
    explicit TRunCheck(int idCfg);

    // Before the first command.
    bool checkRun();
    // Just before a command: its data file, when a read of this run writes it first.
    bool checkCommand(const TData& data);
    QString getErrorText() const { return error; }

    // A warning the log gets before the command starts; empty when there is none.
    static QString getWarning(const TData& data);

private:
    struct FileUse {
        QString file, format;
        qint64 addrFile = 0, addrDevice = 0, last = 0;
    };
    // One checked command as the check sees it, taken from the model under its lock.
    struct Item {
        int idCmd = -1;
        QString where; // position, name and configuration, for the texts
        QString invalid;
        bool readsFile = false;
        FileUse use;
    };

    static bool readsFile(const TData& data, FileUse& use);
    static bool writesFile(const TData& data, FileUse& use);
    static QString wrongParam(IDevice* group, const TData& data);
    QList<int> reachableCfgs() const;
    Item describe(TDataCmd* cmd, int pos, int cfg) const;
    bool checkFile(const Item& item);

    const int idCfg;
    QList<Item> deferred;
    QString error;
};
