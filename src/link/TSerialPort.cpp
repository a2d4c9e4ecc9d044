#include "link/TSerialPort.h"

#include "app/TLang.h"

namespace {
const unsigned char frameStart = 0xC0;
const unsigned char errorReply = 0xFF;
const int langErrorCodes[12] = {405, 406, 407, 408, 409, 410, 411, 412, 413, 414, 415, 416};
} // namespace

TSerialPort::TSerialPort() : QObject(nullptr), port(new QSerialPort(this)) {}

TSerialPort::~TSerialPort() {
    delete port;
}

int TSerialPort::LangErrorCode(unsigned int code) {
    return code < 12 ? langErrorCodes[code] : 421;
}

unsigned char TSerialPort::getCRC(const QByteArray& bytes, unsigned short count) {
    const int n = qMin<int>(count, bytes.size());
    unsigned char sum = 0;
    for (int i = 0; i < n; ++i)
        sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(bytes.at(i)));
    return static_cast<unsigned char>(0x100 - sum);
}

bool TSerialPort::sendPackage(unsigned char cmd, QByteArray& data) {
    errorText.clear();
    timeOutFlag = false;
    if (!port->isOpen()) {
        // Nothing is exchanged before the port has been opened and configured for a programmer.
        timeOutFlag = true;
        errorText = Lang.get(392);
        return false;
    }
    port->clear(QSerialPort::AllDirections);
    const unsigned short len = static_cast<unsigned short>(data.size());
    QByteArray request;
    request.reserve(len + 5);
    request.append(static_cast<char>(frameStart)).append(static_cast<char>(cmd));
    request.append(static_cast<char>(len & 0xFF)).append(static_cast<char>(len >> 8));
    request.append(data.constData(), len);
    request.append(static_cast<char>(getCRC(request, static_cast<unsigned short>(request.size()))));
    if (!writeData(request)) return fail();
    QByteArray reply;
    if (!receive(reply)) return fail();
    if (getCRC(reply, static_cast<unsigned short>(reply.size() - 1)) !=
        static_cast<unsigned char>(reply.back()))
        return fail();
    const int replyLen = reply.size() - 5;
    if (static_cast<unsigned char>(reply.at(1)) == errorReply) {
        if (replyLen < 2) return fail();
        const unsigned int code =
            static_cast<unsigned char>(reply.at(4)) | static_cast<unsigned char>(reply.at(5)) << 8;
        errorText = code < 12 ? Lang.get(LangErrorCode(code)) : Lang.get(421).arg(code);
        return false;
    }
    data = reply.mid(4, replyLen);
    return true;
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

bool TSerialPort::readBlock(QByteArray& reply, int count) {
    int have = reply.size();
    reply.resize(have + count);
    while (count > 0) {
        if (port->bytesAvailable() == 0 && !port->waitForReadyRead(timeOut)) return false;
        const qint64 got = port->read(reply.data() + have, count);
        if (got < 0) return false;
        have += static_cast<int>(got);
        count -= static_cast<int>(got);
    }
    return true;
}

bool TSerialPort::fail() {
    timeOutFlag = true;
    // A port that vanished (cable pulled) reads end-of-file or fails; say so instead of "no answer".
    const QSerialPort::SerialPortError e = port->error();
    const bool gone =
        e == QSerialPort::ResourceError || e == QSerialPort::ReadError || e == QSerialPort::WriteError;
    errorText = gone ? Lang.get(431) : Lang.get(389);
    return false;
}

QString TSerialPort::getErrorText() const {
    if (!errorText.isEmpty()) return errorText;
    const QString text = port->errorString();
    if (text == "No such file or directory") return Lang.get(393);
    if (port->error() == QSerialPort::PermissionError)
        return text == "Permission denied" ? Lang.get(430) : Lang.get(432);
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
