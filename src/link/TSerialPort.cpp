#include "link/TSerialPort.h"

#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/TPortLock.h"
#include "link/bridge/IBridge.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace {
const unsigned char frameStart = CProtocol::FrameStart;
const unsigned char errorReply = CProtocol::ErrorReply;
const int maxFrame = CProtocol::MaxPayload + CProtocol::FrameOverhead;
const int langErrorCodes[CProtocol::ErrCount] = {405, 406, 407, 408, 409, 410, 411, 412, 413, 414, 415, 416};
} // namespace

TSerialPort::TSerialPort() : QObject(nullptr), port(new QSerialPort(this)) {
    txFrame.reserve(maxFrame);
    rxFrame.reserve(maxFrame);
}

TSerialPort::~TSerialPort() {
    delete port;
    TPortLock::release(this);
}

int TSerialPort::LangErrorCode(unsigned int code) {
    return code < CProtocol::ErrCount ? langErrorCodes[code] : 421;
}

unsigned char TSerialPort::getCRC(const QByteArray& bytes, unsigned short count) {
    return checkByte(bytes, count);
}

// A full frame is longer than a 16-bit count can say, so the exchange itself counts in int.
unsigned char TSerialPort::checkByte(const QByteArray& bytes, int count) {
    const int n = qMin(count, bytes.size());
    const unsigned char* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    unsigned int sum = 0;
    for (int i = 0; i < n; ++i)
        sum += p[i];
    return static_cast<unsigned char>(0x100 - (sum & 0xFF));
}

bool TSerialPort::sendPackage(unsigned char cmd, QByteArray& data) {
    errorText.clear();
    timeOutFlag = false;
    lineLost = false;
    if (!port->isOpen()) {
        // Nothing is exchanged before the port has been opened and configured for a programmer.
        timeOutFlag = true;
        errorText = Lang.get(392);
        return false;
    }
    port->clear(QSerialPort::AllDirections);
    readAhead.clear();
    if (bridge || !unknownProtocol.isEmpty()) return bridgeExchange(cmd, data);
    buildRequest(cmd, data);
    if (!writeData(txFrame)) return fail();
    rxFrame.resize(0);
    if (!receive(rxFrame)) return fail();
    if (checkByte(rxFrame, rxFrame.size() - 1) != static_cast<unsigned char>(rxFrame.back())) return fail();
    const int replyLen = rxFrame.size() - 5;
    if (static_cast<unsigned char>(rxFrame.at(1)) == errorReply) {
        if (replyLen < 2) return fail();
        const unsigned int code =
            static_cast<unsigned char>(rxFrame.at(4)) | static_cast<unsigned char>(rxFrame.at(5)) << 8;
        errorText = code < CProtocol::ErrCount ? Lang.get(LangErrorCode(code)) : Lang.get(421).arg(code);
        return false;
    }
    data.resize(replyLen);
    memcpy(data.data(), rxFrame.constData() + 4, static_cast<size_t>(replyLen));
    return true;
}

// The frame buffers keep their reserved room between exchanges: allocating and returning 64 KiB on
// every exchange costs page faults that show on the largest transfers.
void TSerialPort::buildRequest(unsigned char cmd, const QByteArray& data) {
    const unsigned short len = static_cast<unsigned short>(data.size());
    txFrame.resize(len + 5);
    char* p = txFrame.data();
    p[0] = static_cast<char>(frameStart);
    p[1] = static_cast<char>(cmd);
    p[2] = static_cast<char>(len & 0xFF);
    p[3] = static_cast<char>(len >> 8);
    memcpy(p + 4, data.constData(), len);
    p[len + 4] = static_cast<char>(checkByte(txFrame, len + 4));
}

// Bytes ahead of the start byte are skipped; after it, every byte belongs to the frame. The header is
// read a byte at a time, the rest in whatever blocks have arrived: the time-out still bounds each gap.
bool TSerialPort::receive(QByteArray& reply) {
    unsigned char b = 0;
    do {
        if (!readByte(b)) return false;
    } while (b != frameStart);
    reply.append(static_cast<char>(b));
    for (int i = 1; i < 4; ++i) {
        if (!readByte(b)) return false;
        reply.append(static_cast<char>(b));
    }
    const int len = static_cast<unsigned char>(reply.at(2)) | static_cast<unsigned char>(reply.at(3)) << 8;
    if (len > maxData) return false;
    return readBlock(reply, len + 1);
}

// The serial port object hands over at most a small chunk per wait, which would cost a system call pair
// every few hundred bytes; the body of a frame is therefore read from the descriptor itself once the
// port's own buffer is empty. Nothing else reads the descriptor: the exchange is half-duplex.
bool TSerialPort::readBlock(QByteArray& reply, int count) {
    int have = reply.size();
    reply.resize(have + count);
    const qint64 buffered = port->read(reply.data() + have, count);
    if (buffered < 0) return false;
    have += static_cast<int>(buffered);
    count -= static_cast<int>(buffered);
    const int fd = static_cast<int>(port->handle());
    while (count > 0) {
        pollfd p{fd, POLLIN, 0};
        const int ready = poll(&p, 1, timeOut);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        const ssize_t got = ::read(fd, reply.data() + have, static_cast<size_t>(count));
        if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (got <= 0) {
            lineLost = true;
            return false;
        }
        have += static_cast<int>(got);
        count -= static_cast<int>(got);
    }
    return true;
}

bool TSerialPort::fail() {
    timeOutFlag = true;
    // A port that vanished (cable pulled) reads end-of-file or fails; say so instead of "no answer".
    const QSerialPort::SerialPortError e = port->error();
    const bool gone = lineLost || e == QSerialPort::ResourceError || e == QSerialPort::ReadError ||
                      e == QSerialPort::WriteError;
    errorText = gone ? Lang.get(431) : Lang.get(389);
    return false;
}

QString TSerialPort::getErrorText() const {
    if (!errorText.isEmpty()) return errorText;
    const QString text = port->errorString();
    if (text == "No such file or directory") return Lang.get(393);
    if (port->error() == QSerialPort::PermissionError)
        return text == "Permission denied" ? Lang.get(430) : Lang.get(1304).arg(port->portName());
    return text;
}

bool TSerialPort::writeData(const QByteArray& bytes) {
    if (port->write(bytes) != bytes.size()) return false;
    return port->waitForBytesWritten(timeOut);
}

bool TSerialPort::readByte(unsigned char& b) {
    if (port->bytesAvailable() == 0 && !port->waitForReadyRead(timeOut)) return false;
    char c = 0;
    if (port->read(&c, 1) != 1) return false;
    b = static_cast<unsigned char>(c);
    return true;
}

bool TSerialPort::purge(bool input, bool output) {
    if (!input && !output) return false;
    QSerialPort::Directions d;
    if (input) d |= QSerialPort::Input;
    if (output) d |= QSerialPort::Output;
    return port->clear(d);
}
