#pragma once

#include "app/TTypes.h"

#include <QObject>
#include <QStringList>

#include <cstdio>

class QSocketNotifier;
class TLogText;
class TRunControl;

// The command-line runner: loads a project, runs configurations through the run controller exactly as
// the main window does, and prints every log event. Also lists a project's configurations.
class TRunner : public QObject {
    Q_OBJECT
public:
    struct Options {
        QString project;
        QStringList configs; // empty: the first configuration
        bool save = false;   // write the project back after the runs (counters change)
        bool continuePauses = false;
        bool allowProcess = false;
        bool allowLockout = false; // fuse writes that turn off serial programming
    };
    // A run stopped by the user is no success, but no failure of the chip either.
    enum ExitCode { ExitOk = 0, ExitFailed = 1, ExitUsage = 2, ExitStopped = 3 };

    explicit TRunner(FILE* out = stdout, FILE* err = stderr, QObject* parent = nullptr);
    ~TRunner() override;

    // Runs and returns the exit status; needs a running Qt application object.
    int run(const Options& options);
    int list(const QString& project);
    // The same for the project already in the model (one built in memory); options.project is not read.
    int runLoaded(const Options& options);

signals:
    // Every log event of every run, as it is printed.
    void signalEvent(TCodeExec code, const QString& text, const QString& param);

public slots:
    void stopAll(); // as the stop button of every run (Ctrl-C)

private slots:
    void slotStarted(int idCfg);
    void slotEventText(int idCfg, TCodeExec code, QString text, QString param);
    void slotEventProc(int idCfg, int percent);
    void slotPaused(int idCfg);
    void slotStdin();

private:
    bool loadProject(const QString& file);
    void print(const QString& text);
    void printError(const QString& text);
    QString prefixed(int idCfg, QString text) const;
    void clearProgress();
    void installSigint();

    FILE* out;
    FILE* err;
    Options opt;
    TLogText* log = nullptr;
    TRunControl* control = nullptr;
    bool stdinClosed = false;
    bool progressShown = false;
    QSocketNotifier* stdinNotifier = nullptr;
    QSocketNotifier* sigintNotifier = nullptr;
};
