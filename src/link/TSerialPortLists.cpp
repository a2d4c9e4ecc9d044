// The port settings offered in the user interface, and the display names of the ports.
#include "link/TSerialPort.h"

#include <QSerialPortInfo>

QStringList TSerialPort::getListBaudRate() {
    return {"110",   "300",   "600",   "1200",  "2400",   "4800",   "9600",   "14400",
            "19200", "38400", "56000", "57600", "115200", "230400", "460800", "921600"};
}
QStringList TSerialPort::getListDataBits() {
    return {"5", "6", "7", "8"};
}
QStringList TSerialPort::getListParity() {
    return {"None", "Odd", "Even", "Mark", "Space"};
}
QStringList TSerialPort::getListStopBits() {
    return {"1", "1.5", "2"};
}
QStringList TSerialPort::getListFlowControl() {
    return {"None", "Hardware", "Software", "Custom"};
}

QString TSerialPort::getPortFullName(const QString& name, const QString& manufacturer,
                                     const QString& description) {
    if (description.isEmpty()) return name;
    if (manufacturer.isEmpty()) return QStringLiteral("%1 (%2)").arg(name, description);
    return QStringLiteral("%1 (%2 %3)").arg(name, manufacturer, description);
}

QStringList TSerialPort::getListPortName() {
    QStringList list;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
        list << getPortFullName(info.portName(), info.manufacturer(), info.description());
    return list;
}

// The display name puts one blank before the parenthesis; that blank goes with it.
QString TSerialPort::getPortNameFromFullName(const QString& full) {
    const int pos = full.indexOf('(');
    if (pos <= 0) return full;
    return full.left(pos - 1);
}
