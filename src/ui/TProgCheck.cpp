#include "ui/TProgCheck.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TDevProgExec.h"
#include "link/CProtocol.h"
#include "link/TProg.h"
#include "link/TSerialPort.h"

#include <QFileInfo>

bool TProgCheck::open(TSerialPort& port, const QString& name, int* resetDefault, QString& error) {
    if (!AppData.progName.contains(name)) {
        error = Lang.get(135).arg(name);
        return false;
    }
    const TProgInfo info = AppData.progName.getData(name);
    const QString file = AppData.getProgFile(name);
    if (file.isEmpty() || !QFileInfo(file).isFile()) {
        error = Lang.get(135).arg(name);
        return false;
    }
    const TProg prog(file);
    if (resetDefault) *resetDefault = prog.getResetDef();
    if (!port.open(info.port, TSerialPort::OpenMode(QIODevice::ReadWrite))) {
        error = port.getErrorText();
        return false;
    }
    port.applySettings(prog);
    return true;
}

bool TProgCheck::identify(const QString& name, QString& text) {
    TSerialPort port;
    if (!open(port, name, nullptr, text)) return false;
    QByteArray data;
    const bool ok = port.sendPackage(CProtocol::Prog::Ident, data);
    text = ok ? QString::fromLatin1(data.left(data.indexOf('\0') < 0 ? data.size() : data.indexOf('\0')))
              : port.getErrorText();
    port.close();
    return ok;
}

bool TProgCheck::reset(const QString& name, QString& text) {
    TSerialPort port;
    int duration = 0;
    if (!open(port, name, &duration, text)) return false;
    QByteArray data = TDevProgExec::payloadReset(duration);
    const bool ok = port.sendPackage(CProtocol::Prog::Reset, data);
    text = ok ? QString() : port.getErrorText();
    port.close();
    return ok;
}
