// The bridge side of TSerialPort: for hardware that does not speak the frame protocol, a bridge
// answers each frame, and the port is the raw line it talks on.
#include "link/TSerialPort.h"

#include "app/TLang.h"
#include "link/bridge/TBridgeTable.h"

#include <QThread>

#include <cerrno>
#include <poll.h>
#include <unistd.h>

void TSerialPort::setProtocol(const QString& protocol) {
    unknownProtocol.clear();
    bridge = TBridgeTable::create(protocol);
    if (!bridge && protocol != TBridgeTable::native) unknownProtocol = protocol;
}

void TSerialPort::describeTarget(const QVariantMap& params) {
    if (bridge) bridge->describeTarget(params);
}

bool TSerialPort::bridgeExchange(unsigned char cmd, QByteArray& data) {
    if (!unknownProtocol.isEmpty()) {
        timeOutFlag = true;
        errorText = Lang.get(1500).arg(unknownProtocol, TBridgeTable::names().join(", "));
        return false;
    }
    return takeBridgeReply(bridge->exchange(*this, cmd, data), data);
}

// The reply stands where the programmer's reply frame would: an error code gives the same text and
// leaves the link up; a lost answer is a failed link with the bridge's own message.
bool TSerialPort::takeBridgeReply(const TBridgeReply& reply, QByteArray& data) {
    switch (reply.kind) {
    case TBridgeReply::Kind::Ok:
        data = reply.data;
        return true;
    case TBridgeReply::Kind::Error:
        errorText = reply.code < 12 ? Lang.get(LangErrorCode(reply.code)) : Lang.get(421).arg(reply.code);
        return false;
    case TBridgeReply::Kind::Lost:
        // The hardware's state is unknown now: synchronise again before the next exchange.
        bridge->restart();
        timeOutFlag = true;
        errorText = reply.text;
        return false;
    case TBridgeReply::Kind::Refused:
        errorText = reply.text;
        return false;
    }
    return false;
}

bool TSerialPort::send(const QByteArray& bytes) {
    lineLost = false;
    return writeData(bytes);
}

// Reads whatever has arrived, not only what was asked for: a bridge that sent several commands ahead
// reads their answers one after the other, and each needs no call of its own then.
bool TSerialPort::receive(QByteArray& got, int count, int timeOutMs) {
    lineLost = false;
    if (port->bytesAvailable() > 0) readAhead += port->readAll();
    const int fd = static_cast<int>(port->handle());
    char buffer[4096];
    bool ok = true;
    while (readAhead.size() < count) {
        pollfd p{fd, POLLIN, 0};
        const int ready = poll(&p, 1, timeOutMs);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) {
            ok = false;
            break;
        }
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (n <= 0) {
            lineLost = true;
            ok = false;
            break;
        }
        readAhead.append(buffer, static_cast<int>(n));
    }
    const int n = qMin(count, readAhead.size());
    got.append(readAhead.constData(), n);
    readAhead.remove(0, n);
    return ok;
}

void TSerialPort::discardInput() {
    readAhead.clear();
    port->clear(QSerialPort::Input);
}

void TSerialPort::setDtr(bool on) {
    port->setDataTerminalReady(on);
}

void TSerialPort::pause(int ms) {
    QThread::msleep(static_cast<unsigned long>(ms));
}
