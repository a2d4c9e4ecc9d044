#include "SimBusPirate.h"

namespace {
const char ok = 0x01;
const char failed = 0x00;
const int enterResets = 20;
const int transferMax = 4096;
const unsigned char writeThenRead = 0x04;
const unsigned char bulkWriteCmd = 0x10;
const unsigned char powerBit = 0x08;

QByteArray le16(int v) {
    return QByteArray(1, char(v & 0xFF)).append(char(v >> 8 & 0xFF));
}
int be16(const QByteArray& d, int at) {
    return uchar(d.at(at)) << 8 | uchar(d.at(at + 1));
}
} // namespace

SimBusPirate::SimBusPirate(SimSocket& s) : socket(s), bus(s) {}

bool SimBusPirate::take(QByteArray& request) {
    if (buffer.isEmpty()) return false;
    const unsigned char cmd = uchar(buffer.at(0));
    int size = 1;
    if (mode == Mode::Spi && cmd == writeThenRead) {
        if (buffer.size() < 5) return false;
        size = 5 + be16(buffer, 1);
    } else if (mode == Mode::I2c && (cmd & 0xF0) == bulkWriteCmd) {
        size = 2 + (cmd & 0x0F);
    }
    if (buffer.size() < size) return false;
    request = buffer.left(size);
    buffer.remove(0, size);
    return true;
}

QByteArray SimBusPirate::refusal(const QByteArray&) {
    return QByteArray(1, failed);
}

QByteArray SimBusPirate::answer(const QByteArray& request) {
    const unsigned char cmd = uchar(request.at(0));
    if (mode == Mode::Terminal) {
        // The terminal answers nothing binary; enough resets in a row enter binary mode.
        resets = cmd == 0x00 ? resets + 1 : 0;
        if (resets < enterResets) return QByteArray();
        mode = Mode::Binary;
        return "BBIO1";
    }
    if (cmd == 0x00) {
        stop();
        mode = Mode::Binary;
        return "BBIO1";
    }
    if (mode == Mode::Binary) return binary(cmd);
    if ((cmd & 0xF0) == 0x40) {
        powered = cmd & powerBit;
        if (!powered) socket.chip().leave();
        return QByteArray(1, ok);
    }
    if ((cmd & 0xF0) == 0x60)
        return QByteArray(1, (mode == Mode::I2c ? (cmd & 0x0F) <= 3 : (cmd & 0x0F) <= 7) ? ok : failed);
    return mode == Mode::Spi ? spi(request) : i2c(request);
}

QByteArray SimBusPirate::binary(unsigned char cmd) {
    switch (cmd) {
    case 0x01:
        mode = Mode::Spi;
        return "SPI1";
    case 0x02:
        mode = Mode::I2c;
        return "I2C1";
    case 0x0F:
        mode = Mode::Terminal;
        resets = 0;
        powered = false;
        return QByteArray(1, ok);
    default:
        return QByteArray(1, failed);
    }
}

QByteArray SimBusPirate::spi(const QByteArray& request) {
    const unsigned char cmd = uchar(request.at(0));
    if ((cmd & 0xF0) == 0x80 || cmd == 0x02 || cmd == 0x03) return QByteArray(1, ok);
    if (cmd != writeThenRead) return QByteArray(1, failed);
    const int sent = be16(request, 1), count = be16(request, 3);
    if (sent > transferMax || count > transferMax) return QByteArray(1, failed);
    if (!powered) return QByteArray(1, ok) + QByteArray(count, char(0xFF));
    return QByteArray(1, ok) + bus.transfer(request.mid(5, sent), count);
}

QByteArray SimBusPirate::i2c(const QByteArray& request) {
    const unsigned char cmd = uchar(request.at(0));
    switch (cmd) {
    case 0x02: // start, or a repeated start after a write phase
        if (!transfer.isEmpty()) addressed = transfer;
        transfer.clear();
        return QByteArray(1, ok);
    case 0x03:
        stop();
        return QByteArray(1, ok);
    case 0x04:
        return QByteArray(1, readAt < readData.size() ? readData.at(readAt++) : char(0xFF));
    case 0x06:
    case 0x07:
        return QByteArray(1, ok);
    default:
        if ((cmd & 0xF0) == bulkWriteCmd) return bulkWrite(request.mid(1));
        return QByteArray(1, failed);
    }
}

// The first byte after a start is the select byte: a read select starts reading where the write
// phase before the repeated start addressed; a write select must find a part at its address.
QByteArray SimBusPirate::bulkWrite(const QByteArray& bytes) {
    QByteArray acks;
    for (char b : bytes) {
        bool ack = true;
        if (transfer.isEmpty() && (uchar(b) & 1)) {
            const SimReply r = powered && !addressed.isEmpty()
                                   ? socket.request(5, le16(transferMax) + addressed)
                                   : SimReply::fail(ErrNoAck);
            ack = !r.isError;
            readData = r.data;
            readAt = 0;
        } else if (transfer.isEmpty()) {
            ack = powered && acknowledges(uchar(b));
        }
        transfer.append(b);
        acks.append(char(ack ? 0x00 : 0x01));
    }
    return QByteArray(1, ok) + acks;
}

bool SimBusPirate::acknowledges(unsigned char select) {
    const int addrBytes = socket.chip().info().params.value("addr_size").toInt();
    return !socket.request(5, le16(0) + char(select) + QByteArray(addrBytes, '\0')).isError;
}

// A write select with data after its address bytes is a write; the part takes it at the stop.
void SimBusPirate::stop() {
    const int addrBytes = socket.chip().info().params.value("addr_size").toInt();
    if (powered && transfer.size() > 1 + addrBytes && !(uchar(transfer.at(0)) & 1))
        socket.request(4, transfer);
    transfer.clear();
    addressed.clear();
}
