#include "SimSerprog.h"

namespace {
const char ack = 0x06;
const char nak = 0x15;

enum Op : unsigned char {
    Nop = 0x00,
    QIface = 0x01,
    QCmdMap = 0x02,
    QPgmName = 0x03,
    QSerBuf = 0x04,
    QBusType = 0x05,
    QWrnMaxLen = 0x08,
    SyncNop = 0x10,
    QRdnMaxLen = 0x11,
    SBusType = 0x12,
    OSpiOp = 0x13,
    SSpiFreq = 0x14,
    SPinState = 0x15,
};
const unsigned char offered[] = {Nop,     QIface,     QCmdMap,  QPgmName, QSerBuf,  QBusType, QWrnMaxLen,
                                 SyncNop, QRdnMaxLen, SBusType, OSpiOp,   SSpiFreq, SPinState};
const unsigned char busSpi = 0x08;
const int serialBuffer = 4096;

int u24(const QByteArray& d, int at) {
    return uchar(d.at(at)) | uchar(d.at(at + 1)) << 8 | uchar(d.at(at + 2)) << 16;
}

QByteArray le(unsigned int v, int size) {
    QByteArray b;
    for (int i = 0; i < size; ++i)
        b.append(char(v >> (8 * i) & 0xFF));
    return b;
}

// Parameter bytes after the command byte, -1 for a command the firmware does not know.
int parameterSize(unsigned char op) {
    switch (op) {
    case SBusType:
    case SPinState:
        return 1;
    case SSpiFreq:
        return 4;
    case OSpiOp:
        return 6;
    default:
        for (unsigned char o : offered)
            if (o == op) return 0;
        return -1;
    }
}
} // namespace

SimSerprog::SimSerprog(SimSocket& s) : socket(s), bus(s) {}

QByteArray SimSerprog::commandMap() {
    QByteArray map(32, '\0');
    for (unsigned char op : offered)
        map[op / 8] = char(map.at(op / 8) | 1 << (op % 8));
    return map;
}

bool SimSerprog::take(QByteArray& request) {
    if (buffer.isEmpty()) return false;
    const int params = parameterSize(uchar(buffer.at(0)));
    int size = 1 + qMax(params, 0);
    if (params > 0 && buffer.size() < size) return false;
    if (uchar(buffer.at(0)) == OSpiOp) size += u24(buffer, 1);
    if (buffer.size() < size) return false;
    request = buffer.left(size);
    buffer.remove(0, size);
    return true;
}

QByteArray SimSerprog::refusal(const QByteArray&) {
    return QByteArray(1, nak);
}

QByteArray SimSerprog::answer(const QByteArray& request) {
    const QByteArray ok(1, ack);
    switch (uchar(request.at(0))) {
    case Nop:
    case SBusType:
        return request.size() > 1 && !(uchar(request.at(1)) & busSpi) ? refusal(request) : ok;
    case SPinState:
        if (uchar(request.at(1)) == 0) socket.chip().leave();
        return ok;
    case QIface:
        return ok + le(1, 2);
    case QCmdMap:
        return ok + commandMap();
    case QPgmName:
        return ok + QByteArray("tarvelix-sim").leftJustified(16, '\0');
    case QSerBuf:
        return ok + le(serialBuffer, 2);
    case QBusType:
        return ok + QByteArray(1, char(busSpi));
    case QWrnMaxLen:
        return ok + le(writeMax, 3);
    case QRdnMaxLen:
        return ok + le(readMax, 3);
    case SyncNop:
        return QByteArray(1, nak) + ok;
    case OSpiOp:
        return spiOp(request);
    case SSpiFreq:
        return setFreq(request);
    default:
        return refusal(request);
    }
}

QByteArray SimSerprog::setFreq(const QByteArray& request) {
    const unsigned int hz = uchar(request.at(1)) | uchar(request.at(2)) << 8 | uchar(request.at(3)) << 16 |
                            uint(uchar(request.at(4))) << 24;
    if (hz == 0) return refusal(request);
    const unsigned int actual = qMin(hz, SimSocket::clockMax);
    socket.request(2, le(actual, 4));
    return QByteArray(1, ack) + le(actual, 4);
}

QByteArray SimSerprog::spiOp(const QByteArray& request) {
    const int sent = u24(request, 1), count = u24(request, 4);
    if (sent > writeMax || count > readMax) return refusal(request);
    return QByteArray(1, ack) + bus.transfer(request.mid(7, sent), count);
}
