#include "devices/TDevProgExec.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TSignature.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <cmath>
#include <memory>

namespace {
// Tenths of a volt and thousandths of the current unit travel truncated toward zero; the tiny offset
// keeps values such as 4.1 (40.99999... in binary) at their decimal meaning.
quint32 scaled(double value, double factor) {
    return quint32(std::trunc(value * factor + 1e-9));
}

IDevice* deviceOf(int idCmd) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(idCmd);
    return cmd ? cmd->getDeviceObject() : nullptr;
}
} // namespace

TDevProgExec::TDevProgExec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

QByteArray TDevProgExec::payloadVolt(double volts) {
    QByteArray out;
    TMiscDev::appendLE(out, scaled(volts, 10), 1);
    return out;
}

QByteArray TDevProgExec::payloadVIcc(double volts, double current, bool ocp) {
    QByteArray out = payloadVolt(volts);
    TMiscDev::appendLE(out, scaled(current, 1000), 4);
    out.append(char(ocp ? 1 : 0));
    return out;
}

QByteArray TDevProgExec::payloadVIpp(double volts, double current, bool ocp) {
    // The programming current field is two bytes wide where the supply's is four: so the programmer
    // defines them.
    QByteArray out = payloadVolt(volts);
    TMiscDev::appendLE(out, scaled(current, 1000), 2);
    out.append(char(ocp ? 1 : 0));
    return out;
}

QByteArray TDevProgExec::payloadReset(int duration) {
    QByteArray out;
    TMiscDev::appendLE(out, quint32(quint16(qint16(duration))), 2);
    return out;
}

QByteArray TDevProgExec::payloadGenerator(unsigned int freq, unsigned int duty) {
    QByteArray out;
    TMiscDev::appendLE(out, freq, 4);
    TMiscDev::appendLE(out, duty * 10, 2);
    return out;
}

bool TDevProgExec::send(TSerialPort& port, unsigned char cmd, QByteArray payload) {
    if (!isOpenPort(port)) return false;
    return sendPackage(port, cmd, payload);
}

bool TDevProgExec::showLED(TSerialPort& port, unsigned char state) {
    return send(port, CProtocol::Prog::LED, QByteArray(1, char(state)));
}

bool TDevProgExec::reset(TSerialPort& port, int duration) {
    return send(port, CProtocol::Prog::Reset, payloadReset(duration));
}

bool TDevProgExec::leave(TSerialPort& port) {
    return send(port, CProtocol::Prog::Leave, QByteArray());
}

bool TDevProgExec::execute(TSerialPort& port, bool& finish, int&, int&) {
    using namespace CTagCmdCode;
    const QString code = TAPP_PARAM(param, CTagCmd::cmd).toString();
    auto num = [this](const char* key) { return TAPP_PARAM(param, key).toDouble(); };
    if (code == set_vcc) return send(port, CProtocol::Prog::SetVcc, payloadVolt(num(CTagCmdProgSetVCC::vcc)));
    if (code == set_vpp) return send(port, CProtocol::Prog::SetVpp, payloadVolt(num(CTagCmdProgSetVPP::vpp)));
    if (code == set_vicc)
        return send(port, CProtocol::Prog::SetVIcc,
                    payloadVIcc(num(CTagCmdProgSetVICC::vcc), num(CTagCmdProgSetVICC::icc),
                                TAPP_PARAM(param, CTagCmdProgSetVICC::ocp).toBool()));
    if (code == set_vipp)
        return send(port, CProtocol::Prog::SetVIpp,
                    payloadVIpp(num(CTagCmdProgSetVIPP::vpp), num(CTagCmdProgSetVIPP::ipp),
                                TAPP_PARAM(param, CTagCmdProgSetVIPP::ocp).toBool()));
    if (code == set_io)
        return send(port, CProtocol::Prog::SetIO,
                    TNormCmdParam::cmdLeaveExec(TAPP_PARAM(param, CTagCmd::id_cmd).toInt(), false));
    if (code == CTagCmdCode::reset)
        return send(port, CProtocol::Prog::Reset,
                    payloadReset(TAPP_PARAM(param, CTagCmdProgReset::duration).toInt()));
    if (code == gen)
        return send(port, CProtocol::Prog::Generator,
                    payloadGenerator(TAPP_PARAM(param, CTagCmdProgGenerator::freq).toUInt(),
                                     TAPP_PARAM(param, CTagCmdProgGenerator::duty_cycle).toUInt()));
    if (code == set_device) return execSetDevice(port);
    if (code == auto_detect) return execAutoDetect(port, finish);
    return false;
}

bool TDevProgExec::execSetDevice(TSerialPort& port) {
    IDevice* dev = deviceOf(TAPP_PARAM(param, CTagCmd::id_cmd).toInt());
    if (!isOpenPort(port)) return false;
    if (!dev) {
        setErrorText(Lang.get(387).arg(CmdCode.getName(CTagCmdCode::set_device)));
        return false;
    }
    port.describeTarget(dev->getDevParam());
    return send(port, CProtocol::Prog::SetDevice, dev->getCmdSetDeviceExec(param));
}

bool TDevProgExec::execAutoDetect(TSerialPort& port, bool& finish) {
    const int idCmd = TAPP_PARAM(param, CTagCmd::id_cmd).toInt();
    IDevice* dev = deviceOf(idCmd);
    if (!execSetDevice(port)) return false;
    std::unique_ptr<IDeviceExec> reader(dev->createExecObject(param));
    QString signature;
    if (!reader || !reader->execReadSignature(port, signature)) {
        setErrorText(port.isTimeOut() || !reader ? port.getErrorText() : reader->getErrorText());
        return false;
    }
    const QString family = TAPP_PARAM(param, CTagCmdProgAutoDetect::name).toString();
    QStringList matches;
    for (const auto& pair : TSignature::getSignatureListFromName(family))
        if (pair.first == signature) {
            matches.append(pair.second);
            // The device name travels as the event's parameter for callers that act on what was found.
            emit signalEventText(ExecResult,
                                 Lang.get(401).arg(QStringLiteral("%1 (%2)").arg(pair.second, signature)),
                                 pair.second);
        }
    if (matches.isEmpty()) {
        const QString text = Lang.get(402) + QStringLiteral(" (%1)").arg(signature);
        if (!TAPP_PARAM(param, CTagCmdProgAutoDetect::stop).toBool()) {
            emit signalEventText(ExecInfo, text, QString());
            return true;
        }
        setErrorText(text);
        return false;
    }
    const TPairStringList routes =
        TSignature::getAutoRouteTable(TAPP_PARAM(param, CTagCmdProgAutoDetect::route).toString());
    for (const QString& device : matches)
        for (const auto& route : routes) {
            if (route.first != device) continue;
            const int target = route.second.toInt();
            if (target < 0 || ProjectData.getPosCfgFromIdCfg(target) < 0) {
                setErrorText(Lang.get(397));
                return false;
            }
            // The routed configuration takes the programmer over: this run lets go of the port and ends.
            port.close();
            emit signalEventText(ExecInfo, Lang.get(403).arg(ProjectData.getNameCfgFromIdCfg(target)),
                                 QString());
            if (TAPP_PARAM(param, CTagCmdProgAutoDetect::execute).toBool()) emit signalExecuteFromCmd(target);
            finish = true;
            return true;
        }
    const QString here = ProjectData.getNameCfgFromIdCfg(ProjectData.getIdCfgFromIdCmd(idCmd));
    emit signalEventText(ExecInfo, QStringLiteral("\n--> %1 \"%2\"").arg(Lang.get(394), here), QString());
    return true;
}
