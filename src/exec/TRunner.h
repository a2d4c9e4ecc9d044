#pragma once

#include "app/TTypes.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <cstdio>

class QSocketNotifier;
class QThread;
class TExec;
class TLogText;

// The command-line runner: loads a project, runs configurations in threads of their own exactly as the
// main window does, and prints every log event. Also lists a project's configurations.
class TRunner : public QObject {
    Q_OBJECT
public:
    struct Options {
        QString project;
        QStringList configs; // empty: the first configuration
        bool save = false;   // write the project back after the runs (counters change)
        bool continuePauses = false;
        bool allowProcess = false;
    };
    enum ExitCode { ExitOk = 0, ExitFailed = 1, ExitUsage = 2 };

    explicit TRunner(FILE* out = stdout, FILE* err = stderr, QObject* parent = nullptr);
    ~TRunner() override;

    // Runs and returns the exit status; needs a running Qt application object.
    int run(const Options& options);
    int list(const QString& project);
    // The same for the project already in the model (one built in memory); options.project is not read.
    int runLoaded(const Options& options);

signals:
    void signalStop(int idCfg);
    void signalPauseReset(int idCfg);
    // Every log event of every run, as it is printed.
    void signalEvent(TCodeExec code, const QString& text, const QString& param);

public slots:
    void stopAll(); // as the stop button of every run (Ctrl-C)

private slots:
    void slotEventText(TCodeExec code, QString text, QString param);
    void slotEventProc(int percent);
    void slotExecuteFromCmd(int idCfg);
    void slotPauseFromCmd(int idCfg);
    void slotStatusFromCmd(int idCfg, bool status);
    void slotStdin();

private:
    bool loadProject(const QString& file);
    void startRun(int idCfg);
    void runFinished(QThread* thread, TExec* exec);
    void print(const QString& text);
    void installSigint();

    FILE* out;
    FILE* err;
    Options opt;
    TLogText* log = nullptr;
    QHash<int, QThread*> runs;
    QSet<int> paused;
    bool allOk = true;
    int runsStarted = 0;
    bool stdinClosed = false;
    bool progressShown = false;
    QSocketNotifier* stdinNotifier = nullptr;
    QSocketNotifier* sigintNotifier = nullptr;
};
