#include "devices/TDev24CDevParam.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "devices/IDevice.h"
#include "misc/dev_misc.h"

#include <QFile>
#include <QTextStream>

void TDev24CDevParam::def(TData& p) {
    p.insert(addr, 0);
}

bool TDev24CDevParam::check(const TData& p) {
    bool ok = false;
    const int a = p.value(addr).toInt(&ok);
    return ok && a >= 0 && a < 8;
}

QByteArray TDev24CDevParam::payload(IDevice* dev, const TData& p) {
    const TData d = dev ? dev->getDevParam() : TData();
    const unsigned int type = getDevCode(TAPP_PARAM(d, "prg_type").toString());
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

unsigned int TDev24CDevParam::getDevCode(const QString& name) {
    QFile f(TApp::getAbsoluteFile(AppData.getPathDevicesAbs(), QStringLiteral("types.lst")));
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return 0;
    QTextStream in(&f);
    in.setCodec("UTF-8");
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        const int eq = line.indexOf('=');
        if (line.isEmpty() || line.startsWith('#') || eq < 0) continue;
        // The name is compared untrimmed: "name =" is not "name=".
        if (line.left(eq) == name) return line.mid(eq + 1).toUInt();
    }
    return 0;
}
