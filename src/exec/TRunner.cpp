#include "exec/TRunner.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDevToolsExec.h"
#include "exec/TExec.h"
#include "exec/TLogText.h"
#include "exec/TThreadSync.h"
#include "project/CTagPrj.h"
#include "project/TCtrlProject.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjCheck.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QThread>
#include <QTime>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {
int sigintPipe[2] = {-1, -1};

void onSigint(int) {
    const char c = 1;
    if (sigintPipe[1] >= 0) (void)!::write(sigintPipe[1], &c, 1);
}
} // namespace

TRunner::TRunner(FILE* o, FILE* e, QObject* parent) : QObject(parent), out(o), err(e) {}

TRunner::~TRunner() {
    delete log;
    if (sigintNotifier) {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
    }
}

void TRunner::print(const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), out);
    std::fflush(out);
}

bool TRunner::loadProject(const QString& file) {
    ProjectData.clrPrj();
    TCtrlProject ctrl;
    if (ctrl.load(file, &ProjectData) != TCtrlProject::Loaded) {
        std::fprintf(err, "%s\n", qPrintable(Lang.get(464).arg(file, ctrl.getErrorText())));
        return false;
    }
    ProjectData.resetChange();
    // A hand-written project runs as loaded; what it got wrong is said first.
    QByteArray data;
    if (ctrl.file_to_data(file, data))
        for (const QString& problem : TPrjCheck::check(data, ProjectData))
            std::fprintf(err, "%s\n", qPrintable(problem));
    return true;
}

int TRunner::list(const QString& project) {
    if (!loadProject(project)) return ExitUsage;
    TLocker lock(ProjectData.getMutex());
    for (TDataCfg* cfg : ProjectData.getCfgList()) {
        print(QStringLiteral("%1\n").arg(cfg->getName()));
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(cfg->getUIN())) {
            const TData data = cmd->getData();
            IDevice* group = cmd->getGroupObject();
            const QString name = group ? group->getViewCmdName(data) : cmd->getCmdCode();
            const QString params = group ? group->getViewCmdParam(data, nullptr) : QString();
            const QString state = !cmd->getValidDev()     ? Lang.get(387).arg(name)
                                  : !cmd->getValidParam() ? Lang.get(388).arg(name)
                                                          : QString();
            print(QStringLiteral("  [%1] %2%3%4\n")
                      .arg(cmd->getEnable() ? QLatin1Char('x') : QLatin1Char(' '))
                      .arg(name.isEmpty() ? cmd->getCmdCode() : name)
                      .arg(params.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(params))
                      .arg(state.isEmpty() ? QString() : QStringLiteral("  ! ") + state));
        }
    }
    return ExitOk;
}

void TRunner::installSigint() {
    if (::pipe(sigintPipe) != 0) return;
    ::fcntl(sigintPipe[1], F_SETFL, O_NONBLOCK);
    sigintNotifier = new QSocketNotifier(sigintPipe[0], QSocketNotifier::Read, this);
    connect(sigintNotifier, &QSocketNotifier::activated, this, [this] {
        char buf[16];
        (void)!::read(sigintPipe[0], buf, sizeof buf);
        stopAll();
    });
    std::signal(SIGINT, onSigint);
    std::signal(SIGTERM, onSigint);
}

int TRunner::run(const Options& options) {
    if (!loadProject(options.project)) return ExitUsage;
    return runLoaded(options);
}

int TRunner::runLoaded(const Options& options) {
    opt = options;
    QList<int> ids;
    for (const QString& name : opt.configs) {
        const int id = ProjectData.getIdCfgFromNameCfg(name);
        if (id < 0) {
            std::fprintf(err, "%s\n", qPrintable(Lang.get(465).arg(name)));
            return ExitUsage;
        }
        ids.append(id);
    }
    if (ids.isEmpty()) {
        if (ProjectData.getCfgList().isEmpty()) {
            std::fprintf(err, "%s\n", qPrintable(Lang.get(465).arg(QString())));
            return ExitUsage;
        }
        ids.append(ProjectData.getIdCfgFromPosCfg(0));
    }
    TDevToolsExec::setProcessAllowed(opt.allowProcess);
    log = new TLogText(AppData.logShowTime, AppData.logShowMSec);
    installSigint();
    stdinNotifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    stdinNotifier->setEnabled(false);
    connect(stdinNotifier, &QSocketNotifier::activated, this, &TRunner::slotStdin);

    for (int id : ids)
        startRun(id);
    while (!runs.isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    if (opt.save) {
        TCtrlProject ctrl;
        if (!ctrl.save(ProjectData.getPrjFileName(), &ProjectData)) {
            std::fprintf(err, "%s\n",
                         qPrintable(Lang.get(466).arg(ProjectData.getPrjFileName(), ctrl.getErrorText())));
            return ExitFailed;
        }
    }
    return allOk ? ExitOk : ExitFailed;
}

void TRunner::startRun(int idCfg) {
    if (runs.contains(idCfg)) return;
    ProjectData.setCfgStatus(idCfg, CfgStatusRun);
    ++runsStarted;
    auto* thread = new QThread;
    auto* exec = new TExec(idCfg);
    exec->setObjectName(ProjectData.getNameCfgFromIdCfg(idCfg));
    exec->moveToThread(thread);
    runs.insert(idCfg, thread);
    connect(this, &TRunner::signalStop, exec, &TExec::slotStop);
    connect(this, &TRunner::signalPauseReset, exec, &TExec::slotPauseReset);
    connect(thread, &QThread::started, exec, &TExec::slotStart);
    connect(exec, &TExec::signalFinished, thread, &QThread::quit);
    const auto blocking = Qt::BlockingQueuedConnection;
    connect(exec, &TExec::signalEventText, this, &TRunner::slotEventText, blocking);
    connect(exec, &TExec::signalEventProc, this, &TRunner::slotEventProc, blocking);
    connect(exec, &TExec::signalExecuteFromCmd, this, &TRunner::slotExecuteFromCmd, blocking);
    connect(exec, &TExec::signalPauseFromCmd, this, &TRunner::slotPauseFromCmd, blocking);
    connect(exec, &TExec::signalStatusFromCmd, this, &TRunner::slotStatusFromCmd, blocking);
    // Once the thread has ended nothing else touches the worker, so it is destroyed here.
    connect(thread, &QThread::finished, this, [this, thread, exec] { runFinished(thread, exec); });
    thread->start();
}

void TRunner::runFinished(QThread* thread, TExec* exec) {
    // finished() comes just before the thread's very end: join it, then nothing else can touch the worker.
    thread->wait();
    runs.remove(exec->getIdCfg());
    paused.remove(exec->getIdCfg());
    delete exec;
    delete thread;
}

void TRunner::slotEventText(TCodeExec code, QString text, QString param) {
    TThreadSync::Receiver sync;
    auto* exec = qobject_cast<TExec*>(sender());
    emit signalEvent(code, text, param);
    const QList<TLogPiece> pieces = log->event(code, text, param, QTime::currentTime());
    if (pieces.isEmpty()) return;
    QString line = TLogText::toPlain(pieces);
    if (line.endsWith(QLatin1Char('\n'))) line.chop(1);
    // Once a second run has started every line says whose it is; before that there was only one run.
    if (runsStarted > 1 && exec) {
        const QString prefix = QStringLiteral("[%1] ").arg(exec->objectName());
        line = prefix + line.replace(QLatin1Char('\n'), QLatin1Char('\n') + prefix);
    }
    if (progressShown) {
        std::fputs("\r\033[K", err);
        progressShown = false;
    }
    print(line + QLatin1Char('\n'));
}

void TRunner::slotEventProc(int percent) {
    TThreadSync::Receiver sync;
    if (!::isatty(::fileno(err))) return;
    if (percent <= 0) {
        if (progressShown) std::fputs("\r\033[K", err);
        progressShown = false;
        return;
    }
    const int width = 40, filled = percent * width / 100;
    std::fprintf(err, "\r[%s%s] %3d%%", QByteArray(filled, '#').constData(),
                 QByteArray(width - filled, '.').constData(), percent);
    std::fflush(err);
    progressShown = true;
}

void TRunner::slotExecuteFromCmd(int idCfg) {
    startRun(idCfg);
}

void TRunner::slotPauseFromCmd(int idCfg) {
    TThreadSync::Receiver sync;
    print(Lang.get(463).arg(ProjectData.getNameCfgFromIdCfg(idCfg)) + QLatin1Char('\n'));
    if (opt.continuePauses) {
        emit signalPauseReset(idCfg);
        return;
    }
    if (stdinClosed) {
        emit signalStop(idCfg);
        return;
    }
    paused.insert(idCfg);
    stdinNotifier->setEnabled(true);
}

void TRunner::slotStdin() {
    char buf[256];
    const ssize_t n = ::read(STDIN_FILENO, buf, sizeof buf);
    if (n <= 0) {
        // End of input: nobody can continue the waiting runs, so they stop as with the stop button.
        stdinClosed = true;
        stdinNotifier->setEnabled(false);
        for (int id : paused)
            emit signalStop(id);
        paused.clear();
        return;
    }
    if (!QByteArray(buf, int(n)).contains('\n')) return;
    for (int id : paused)
        emit signalPauseReset(id);
    paused.clear();
    stdinNotifier->setEnabled(false);
}

void TRunner::slotStatusFromCmd(int idCfg, bool status) {
    TThreadSync::Receiver sync;
    ProjectData.setCfgStatus(idCfg, status ? CfgStatusOk : CfgStatusError);
    allOk = allOk && status;
}

void TRunner::stopAll() {
    for (int id : runs.keys())
        emit signalStop(id);
}
