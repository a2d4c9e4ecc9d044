#include "exec/TExec.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/IDeviceExec.h"
#include "devices/TDevProgExec.h"
#include "exec/TRunCheck.h"
#include "exec/TThreadSync.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdProblem.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QCoreApplication>

#include <memory>

namespace {
// A command that failed without a text.
constexpr int LangSilentFailure = 1215;
} // namespace

TExec::TExec(int id, QObject* parent) : QObject(parent), idCfg(id), checkBeforeRun(AppData.checkBeforeRun) {}

TExec::~TExec() {
    emit signalDestroy(idCfg);
}

void TExec::slotStop(int id) {
    if (id != idCfg) return;
    stop = true;
    emit signalStop();
}

void TExec::slotPauseReset(int id) {
    if (id == idCfg) emit signalPauseReset();
}

namespace {
void processEvents() {
    QCoreApplication::processEvents();
}

// The family, name and parameter text of a command, read under the project lock.
struct CmdInfo {
    TData data;
    IDevice* group = nullptr;
    QString name, params;
};

bool takeNext(int idCfg, int idCmdPrev, CmdInfo& info) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getNextCmd(idCfg, idCmdPrev);
    if (!cmd) return false;
    info.data = cmd->getData();
    info.group = cmd->getGroupObject();
    info.name = info.group ? info.group->getViewCmdName(info.data) : QString();
    if (info.name.isEmpty()) info.name = info.data.value(CTagCmd::cmd).toString();
    info.params = info.group ? info.group->getViewCmdParam(info.data, nullptr) : QString();
    return true;
}
} // namespace

void TExec::connectExec(IDeviceExec* exec, const QString& code) {
    connect(exec, &IDeviceExec::signalEventText, this, &TExec::relayEventText, Qt::DirectConnection);
    connect(exec, &IDeviceExec::signalEventProc, this, &TExec::relayEventProc, Qt::DirectConnection);
    connect(this, &TExec::signalStop, exec, &IDeviceExec::slotStop, Qt::DirectConnection);
    if (code == CTagCmdCode::execute || code == CTagCmdCode::auto_detect)
        connect(exec, &IDeviceExec::signalExecuteFromCmd, this, &TExec::relayExecute, Qt::DirectConnection);
    if (code == CTagCmdCode::pause) {
        connect(exec, &IDeviceExec::signalPauseFromCmd, this, &TExec::relayPause, Qt::DirectConnection);
        connect(this, &TExec::signalPauseReset, exec, &IDeviceExec::slotPauseReset, Qt::DirectConnection);
    }
}

bool TExec::leaveProgrammer(TSerialPort& port) {
    TDevProgExec prog{TData()};
    const bool ok = prog.leave(port) && prog.showLED(port, CProtocol::Prog::LedIdle);
    port.close();
    return ok;
}

// A file that an earlier read of this run wrote is checked now; a warning the command deserves is logged.
bool TExec::checkCommand(TRunCheck& check, const TData& data, QString& error) {
    if (checkBeforeRun && !check.checkCommand(data)) {
        error = check.getErrorText();
        return false;
    }
    const QString warning = TRunCheck::getWarning(data);
    if (!warning.isEmpty()) relayEventText(ExecInfo, warning, QString());
    return true;
}

bool TExec::runLoop(TSerialPort& port, IDeviceExec*& exec, bool& isLeave, QString& error) {
    bool finish = false;
    int idCmd = -1, current = idCfg;
    TRunCheck check(idCfg);
    if (checkBeforeRun && !check.checkRun()) {
        error = Lang.get(1017) + QLatin1Char('\n') + check.getErrorText();
        return false;
    }
    for (;;) {
        if (finish || stop) return true;
        CmdInfo info;
        if (!takeNext(current, idCmd, info)) return true;
        idCmd = info.data.value(CTagCmd::id_cmd).toInt();
        const QString code = info.data.value(CTagCmd::cmd).toString();

        // A second programmer: let go of the first one before the new one is opened.
        if (code == CTagCmdCode::set_prog && port.isOpen() && !leaveProgrammer(port)) {
            error = port.getErrorText();
            return false;
        }
        delete exec;
        exec = info.group ? info.group->createExecObject(info.data) : nullptr;

        processEvents();
        relayEventText(ExecCmdStart, info.name, info.params);
        processEvents();

        if (!exec) {
            error = IDevice::notSupportedText(info.group, code, info.name);
            return false;
        }
        error = TCmdProblem::get(info.name, info.data, info.group);
        if (!error.isEmpty()) return false;
        if (!checkCommand(check, info.data, error)) return false;
        connectExec(exec, code);
        // A stop that came before the executor was connected still reaches it.
        if (stop) exec->slotStop();
        isLeave = code == CTagCmdCode::leave;

        processEvents();
        bool ok = exec->execute(port, finish, current, idCmd);
        processEvents();
        if (code == CTagCmdCode::set_prog && port.isOpen() && ok) {
            TDevProgExec led{TData()};
            if (!led.showLED(port, CProtocol::Prog::LedSelected)) {
                error = led.getErrorText();
                ok = false;
            }
        }
        relayEventProc(0);
        processEvents();
        // A command abandoned because the user asked to stop is no failure: the run ends as stopped.
        if (!ok && stop) return true;
        if (!ok) {
            // Some family failures carry no text of their own (as those families are defined); the log
            // still has to say which command failed.
            if (error.isEmpty() && exec->getErrorText().isEmpty())
                error = Lang.get(LangSilentFailure).arg(info.name);
            return false;
        }
    }
}

void TExec::slotStart() {
    TSerialPort port;
    IDeviceExec* exec = nullptr;
    bool isLeave = false;
    QString error;
    const bool result = runLoop(port, exec, isLeave, error);
    if (!result && error.isEmpty() && exec) error = exec->getErrorText();

    const bool timeout = port.isTimeOut();
    if (!result) error = withPort(port, error, timeout);
    bool verdict = result;
    if (!isLeave && exec && port.isOpen() && !timeout) {
        TDevProgExec prog{TData()};
        if (!prog.leave(port)) {
            verdict = false;
            if (error.isEmpty()) error = prog.getErrorText();
        }
    }
    TDevProgExec led{TData()};
    if (!verdict) {
        if (!timeout && port.isOpen()) led.showLED(port, CProtocol::Prog::LedError);
        relayEventText(ExecFailed, error, QString());
    } else {
        if (port.isOpen()) led.showLED(port, CProtocol::Prog::LedIdle);
        stoppedEnd = stop;
        relayEventText(ExecSuccess, Lang.get(stoppedEnd ? 390 : 391), QString());
    }
    if (port.isOpen()) port.close();
    delete exec;
    TThreadSync::emitBlocking([&] { emit signalStatusFromCmd(idCfg, result); });
    emit signalFinished();
}

// A failure of the link itself (no port, no answer, a pulled cable) names the port on a line of its own;
// an error the programmer answered with does not need it.
QString TExec::withPort(const TSerialPort& port, const QString& error, bool timeout) {
    const QString name = port.getPortName();
    if (name.isEmpty() || error.isEmpty() || !(timeout || (!port.isOpen() && error == port.getErrorText())))
        return error;
    const QString path = name.startsWith(QLatin1Char('/')) ? name : QStringLiteral("/dev/") + name;
    return error + QLatin1Char('\n') + Lang.get(1730).arg(path);
}

void TExec::relayEventText(TCodeExec code, QString text, QString param) {
    TThreadSync::emitBlocking([&] { emit signalEventText(code, text, param); });
}

void TExec::relayEventProc(int percent) {
    TThreadSync::emitBlocking([&] { emit signalEventProc(percent); });
}

void TExec::relayExecute(int id) {
    TThreadSync::emitBlocking([&] { emit signalExecuteFromCmd(id); });
}

void TExec::relayPause(int id) {
    TThreadSync::emitBlocking([&] { emit signalPauseFromCmd(id); });
}
