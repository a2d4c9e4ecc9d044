#include "link/bridge/TBridgeBusPirate.h"

#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/bridge/CBridge.h"
#include "link/bridge/CBusPirate.h"

namespace {
const unsigned char readBit = 0x01;
const unsigned char pinBits = 0x0E;

unsigned int clockOf(const QByteArray& d, int at) {
    return uchar(d.at(at)) | uchar(d.at(at + 1)) << 8 | uchar(d.at(at + 2)) << 16 |
           uint(uchar(d.at(at + 3))) << 24;
}
} // namespace

TBridgeBusPirate::TBridgeBusPirate()
    : IBridge(protocolName, interface, {CBridge::typeSpiFlash, CBridge::typeI2c}) {}

QString TBridgeBusPirate::name(unsigned char cmd) {
    return QStringLiteral("0x%1").arg(cmd, 2, 16, QChar('0')).toUpper().replace("0X", "0x");
}

QByteArray TBridgeBusPirate::spiTransfer(const QByteArray& tx, int readCount) {
    return QByteArray(1, char(CBusPirate::writeThenRead))
        .append(char(tx.size() >> 8))
        .append(char(tx.size() & 0xFF))
        .append(char(readCount >> 8))
        .append(char(readCount & 0xFF))
        .append(tx);
}

unsigned char TBridgeBusPirate::speedIndex(const unsigned int* speeds, int count, unsigned int hz) {
    unsigned char best = 0;
    for (int i = 0; i < count; ++i)
        if (speeds[i] <= hz) best = uchar(i);
    return best;
}

void TBridgeBusPirate::forget() {
    mode = 0;
    pins = 0;
    writeDelayMs = 0;
}

TBridgeReply TBridgeBusPirate::expect(IBridgeWire& wire, const QByteArray& out, const QByteArray& answer,
                                      const QString& what) {
    QByteArray got;
    if (!wire.send(out) || !wire.receive(got, answer.size(), wire.answerTimeOut()))
        return noAnswer(wire, what, got.size(), answer.size());
    for (int i = 0; i < answer.size(); ++i)
        if (got.at(i) != answer.at(i)) return unexpected(wire, what, uchar(got.at(i)));
    return TBridgeReply::done();
}

TBridgeReply TBridgeBusPirate::simple(IBridgeWire& wire, unsigned char cmd, const QString& what) {
    return expect(wire, QByteArray(1, char(cmd)), QByteArray(1, char(CBusPirate::done)), what);
}

// Twenty resets take the Bus Pirate from its terminal into binary mode, where each answers BBIO1.
TBridgeReply TBridgeBusPirate::start(IBridgeWire& wire) {
    forget();
    const QString what = name(CBusPirate::reset);
    if (!wire.send(QByteArray(CBusPirate::enterResets, char(CBusPirate::reset))))
        return noAnswer(wire, what, 0, 5);
    QByteArray got;
    while (!got.endsWith(CBusPirate::bbio) && wire.receive(got, 1, wire.answerTimeOut())) {
    }
    if (!got.endsWith(CBusPirate::bbio)) {
        if (wire.lost()) return noAnswer(wire, what, 0, 5);
        return TBridgeReply::lost(Lang.get(1503).arg(protocol(), wire.portName(), what));
    }
    QByteArray rest;
    while (wire.receive(rest, 1, enterQuietMs))
        rest.clear();
    return TBridgeReply::done("Bus Pirate, binary mode BBIO1");
}

TBridgeReply TBridgeBusPirate::toBinary(IBridgeWire& wire) {
    if (mode == 0) return TBridgeReply::done();
    mode = 0;
    return expect(wire, QByteArray(1, char(CBusPirate::reset)), CBusPirate::bbio, name(CBusPirate::reset));
}

TBridgeReply TBridgeBusPirate::selectDevice(IBridgeWire& wire, unsigned short type,
                                            const QByteArray& payload) {
    using namespace CBusPirate;
    TBridgeReply r = toBinary(wire);
    const bool isSpi = type == CBridge::typeSpiFlash;
    if (r.ok())
        r = expect(wire, QByteArray(1, char(isSpi ? modeSpi : modeI2c)),
                   isSpi ? CBusPirate::spi : CBusPirate::i2c, name(isSpi ? modeSpi : modeI2c));
    if (!r.ok()) return r;
    mode = type;
    if (isSpi) r = simple(wire, spiConfig | spiOutputs33 | spiEdge, name(spiConfig | spiOutputs33 | spiEdge));
    if (r.ok()) r = setSpeed(wire, clockOf(payload, CBridge::setDeviceClockAt));
    const unsigned char on = peripherals | power | (isSpi ? csHigh : pullUps);
    if (r.ok()) r = simple(wire, on, name(on));
    pins = uchar(uchar(payload.at(3)) << 1 & pinBits);
    writeDelayMs = uchar(payload.at(8));
    return r;
}

TBridgeReply TBridgeBusPirate::setSpeed(IBridgeWire& wire, unsigned int hz) {
    using namespace CBusPirate;
    const bool isSpi = mode == CBridge::typeSpiFlash;
    const unsigned char i = isSpi ? speedIndex(spiSpeeds, int(std::size(spiSpeeds)), hz)
                                  : speedIndex(i2cSpeeds, int(std::size(i2cSpeeds)), hz);
    return simple(wire, speed | i, name(speed | i));
}

// Power off, back to binary mode and from there to the terminal, so that the Bus Pirate is the user's
// again.
TBridgeReply TBridgeBusPirate::leave(IBridgeWire& wire) {
    TBridgeReply r = TBridgeReply::done();
    if (mode != 0) r = simple(wire, CBusPirate::peripherals, name(CBusPirate::peripherals));
    if (r.ok()) r = toBinary(wire);
    if (r.ok()) r = simple(wire, CBusPirate::toTerminal, name(CBusPirate::toTerminal));
    restart();
    return r;
}

TBridgeReply TBridgeBusPirate::family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) {
    const bool isSpi = mode == CBridge::typeSpiFlash;
    if (cmd == CProtocol::Family::Leave)
        return simple(wire, CBusPirate::peripherals, name(CBusPirate::peripherals));
    if (cmd == CProtocol::Family::SetClk) {
        if (data.size() != 4) return TBridgeReply::error(CProtocol::ErrLength);
        return setSpeed(wire, clockOf(data, 0));
    }
    if (isSpi && cmd == CProtocol::Spi::Read)
        return TBridgeSpiFlash::read(data, CBusPirate::transferMax, CBusPirate::transferMax, spi(wire));
    if (isSpi && cmd == CProtocol::Spi::Write)
        return TBridgeSpiFlash::write(data, CBusPirate::transferMax, spi(wire));
    if (isSpi) return TBridgeReply::error(CProtocol::ErrUnknownCommand);
    switch (cmd) {
    case CProtocol::I2c::SetAddr:
        if (data.size() != 1) return TBridgeReply::error(CProtocol::ErrLength);
        pins = uchar(data.at(0)) & pinBits;
        return TBridgeReply::done();
    case CProtocol::I2c::Write: {
        if (data.isEmpty()) return TBridgeReply::error(CProtocol::ErrLength);
        TBridgeReply r = i2cWrite(wire, withPins(data, 0), true);
        if (r.ok() && writeDelayMs > 0) wire.pause(writeDelayMs);
        return r;
    }
    case CProtocol::I2c::Read:
        return i2cRead(wire, data);
    default:
        return TBridgeReply::error(CProtocol::ErrUnknownCommand);
    }
}

TBridgeSpiFlash::Transaction TBridgeBusPirate::spi(IBridgeWire& wire) {
    return [this, &wire](const QByteArray& tx, int readCount, QByteArray& rx) {
        return spiTransaction(wire, tx, readCount, rx);
    };
}

TBridgeReply TBridgeBusPirate::spiTransaction(IBridgeWire& wire, const QByteArray& tx, int readCount,
                                              QByteArray& rx) {
    const QString what = name(CBusPirate::writeThenRead);
    rx.clear();
    QByteArray status;
    if (!wire.send(spiTransfer(tx, readCount)) || !wire.receive(status, 1, wire.answerTimeOut()))
        return noAnswer(wire, what, 0, readCount + 1);
    if (uchar(status.at(0)) != CBusPirate::done) return refusedBy(wire, what);
    if (readCount > 0 && !wire.receive(rx, readCount, wire.answerTimeOut()))
        return noAnswer(wire, what, rx.size() + 1, readCount + 1);
    return TBridgeReply::done();
}

QByteArray TBridgeBusPirate::withPins(QByteArray bytes, int selectAt) const {
    bytes[selectAt] = char(uchar(bytes.at(selectAt)) | pins);
    return bytes;
}

// A part that does not acknowledge ends the transfer with a stop; the run gets error 5 as from the
// native programmer.
TBridgeReply TBridgeBusPirate::i2cFail(IBridgeWire& wire, const TBridgeReply& reply) {
    if (!reply.ok()) return reply;
    const TBridgeReply stop = simple(wire, CBusPirate::i2cStop, name(CBusPirate::i2cStop));
    return stop.ok() ? TBridgeReply::error(CProtocol::ErrNoAck) : stop;
}

TBridgeReply TBridgeBusPirate::i2cWrite(IBridgeWire& wire, const QByteArray& bytes, bool stop) {
    using namespace CBusPirate;
    TBridgeReply r = simple(wire, i2cStart, name(i2cStart));
    for (int at = 0; r.ok() && at < bytes.size(); at += bulkMax) {
        const QByteArray piece = bytes.mid(at, bulkMax);
        const unsigned char cmd = uchar(i2cBulkWrite | (piece.size() - 1));
        QByteArray got;
        if (!wire.send(QByteArray(1, char(cmd)) + piece) ||
            !wire.receive(got, piece.size() + 1, wire.answerTimeOut()))
            return noAnswer(wire, name(cmd), got.size(), piece.size() + 1);
        if (uchar(got.at(0)) != done) return unexpected(wire, name(cmd), uchar(got.at(0)));
        for (int i = 1; i < got.size(); ++i)
            if (uchar(got.at(i)) != ackBit) return i2cFail(wire, TBridgeReply::done());
    }
    if (r.ok() && stop) r = simple(wire, i2cStop, name(i2cStop));
    return r;
}

// Count (16-bit), select byte, address bytes: the address is written, then a repeated start with
// the select byte for reading; each byte is read and acknowledged, the last one not.
TBridgeReply TBridgeBusPirate::i2cRead(IBridgeWire& wire, const QByteArray& data) {
    using namespace CBusPirate;
    if (data.size() < 3) return TBridgeReply::error(CProtocol::ErrLength);
    const int count = uchar(data.at(0)) | uchar(data.at(1)) << 8;
    const QByteArray address = withPins(data.mid(2), 0);
    TBridgeReply r = i2cWrite(wire, address, false);
    if (r.ok()) r = i2cWrite(wire, QByteArray(1, char(uchar(address.at(0)) | readBit)), false);
    if (!r.ok()) return r;
    QByteArray out;
    for (int i = 0; i < count; ++i) {
        const unsigned char reply = i + 1 < count ? i2cAck : i2cNack;
        QByteArray got;
        if (!wire.send(QByteArray(1, char(i2cReadByte)).append(char(reply))) ||
            !wire.receive(got, 2, wire.answerTimeOut()))
            return noAnswer(wire, name(i2cReadByte), got.size(), 2);
        if (uchar(got.at(1)) != done) return unexpected(wire, name(reply), uchar(got.at(1)));
        out.append(got.at(0));
    }
    r = simple(wire, i2cStop, name(i2cStop));
    return r.ok() ? TBridgeReply::done(out) : r;
}
