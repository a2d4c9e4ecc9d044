#include "devices/TDevToolsExec.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "formats/ICRC.h"
#include "formats/TCRC.h"
#include "formats/TFormat.h"
#include "link/CProtocol.h"
#include "link/TPortLock.h"
#include "link/TProg.h"
#include "link/TSerialPort.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagCmdParam.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

#include <limits>
#include <memory>

std::atomic<bool> TDevToolsExec::processAllowed{true};

namespace {
// How often a run waiting for a port held by another run looks again.
const unsigned long portPollMs = 10;
} // namespace

void TDevToolsExec::setProcessAllowed(bool allowed) {
    processAllowed = allowed;
}
bool TDevToolsExec::isProcessAllowed() {
    return processAllowed;
}

TDevToolsExec::TDevToolsExec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDevToolsExec::execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) {
    using namespace CTagCmdCode;
    const QString code = TAPP_PARAM(param, CTagCmd::cmd).toString();
    if (code == process) return execProcess();
    if (code == jamp) return execJamp(idCfg, idCmd);
    if (code == counter) return execCounter(finish);
    if (code == delay) return execDelay();
    if (code == CTagCmdCode::pause) return execPause();
    if (code == CTagCmdCode::stop) {
        finish = true;
        return true;
    }
    if (code == CTagCmdCode::execute) return execExecute();
    if (code == calc_crc) return execCalcCRC();
    if (code == set_prog) return execSetProg(port);
    return false;
}

bool TDevToolsExec::execDelay() {
    const qint64 value = TAPP_PARAM(param, CTagCmdToolsDelay::value).toLongLong();
    QElapsedTimer timer;
    timer.start();
    if (value < 500) {
        while (value - timer.elapsed() > 0) {
            QCoreApplication::processEvents();
            QThread::msleep(1);
        }
        return true;
    }
    int last = 0;
    while (value - timer.elapsed() > 0) {
        QCoreApplication::processEvents();
        if (isStop()) break;
        const int progress = int(timer.elapsed() * 100 / value);
        if (progress >= 1 && progress != last) {
            last = progress;
            emit signalEventProc(qMin(progress, 100));
        }
        QThread::msleep(5);
    }
    emit signalEventProc(0);
    return true;
}

bool TDevToolsExec::execPause() {
    const int idCfg = TAPP_PARAM(param, CTagCmd::id_cfg).toInt();
    pause = true;
    emit signalPauseFromCmd(idCfg);
    emit signalEventText(ExecInfo, Lang.get(396), QString());
    while (pause && !isStop()) {
        QThread::msleep(100);
        QCoreApplication::processEvents();
    }
    return true;
}

bool TDevToolsExec::execJamp(int& idCfg, int& idCmd) {
    TLocker lock(ProjectData.getMutex());
    const int from = idCfg;
    const int target = TAPP_PARAM(param, CTagCmdToolsJamp::to_cmd).toInt();
    const int apos = ProjectData.getAPosCmdFromIdCmd(target);
    if (apos < 0) {
        setErrorText(Lang.get(462));
        return false;
    }
    idCmd = target;
    idCfg = ProjectData.getIdCfgFromIdCmd(target);
    // Continue just before the target, so that it runs next; -1 starts the configuration from its top.
    if (apos == 0) {
        idCmd = -1;
    } else {
        idCmd = ProjectData.getIdCmdFromAPosCmd(apos - 1);
        if (ProjectData.getIdCfgFromAPosCmd(apos - 1) != idCfg) idCmd = -1;
    }
    if (idCfg != from)
        emit signalEventText(
            ExecInfo,
            QStringLiteral("\n--> %1 \"%2\"").arg(Lang.get(394), ProjectData.getNameCfgFromIdCfg(idCfg)),
            QString());
    return true;
}

bool TDevToolsExec::execCounter(bool& finish) {
    const qint64 value = TAPP_PARAM(param, CTagCmdToolsCounter::value).toLongLong();
    const qint64 delta = TAPP_PARAM(param, CTagCmdToolsCounter::delta).toLongLong();
    qint64 limit = TAPP_PARAM(param, CTagCmdToolsCounter::limit).toLongLong();
    const qint64 maxInt = std::numeric_limits<qint32>::max();
    auto fail = [this] {
        setErrorText(Lang.get(395));
        return false;
    };
    auto store = [this](qint64 v) { return storeParam(QStringLiteral("value"), v); };
    if (delta < 0) {
        if (value < 1) return fail();
        if (value <= limit) {
            finish = true;
            return store(value) || fail();
        }
        const qint64 next = value + delta;
        if (next < 0) return fail();
        if (next <= limit) finish = true;
        return store(next) || fail();
    }
    if (value == maxInt) return fail();
    if (limit == 0) limit = maxInt;
    if (value >= limit) {
        if (value < 0) return fail();
        finish = true;
        return store(value) || fail();
    }
    const qint64 next = value + delta;
    if (next < 0) return fail();
    if (next >= limit) finish = true;
    return store(next) || fail();
}

bool TDevToolsExec::execProcess() {
    const QString command = TAPP_PARAM(param, CTagCmdToolsProcess::file).toString();
    if (!processAllowed) {
        setErrorText(Lang.get(460).arg(command));
        return false;
    }
    QStringList args = QProcess::splitCommand(command);
    if (args.isEmpty()) return true;
    QProcess proc;
    proc.setProcessChannelMode(QProcess::ForwardedChannels);
    // Relative names in the command line mean files beside the project, wherever Tarvelix was started.
    const QString folder = ProjectData.getPrjWorkPath();
    if (!folder.isEmpty()) {
        proc.setWorkingDirectory(folder);
        emit signalEventText(ExecInfo, Lang.get(1420).arg(folder), QString());
    }
    proc.start(args.takeFirst(), args, QIODevice::ReadWrite);
    proc.waitForFinished(30000);
    return true;
}

bool TDevToolsExec::execExecute() {
    const int cfg = TAPP_PARAM(param, CTagCmdToolsExecute::cfg).toInt();
    if (ProjectData.getPosCfgFromIdCfg(cfg) < 0) {
        setErrorText(Lang.get(397));
        return false;
    }
    emit signalExecuteFromCmd(cfg);
    return true;
}

void TDevToolsExec::processGUI(int& last, qint64 done, qint64 total) {
    const int percent = total > 0 ? int(done * 100 / total) : 100;
    if (percent != last) {
        last = percent;
        QCoreApplication::processEvents();
        emit signalEventProc(percent);
    }
}

bool TDevToolsExec::execCalcCRC() {
    const QString name = TAPP_PARAM(param, CTagCmdToolsCalcCRC::crc_name).toString();
    const QString file = TApp::getAbsoluteFile(ProjectData.getPrjWorkPath(),
                                               TAPP_PARAM(param, CTagCmdToolsCalcCRC::file).toString());
    const QString format = TAPP_PARAM(param, CTagCmdToolsCalcCRC::format).toString().toLower();
    const qint64 addr = TAPP_PARAM(param, CTagCmdToolsCalcCRC::addr).toLongLong();
    qint64 count = TAPP_PARAM(param, CTagCmdToolsCalcCRC::count).toLongLong();
    const char fill = char(TAPP_PARAM(param, CTagCmdToolsCalcCRC::fill).toInt());
    std::unique_ptr<ICRC> crc(TCRC::createCRCObject(name));
    if (!crc) {
        setErrorText(Lang.get(461).arg(name));
        return false;
    }
    if (count == 0) count = QFileInfo(file).size() - addr;
    const qint64 piece = 0x1000000;
    // File and device addresses coincide: the range starts at addr in both.
    TFormat data(format, file, addr, addr, TMiscDev::getLastAddr(addr, count), piece);
    if (!openFile(data, FormatModeRead)) return false;
    // The CRC runs over exactly count bytes: gaps in the file are filled with the fill byte.
    qint64 at = addr;
    const qint64 end = addr + count;
    int last = -1;
    while (at < end && !isStop()) {
        long long pos = at;
        QByteArray bytes;
        if (!data.read(pos, bytes)) {
            setFileError(data);
            return false;
        }
        if (bytes.isEmpty() || pos >= end) {
            const QByteArray gap(int(qMin<qint64>(end - at, piece)), fill);
            crc->calc(gap.constData(), gap.size());
            at += gap.size();
        } else {
            if (pos > at) {
                const QByteArray gap(int(pos - at), fill);
                crc->calc(gap.constData(), gap.size());
                at = pos;
            }
            const qint64 skip = at - pos; // bytes before the range are not counted
            const qint64 n = qMin<qint64>(bytes.size() - skip, end - at);
            if (n > 0) {
                crc->calc(bytes.constData() + skip, n);
                at += n;
            }
        }
        processGUI(last, at - addr, count);
    }
    data.close();
    if (isStop()) return true;
    emit signalEventText(ExecResult,
                         QStringLiteral("%1: %2").arg(name, TMiscDev::getHexFromByteArray(crc->getResult())),
                         QString());
    return true;
}

// Runs that share a programmer take turns: a port another run holds is waited for, saying so once, until
// it is free or the user stops this run.
bool TDevToolsExec::waitForPort(TSerialPort& port, const QString& portName) {
    const QString me = ProjectData.getNameCfgFromIdCfg(TAPP_PARAM(param, CTagCmd::id_cfg).toInt());
    port.setOwnerName(me);
    QString heldBy;
    bool told = false;
    while (!TPortLock::claim(portName, &port, me, &heldBy)) {
        if (!told) emit signalEventText(ExecMessage, Lang.get(1302).arg(portName, heldBy), QString());
        told = true;
        QCoreApplication::processEvents();
        if (isStop()) return false;
        QThread::msleep(portPollMs);
    }
    return true;
}

bool TDevToolsExec::execSetProg(TSerialPort& port) {
    if (port.isOpen()) port.close();
    TProg* prog = nullptr;
    {
        TLocker lock(ProjectData.getMutex());
        TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(TAPP_PARAM(param, CTagCmd::id_cmd).toInt());
        prog = cmd ? cmd->getProgObject() : nullptr;
    }
    const QString name = TAPP_PARAM(param, CTagCmdToolsSetProg::prog).toString();
    if (!prog || !AppData.progName.contains(name)) {
        setErrorText(Lang.get(398));
        return false;
    }
    const QString portName = TAPP_PARAM(param, CTagCmdToolsSetProg::alt_enabled).toBool()
                                 ? TAPP_PARAM(param, CTagCmdToolsSetProg::alt_port).toString()
                                 : AppData.progName.getData(name).port;
    if (!waitForPort(port, portName)) return false;
    if (!port.open(portName, TSerialPort::OpenMode(QIODevice::ReadWrite))) {
        setErrorText(port.getErrorText());
        return false;
    }
    port.applySettings(*prog);

    QByteArray data;
    if (!sendPackage(port, CProtocol::Prog::Interface, data)) return false;
    const quint16 iface = data.size() < 2 ? 0 : quint16(quint8(data.at(0)) | (quint8(data.at(1)) << 8));
    data.clear();
    if (!sendPackage(port, CProtocol::Prog::Ident, data)) return false;
    const int zero = data.indexOf('\0');
    emit signalEventText(ExecInfo, QString::fromLatin1(zero < 0 ? data : data.left(zero)), QString());
    if (iface != prog->getInterface()) {
        setErrorText(Lang.get(399));
        return false;
    }
    return true;
}
