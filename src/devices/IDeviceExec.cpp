#include "devices/IDeviceExec.h"

#include "app/TLang.h"
#include "link/TSerialPort.h"

IDeviceExec::IDeviceExec(const TData& p, QObject* parent) : QObject(parent), param(p) {}

IDeviceExec::~IDeviceExec() = default;

bool IDeviceExec::execReadSignature(TSerialPort&, QString&) {
    return false;
}

bool IDeviceExec::isOpenPort(TSerialPort& port) {
    if (port.isOpen()) return true;
    errorText = Lang.get(392);
    return false;
}

bool IDeviceExec::sendPackage(TSerialPort& port, unsigned char cmd, QByteArray& data) {
    if (port.sendPackage(cmd, data)) return true;
    errorText = port.getErrorText();
    return false;
}
