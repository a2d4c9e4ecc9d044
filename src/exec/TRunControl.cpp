#include "exec/TRunControl.h"

#include "app/TLang.h"
#include "exec/TExec.h"
#include "exec/TThreadSync.h"
#include "project/TDataPrj.h"

#include <QCoreApplication>
#include <QThread>

TRunControl::TRunControl(QObject* parent) : QObject(parent) {}

TRunControl::~TRunControl() {
    stopAll();
    waitAll();
}

QString TRunControl::seconds(qint64 ms) {
    return ms < 10000 ? QString::number(ms / 1000.0, 'f', 2) : QString::number(ms / 1000.0, 'f', 1);
}

QList<int> TRunControl::pausedRuns() const {
    QList<int> ids;
    for (auto it = runs.begin(); it != runs.end(); ++it)
        if (it->paused) ids.append(it.key());
    return ids;
}

TRunControl::Tally TRunControl::total() const {
    Tally sum;
    for (const Tally& t : tallies) {
        sum.passed += t.passed;
        sum.failed += t.failed;
        sum.stopped += t.stopped;
    }
    return sum;
}

bool TRunControl::start(int idCfg) {
    if (runs.contains(idCfg) || ProjectData.getCfgObject(idCfg) == nullptr) return false;
    if (startGate && !startGate(idCfg)) return false;
    ProjectData.setCfgStatus(idCfg, CfgStatusRun);
    ++started;
    Run& run = runs[idCfg];
    run.thread = new QThread;
    run.exec = new TExec(idCfg);
    run.exec->setObjectName(ProjectData.getNameCfgFromIdCfg(idCfg));
    run.exec->moveToThread(run.thread);
    run.total.start();
    TExec* exec = run.exec;
    connect(this, &TRunControl::signalStop, exec, &TExec::slotStop);
    connect(this, &TRunControl::signalPauseReset, exec, &TExec::slotPauseReset);
    connect(run.thread, &QThread::started, exec, &TExec::slotStart);
    connect(exec, &TExec::signalFinished, run.thread, &QThread::quit);
    const auto blocking = Qt::BlockingQueuedConnection;
    connect(exec, &TExec::signalEventText, this, &TRunControl::slotEventText, blocking);
    connect(exec, &TExec::signalEventProc, this, &TRunControl::slotEventProc, blocking);
    connect(exec, &TExec::signalExecuteFromCmd, this, &TRunControl::slotExecuteFromCmd, blocking);
    connect(exec, &TExec::signalPauseFromCmd, this, &TRunControl::slotPauseFromCmd, blocking);
    connect(exec, &TExec::signalStatusFromCmd, this, &TRunControl::slotStatusFromCmd, blocking);
    // Once the thread has ended nothing touches the worker any more: it is joined and destroyed there.
    connect(run.thread, &QThread::finished, this, [this, idCfg] { runFinished(idCfg); });
    QThread* thread = run.thread;
    emit signalStarted(idCfg);
    thread->start(QThread::NormalPriority);
    return true;
}

void TRunControl::stop(int idCfg) {
    if (runs.contains(idCfg)) emit signalStop(idCfg);
}

void TRunControl::stopAll() {
    for (int id : runs.keys())
        emit signalStop(id);
}

bool TRunControl::resume(int idCfg) {
    auto it = runs.find(idCfg);
    if (it == runs.end() || !it->paused) return false;
    it->paused = false;
    emit signalPauseReset(idCfg);
    emit signalResumed(idCfg);
    return true;
}

void TRunControl::resumeAll() {
    for (int id : pausedRuns())
        resume(id);
}

// The worker's signals are blocking queued: waiting here must keep the event loop turning, or a worker
// that reports its last lines would never end.
void TRunControl::waitAll() {
    while (!runs.isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

int TRunControl::senderCfg() const {
    auto* exec = qobject_cast<TExec*>(sender());
    return exec ? exec->getIdCfg() : -1;
}

// A command lasts from its announcement to the next event of the run's own making.
void TRunControl::closeCommand(int idCfg) {
    Run& run = runs[idCfg];
    if (!run.commandOpen) return;
    run.commandOpen = false;
    if (showDurations && showDurations())
        emit signalEventText(idCfg, ExecMessage, Lang.get(1300).arg(seconds(run.command.elapsed())),
                             QString());
}

// The run stays in the table while its worker waits here, but a presenter's slot may start or end
// other runs: the entry is looked up again after every emit.
void TRunControl::slotEventText(TCodeExec code, QString text, QString param) {
    TThreadSync::Receiver sync;
    const int idCfg = senderCfg();
    if (!runs.contains(idCfg)) return;
    const bool end = code == ExecSuccess || code == ExecFailed;
    if (code == ExecCmdStart || end) closeCommand(idCfg);
    if (end) runs[idCfg].finalCode = code;
    emit signalEventText(idCfg, code, text, param);
    if (code == ExecCmdStart) {
        runs[idCfg].commandOpen = true;
        runs[idCfg].command.start();
    }
    if (end && showDurations && showDurations())
        emit signalEventText(idCfg, ExecMessage, Lang.get(1301).arg(seconds(runs[idCfg].total.elapsed())),
                             QString());
}

void TRunControl::slotEventProc(int percent) {
    TThreadSync::Receiver sync;
    emit signalEventProc(senderCfg(), percent);
}

void TRunControl::slotExecuteFromCmd(int idCfg) {
    TThreadSync::Receiver sync;
    start(idCfg);
}

void TRunControl::slotPauseFromCmd(int idCfg) {
    TThreadSync::Receiver sync;
    if (!runs.contains(idCfg)) return;
    runs[idCfg].paused = true;
    emit signalPaused(idCfg);
}

// The worker reports its loop's outcome here, which a failed final leave does not change; the verdict
// is taken from the run's final event instead.
void TRunControl::slotStatusFromCmd(int, bool) {
    TThreadSync::Receiver sync;
}

void TRunControl::runFinished(int idCfg) {
    auto it = runs.find(idCfg);
    if (it == runs.end()) return;
    const Run run = *it;
    run.thread->wait();
    const TCodeCfgStatus outcome = run.finalCode != ExecSuccess ? CfgStatusError
                                   : run.exec->endedByStop()    ? CfgStatusStopped
                                                                : CfgStatusOk;
    delete run.exec;
    delete run.thread;
    runs.remove(idCfg);
    Tally& t = tallies[idCfg];
    (outcome == CfgStatusOk ? t.passed : outcome == CfgStatusStopped ? t.stopped : t.failed) += 1;
    ProjectData.setCfgStatus(idCfg, outcome);
    emit signalFinished(idCfg, outcome);
}
