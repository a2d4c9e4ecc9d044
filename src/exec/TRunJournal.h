#pragma once

#include "app/TTypes.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>
#include <QObject>
#include <QStringList>

#include <functional>

class TLogText;
class TRunControl;

// The log folder of a production line: every run of a run controller appends its log text to
// "runs.log" and one JSON line (time, project, configuration, programmer, port, chip, result, duration,
// and the bytes and CRC-32 of each write that completed) to "runs.jsonl" in the folder. Each run's block
// is appended in one piece when the run ends, so runs at once never interleave.
class TRunJournal : public QObject {
    Q_OBJECT
public:
    static constexpr const char* textFile = "runs.log";
    static constexpr const char* jsonFile = "runs.jsonl";

    // folder gives the log folder at each run; an empty one keeps no journal.
    TRunJournal(TRunControl* control, std::function<QString()> folder);
    ~TRunJournal() override;

    // The record of one written range: its bytes and their CRC-32, read back from the command itself.
    static QJsonObject written(const TData& cmd);

private slots:
    void slotStarted(int idCfg);
    void slotEventText(int idCfg, TCodeExec code, const QString& text, const QString& param);
    void slotFinished(int idCfg, TCodeCfgStatus outcome);

private:
    struct Run {
        QDateTime start;
        QElapsedTimer clock;
        QString text;
        QList<TData> checked; // the configuration's checked commands, in order
        QList<int> done;      // indexes into checked of the commands that completed
        int current = -1, cursor = 0;
        QString programmer, port, chip;
    };
    bool append(const QString& name, const QByteArray& bytes);

    std::function<QString()> folder;
    TLogText* log;
    QHash<int, Run> runs;
};
