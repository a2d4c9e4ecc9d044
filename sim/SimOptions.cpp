#include "SimOptions.h"

#include "SimStreamProtocol.h"

namespace {
bool toCount(const QString& text, int& value) {
    bool ok = false;
    value = text.toInt(&ok, 0);
    return ok && value >= 0;
}

bool parseError(const QString& text, QHash<int, int>& errors) {
    const QStringList parts = text.split(':');
    int cmd = 0, code = 0;
    if (parts.size() != 2 || !toCount(parts.at(0), cmd) || !toCount(parts.at(1), code)) return false;
    if (cmd > 0xFF || code > 0xFFFF) return false;
    errors.insert(cmd, code);
    return true;
}
} // namespace

QString SimOptions::usage() {
    return "usage: tarvelix-progsim [--link PATH] [--chip NAME --devices DIR] [--bus i2c|spi|avr]\n"
           "       [--image FILE] [--trace FILE] [--interface N] [--noise N] [--corrupt K]\n"
           "       [--silent-after K] [--delay-ms D] [--error CMD:CODE]... [--unplug-after K]\n"
           "       [--short N] [--exit-with-parent] [--pins N] [--timing on|off] [--write-cycle MS]\n"
           "       [--protocol native|serprog|stk500v1|buspirate]\n";
}

bool SimOptions::parse(const QStringList& args, QString& error) {
    for (int i = 1; i < args.size(); ++i) {
        const QString opt = args.at(i);
        if (opt == "--exit-with-parent") {
            exitWithParent = true;
            continue;
        }
        if (i + 1 >= args.size()) {
            error = QStringLiteral("option %1 needs a value").arg(opt);
            return false;
        }
        const QString v = args.at(++i);
        int n = 0;
        bool ok = true;
        if (opt == "--link")
            link = v;
        else if (opt == "--chip")
            chip = v;
        else if (opt == "--devices")
            devices = v;
        else if (opt == "--bus")
            bus = v, ok = v == "i2c" || v == "spi" || v == "avr";
        else if (opt == "--image")
            image = v;
        else if (opt == "--trace")
            trace = v;
        else if (opt == "--interface")
            ok = toCount(v, n) && n <= 0xFFFF, interfaceCode = static_cast<unsigned short>(n);
        else if (opt == "--noise")
            ok = toCount(v, noise);
        else if (opt == "--corrupt")
            ok = toCount(v, corrupt);
        else if (opt == "--silent-after")
            ok = toCount(v, silentAfter);
        else if (opt == "--delay-ms")
            ok = toCount(v, delayMs);
        else if (opt == "--unplug-after")
            ok = toCount(v, unplugAfter);
        else if (opt == "--short")
            ok = toCount(v, shortBy);
        else if (opt == "--error")
            ok = parseError(v, errors);
        else if (opt == "--pins")
            ok = toCount(v, pins) && pins < 8;
        else if (opt == "--timing")
            ok = v == "on" || v == "off", timing = v == "on";
        else if (opt == "--write-cycle")
            ok = toCount(v, writeCycleMs);
        else if (opt == "--protocol")
            protocol = v, ok = v == "native" || SimStreamProtocol::known(v);
        else {
            error = QStringLiteral("unknown option %1").arg(opt);
            return false;
        }
        if (!ok) {
            error = QStringLiteral("bad value for %1: %2").arg(opt, v);
            return false;
        }
    }
    if (!chip.isEmpty() && devices.isEmpty()) {
        error = "--chip needs --devices";
        return false;
    }
    return true;
}
