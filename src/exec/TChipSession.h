#pragma once

#include "app/TTypes.h"
#include "exec/TChipDetect.h"
#include "project/TChipCmds.h"

#include <QObject>
#include <QTemporaryDir>

#include <memory>

class TDataPrj;
class TRunControl;

// The chip panel's work, without its widgets: a programmer and a chip chosen once, then each action
// built as a run of one configuration outside the project (TDataPrj::newTransientCfg) and started by a
// run controller like any other run. The buffer travels through temporary files: a read lands in one
// and is loaded, a write or verify saves the buffer to one first. The actions that ended well are kept,
// so that they can become a configuration of the project.
class TChipSession : public QObject {
    Q_OBJECT
public:
    enum Action { Detect, Read, BlankCheck, Erase, Write, Verify, WriteVerify, CompareChip };
    // A command of an action that ended well; temp marks a file of the temporary folder.
    struct Done {
        QString code;
        TData values;
        bool temp = false;
    };

    explicit TChipSession(TRunControl* control, QObject* parent = nullptr);
    ~TChipSession() override;

    // Another programmer or chip starts a new list of actions done: they belong to one pair.
    void setProg(const QString& name);
    QString prog() const { return progName; }
    // A part of the catalogue; false (nothing changed) for an unknown one.
    bool setChip(const QString& device);
    QString chip() const { return device; }
    QStringList memories() const;
    bool offers(Action action, const QString& memory) const;

    // Starts an action on a memory; data is the buffer that Write, Verify and Write + Verify send, value
    // the register value they write. Detect reads the identification through every family in turn and
    // needs no chip. False, with error(), when nothing was started.
    // base is the device address of the buffer's first byte.
    bool start(Action action, const QString& memory, const QByteArray& data = QByteArray(),
               const QString& value = QString(), quint32 base = 0);
    void stop();
    bool isBusy() const { return idCfg >= 0; }
    QString error() const { return lastError; }

    // What the last run found: the bytes read (Read, CompareChip), the register value read, the parts
    // that answered the detection.
    QByteArray readData() const { return dataRead; }
    QString registerValue() const { return valueRead; }
    QStringList detected() const { return parts; }

    QList<Done> done() const { return doneCmds; }
    void clearDone() { doneCmds.clear(); }
    // Adds the actions done as a configuration of prj: its programmer, its chip, then their commands,
    // the temporary files replaced by dataFile (relative to the project when it lies beside or below
    // it). Returns the configuration's id, -1 when nothing was done.
    int saveAsConfiguration(TDataPrj& prj, const QString& name, const QString& dataFile) const;
    // Whether one of the actions done used the buffer, which the configuration then needs as a file.
    bool doneWithBuffer() const;
    // Writes data from address 0 into file, in the format its name asks for, aside first so that a
    // failure leaves the previous file as it was; false with error().
    bool saveData(const QByteArray& data, const QString& file);

signals:
    void signalEvent(TCodeExec code, QString text, QString param);
    void signalProgress(int percent);
    void signalFinished(int action, bool ok);

private:
    struct Step {
        TChipCmds::Op op;
        QString memory;
    };
    static QList<Step> stepsOf(Action action, const QString& memory);
    // Why the action cannot start now, or empty.
    QString refusal(Action action, const QString& memory) const;
    bool prepareFiles(Action action, const QString& memory, const QByteArray& data);
    bool build(Action action, const QString& memory, const QString& file, const QString& value);
    // The range of the buffer's file for its write and verify commands.
    void bufferRange(TChipCmds::Op op, TData& values) const;
    bool startRun(const QString& title);
    bool saveTemp(const QByteArray& data, QString& file);
    void onFinished(int id, TCodeCfgStatus outcome);
    void collect(bool ok);
    void dropCfg();

    TRunControl* control;
    QString progName, device, deviceFile, lastError;
    std::unique_ptr<QTemporaryDir> temp;
    int tempCount = 0;
    int idCfg = -1;
    Action current = Detect;
    QString currentMemory, currentFile;
    quint32 bufferBase = 0;
    qint64 bufferSize = 0;
    QList<QPair<int, Done>> pending; // commands of the current run
    std::unique_ptr<TChipDetect> detection;
    QByteArray dataRead;
    QString valueRead;
    QStringList parts;
    QList<Done> doneCmds;
};
