#include "devices/TDevFamily.h"

#include "devices/TDeviceList.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "ui/TFormCmd.h"

void TDevFamily::getDefaultParamCmdSetDevice(TData& p) {
    TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
}

QWidget* TDevFamily::getWgtCmdSetDeviceParam(const TData& p) {
    return TNormCmdParam::cmdSetCLKForm(getDevConnect(), p);
}

QByteArray TDevFamily::getCmdSetDeviceExec(const TData& param) {
    TData p = param;
    if (!p.contains(QStringLiteral("clk"))) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    QString type = devParam.value(QStringLiteral("prg_type")).toString();
    QByteArray out;
    TMiscDev::appendLE(out, DeviceList.getDevCode(type), 2);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("cfg_hw")).toUInt(), 1);
    const QString key = QLatin1String(familyByteKey);
    TMiscDev::appendLE(out, familyByteKey ? p.value(key, devParam.value(key)).toUInt() : 0, 1);
    TMiscDev::appendLE(out, TMiscDev::getCLK(p), 4);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("delay")).toUInt(), 1);
    return out;
}
