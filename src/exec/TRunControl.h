#pragma once

#include "app/TTypes.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>

#include <functional>

class QThread;
class TExec;

// Owns the runs of configurations: one worker thread with one TExec for each running configuration.
// The main window and the command-line runner start, stop, pause and continue runs only through it and
// show what it reports. The workers' signals arrive here blocking-queued and are passed on at once, so a
// presenter's slot still runs while the worker waits; requests to the workers are queued.
class TRunControl : public QObject {
    Q_OBJECT
public:
    // How runs ended, per configuration and in all.
    struct Tally {
        int passed = 0, failed = 0, stopped = 0;
    };

    explicit TRunControl(QObject* parent = nullptr);
    // Stops every run and waits for its end.
    ~TRunControl() override;

    // Asked before every start, those that "execute" and auto-detection ask for included; false refuses.
    void setStartGate(std::function<bool(int idCfg)> gate) { startGate = std::move(gate); }
    // Whether durations are added to the log (each command's and the run's total).
    void setShowDurations(std::function<bool()> fn) { showDurations = std::move(fn); }

    // False when the configuration runs already or the gate refuses.
    bool start(int idCfg);
    void stop(int idCfg);
    void stopAll();
    // Continues a paused run; false when it is not paused.
    bool resume(int idCfg);
    void resumeAll();
    // Keeps the event loop turning until every run has ended.
    void waitAll();

    bool isRunning(int idCfg) const { return runs.contains(idCfg); }
    bool isPaused(int idCfg) const { return runs.contains(idCfg) && runs.value(idCfg).paused; }
    int count() const { return runs.size(); }
    QList<int> running() const { return runs.keys(); }
    QList<int> pausedRuns() const;
    int startedCount() const { return started; }
    Tally tally(int idCfg) const { return tallies.value(idCfg); }
    Tally total() const;
    void clearTallies() { tallies.clear(); }
    // Counts kept from an earlier session.
    void setTally(int idCfg, const Tally& t) { tallies[idCfg] = t; }

    // The text of a duration, "0.41" below ten seconds and "12.4" above.
    static QString seconds(qint64 ms);

signals:
    // Before the worker's first event.
    void signalStarted(int idCfg);
    void signalEventText(int idCfg, TCodeExec code, QString text, QString param);
    void signalEventProc(int idCfg, int percent);
    void signalPaused(int idCfg);
    void signalResumed(int idCfg);
    // After the worker has ended; outcome is CfgStatusOk, CfgStatusError or CfgStatusStopped.
    void signalFinished(int idCfg, TCodeCfgStatus outcome);

    // Requests to the workers, delivered in their threads.
    void signalStop(int idCfg);
    void signalPauseReset(int idCfg);

private slots:
    void slotEventText(TCodeExec code, QString text, QString param);
    void slotEventProc(int percent);
    void slotExecuteFromCmd(int idCfg);
    void slotPauseFromCmd(int idCfg);
    void slotStatusFromCmd(int idCfg, bool status);

private:
    struct Run {
        QThread* thread = nullptr;
        TExec* exec = nullptr;
        bool paused = false;
        int finalCode = -1; // the final event, ExecSuccess or ExecFailed, once it came
        QElapsedTimer total, command;
        bool commandOpen = false;
    };

    int senderCfg() const;
    void closeCommand(int idCfg);
    void runFinished(int idCfg);

    QHash<int, Run> runs;
    QHash<int, Tally> tallies;
    std::function<bool(int)> startGate;
    std::function<bool()> showDurations;
    int started = 0;
};
