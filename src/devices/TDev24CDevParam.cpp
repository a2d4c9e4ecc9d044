#include "devices/TDev24CDevParam.h"

#include "app/TApp.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"

void TDev24CDevParam::def(TData& p) {
    p.insert(addr, 0);
}

bool TDev24CDevParam::check(const TData& p) {
    bool ok = false;
    const int a = p.value(addr).toInt(&ok);
    return ok && a >= 0 && a < 8;
}

QByteArray TDev24CDevParam::payload(IDevice* dev, const TData& param) {
    // A set-device command without a clock of its own uses the programmer's default for the part.
    TData p = param;
    if (!p.contains(QStringLiteral("clk")) && dev) TNormCmdParam::cmdSetCLKDef(dev->getDevConnect(), p);
    const TData d = dev ? dev->getDevParam() : TData();
    QString typeName = TAPP_PARAM(d, "prg_type").toString();
    const unsigned int type = DeviceList.getDevCode(typeName);
    const unsigned int clk = TMiscDev::getCLK(p);
    QByteArray out;
    out.append(char(type & 0xFF)).append(char(type >> 8 & 0xFF));
    out.append(char(TAPP_PARAM(d, "cfg_hw").toUInt() & 0xFF));
    out.append(char(p.value(addr).toUInt() & 0xFF));
    for (int i = 0; i < 4; ++i)
        out.append(char(clk >> (8 * i) & 0xFF));
    out.append(char(TAPP_PARAM(d, "delay").toUInt() & 0xFF));
    return out;
}
