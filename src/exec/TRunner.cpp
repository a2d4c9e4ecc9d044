#include "exec/TRunner.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDevToolsExec.h"
#include "exec/TLogText.h"
#include "exec/TRunControl.h"
#include "exec/TRunJournal.h"
#include "misc/TLockOut.h"
#include "project/CTagPrj.h"
#include "project/TCmdProblem.h"
#include "project/TCtrlProject.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjCheck.h"

#include <QSocketNotifier>
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

void TRunner::printError(const QString& text) {
    clearProgress();
    std::fprintf(err, "%s\n", text.toLocal8Bit().constData());
    std::fflush(err);
}

bool TRunner::loadProject(const QString& file) {
    ProjectData.clrPrj();
    TCtrlProject ctrl;
    if (ctrl.load(file, &ProjectData) != TCtrlProject::Loaded) {
        printError(Lang.get(464).arg(TLogText::escape(file), ctrl.getErrorText()));
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
        print(QStringLiteral("%1\n").arg(TLogText::escape(cfg->getName())));
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(cfg->getUIN())) {
            const TData data = cmd->getData();
            IDevice* group = cmd->getGroupObject();
            const QString name = TLogText::escape(group ? group->getViewCmdName(data) : cmd->getCmdCode());
            const QString params =
                TLogText::escape(group ? group->getViewCmdParam(data, nullptr) : QString());
            const QString state = TLogText::escape(TCmdProblem::get(name, data, group));
            print(QStringLiteral("  [%1] %2%3%4\n")
                      .arg(cmd->getEnable() ? QLatin1Char('x') : QLatin1Char(' '))
                      .arg(name.isEmpty() ? TLogText::escape(cmd->getCmdCode()) : name)
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
            printError(Lang.get(465).arg(name));
            return ExitUsage;
        }
        ids.append(id);
    }
    if (ids.isEmpty()) {
        if (ProjectData.getCfgList().isEmpty()) {
            printError(Lang.get(465).arg(QString()));
            return ExitUsage;
        }
        ids.append(ProjectData.getIdCfgFromPosCfg(0));
    }
    TDevToolsExec::setProcessAllowed(opt.allowProcess);
    TLockOut::setAllowedAll(opt.allowLockout);
    log = new TLogText(AppData.logShowTime, AppData.logShowMSec);
    control = new TRunControl(this);
    new TRunJournal(control, [] { return AppData.logDir; });
    control->setShowDurations([] { return AppData.logShowTime; });
    connect(control, &TRunControl::signalStarted, this, &TRunner::slotStarted);
    connect(control, &TRunControl::signalEventText, this, &TRunner::slotEventText);
    connect(control, &TRunControl::signalEventProc, this, &TRunner::slotEventProc);
    connect(control, &TRunControl::signalPaused, this, &TRunner::slotPaused);
    installSigint();
    stdinNotifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    stdinNotifier->setEnabled(false);
    connect(stdinNotifier, &QSocketNotifier::activated, this, &TRunner::slotStdin);

    for (int id : ids)
        control->start(id);
    control->waitAll();

    if (opt.save) {
        TCtrlProject ctrl;
        if (!ctrl.save(ProjectData.getPrjFileName(), &ProjectData)) {
            printError(Lang.get(466).arg(ProjectData.getPrjFileName(), ctrl.getErrorText()));
            return ExitFailed;
        }
    }
    const TRunControl::Tally all = control->total();
    return all.failed > 0 ? ExitFailed : all.stopped > 0 ? ExitStopped : ExitOk;
}

// Once a second run has started every line says whose it is; before that there was only one run.
QString TRunner::prefixed(int idCfg, QString text) const {
    if (control->startedCount() < 2) return text;
    const QString prefix =
        QStringLiteral("[%1] ").arg(TLogText::escape(ProjectData.getNameCfgFromIdCfg(idCfg)));
    return prefix + text.replace(QLatin1Char('\n'), QLatin1Char('\n') + prefix);
}

void TRunner::slotStarted(int idCfg) {
    if (!ProjectData.existCmdSelectCfg(idCfg)) printError(prefixed(idCfg, Lang.get(1305)));
}

void TRunner::clearProgress() {
    if (!progressShown) return;
    std::fputs("\r\033[K", err);
    progressShown = false;
}

void TRunner::slotEventText(int idCfg, TCodeExec code, QString text, QString param) {
    emit signalEvent(code, text, param);
    const QList<TLogPiece> pieces = log->event(code, text, param, QTime::currentTime());
    if (pieces.isEmpty()) return;
    QString line = TLogText::toPlain(pieces);
    if (line.endsWith(QLatin1Char('\n'))) line.chop(1);
    clearProgress();
    print(prefixed(idCfg, line) + QLatin1Char('\n'));
}

void TRunner::slotEventProc(int, int percent) {
    if (!::isatty(::fileno(err))) return;
    if (percent <= 0) {
        clearProgress();
        return;
    }
    const int width = 40, filled = percent * width / 100;
    std::fprintf(err, "\r[%s%s] %3d%%", QByteArray(filled, '#').constData(),
                 QByteArray(width - filled, '.').constData(), percent);
    std::fflush(err);
    progressShown = true;
}

void TRunner::slotPaused(int idCfg) {
    print(prefixed(idCfg, Lang.get(463).arg(TLogText::escape(ProjectData.getNameCfgFromIdCfg(idCfg)))) +
          QLatin1Char('\n'));
    if (opt.continuePauses) {
        control->resume(idCfg);
        return;
    }
    if (stdinClosed) {
        control->stop(idCfg);
        return;
    }
    stdinNotifier->setEnabled(true);
}

void TRunner::slotStdin() {
    char buf[256];
    const ssize_t n = ::read(STDIN_FILENO, buf, sizeof buf);
    if (n <= 0) {
        // End of input: nobody can continue the waiting runs, so they stop as with the stop button.
        stdinClosed = true;
        stdinNotifier->setEnabled(false);
        for (int id : control->pausedRuns())
            control->stop(id);
        return;
    }
    if (!QByteArray(buf, int(n)).contains('\n')) return;
    control->resumeAll();
    stdinNotifier->setEnabled(false);
}

void TRunner::stopAll() {
    if (control) control->stopAll();
}
