#include "link/bridge/TBridgeSerprog.h"

#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/bridge/CBridge.h"

#include <QElapsedTimer>

namespace {
// flashrom's synchronisation: eight NOPs to end whatever the firmware was parsing, then SYNCNOP until
// it answers NAK ACK, and once more to be sure.
const int syncNops = 8;
const int syncTries = 8;
const int syncQuietMs = 20;
const int syncDrainMaxMs = 1000;
const int syncAnswerMs = 50;
const int syncAnswerBytes = 10;

int u24(const QByteArray& d) {
    return uchar(d.at(0)) | uchar(d.at(1)) << 8 | uchar(d.at(2)) << 16;
}

} // namespace

TBridgeSerprog::TBridgeSerprog() : IBridge(protocolName, interface, {CBridge::typeSpiFlash}) {}

QByteArray TBridgeSerprog::length24(int n) {
    QByteArray b;
    b.append(char(n & 0xFF)).append(char(n >> 8 & 0xFF)).append(char(n >> 16 & 0xFF));
    return b;
}

QByteArray TBridgeSerprog::spiOp(const QByteArray& tx, int readCount) {
    return length24(tx.size()) + length24(readCount) + tx;
}

QByteArray TBridgeSerprog::spiFreq(unsigned int hz) {
    QByteArray b;
    for (int i = 0; i < 4; ++i)
        b.append(char(hz >> (8 * i) & 0xFF));
    return b;
}

QString TBridgeSerprog::name(unsigned char op) {
    static const char* const names[] = {"NOP",        "Q_IFACE",    "Q_CMDMAP",    "Q_PGMNAME",   "Q_SERBUF",
                                        "Q_BUSTYPE",  "Q_CHIPSIZE", "Q_OPBUF",     "Q_WRNMAXLEN", "R_BYTE",
                                        "R_NBYTES",   "O_INIT",     "O_WRITEB",    "O_WRITEN",    "O_DELAY",
                                        "O_EXEC",     "SYNCNOP",    "Q_RDNMAXLEN", "S_BUSTYPE",   "O_SPIOP",
                                        "S_SPI_FREQ", "S_PIN_STATE"};
    const QString hex = QStringLiteral("0x%1").arg(op, 2, 16, QChar('0')).toUpper().replace("0X", "0x");
    return op < sizeof(names) / sizeof(names[0]) ? QStringLiteral("%1 (%2)").arg(names[op], hex) : hex;
}

void TBridgeSerprog::forget() {
    cmdMap.clear();
    readMax = CSerprog::opMax;
    writeMax = CSerprog::opMax;
    serBuf = CSerprog::serBufDefault;
}

bool TBridgeSerprog::offers(unsigned char op) const {
    return op / 8 < cmdMap.size() && (uchar(cmdMap.at(op / 8)) >> (op % 8) & 1);
}

TBridgeReply TBridgeSerprog::synchronise(IBridgeWire& wire) {
    if (!wire.send(QByteArray(syncNops, char(CSerprog::nop))))
        return noAnswer(wire, name(CSerprog::nop), 0, 1);
    QElapsedTimer drain;
    drain.start();
    QByteArray junk;
    while (drain.elapsed() < syncDrainMaxMs && wire.receive(junk, 1, syncQuietMs))
        junk.clear();
    if (wire.lost()) return noAnswer(wire, name(CSerprog::syncNop), 0, 2);
    for (int attempt = 0; attempt < syncTries; ++attempt) {
        int confirmed = 0;
        for (int round = 0; round < 2 && confirmed == round; ++round) {
            if (!wire.send(QByteArray(1, char(CSerprog::syncNop))))
                return noAnswer(wire, name(CSerprog::syncNop), 0, 2);
            QByteArray got;
            for (int n = 0; n < syncAnswerBytes; ++n) {
                got.clear();
                if (!wire.receive(got, 1, syncAnswerMs) || uchar(got.at(0)) == CSerprog::nak) break;
            }
            if (wire.lost()) return noAnswer(wire, name(CSerprog::syncNop), 0, 2);
            if (got.size() != 1 || uchar(got.at(0)) != CSerprog::nak) break;
            got.clear();
            if (!wire.receive(got, 1, syncAnswerMs) || uchar(got.at(0)) != CSerprog::ack) break;
            ++confirmed;
        }
        if (confirmed == 2) return TBridgeReply::done();
    }
    return TBridgeReply::lost(Lang.get(1503).arg(protocol(), wire.portName(), name(CSerprog::syncNop)));
}

TBridgeReply TBridgeSerprog::command(IBridgeWire& wire, unsigned char op, const QByteArray& params,
                                     int answerSize, QByteArray& answer) {
    answer.clear();
    if (!wire.send(QByteArray(1, char(op)) + params)) return noAnswer(wire, name(op), 0, answerSize + 1);
    return answerOf(wire, op, answerSize, answer);
}

TBridgeReply TBridgeSerprog::answerOf(IBridgeWire& wire, unsigned char op, int answerSize,
                                      QByteArray& answer) {
    answer.clear();
    QByteArray status;
    if (!wire.receive(status, 1, wire.answerTimeOut())) return noAnswer(wire, name(op), 0, answerSize + 1);
    if (uchar(status.at(0)) == CSerprog::nak) return refusedBy(wire, name(op));
    if (uchar(status.at(0)) != CSerprog::ack) return unexpected(wire, name(op), uchar(status.at(0)));
    if (answerSize > 0 && !wire.receive(answer, answerSize, wire.answerTimeOut()))
        return noAnswer(wire, name(op), answer.size() + 1, answerSize + 1);
    return TBridgeReply::done();
}

TBridgeReply TBridgeSerprog::query(IBridgeWire& wire, unsigned char op, int answerSize, QByteArray& answer) {
    return command(wire, op, QByteArray(), answerSize, answer);
}

TBridgeReply TBridgeSerprog::start(IBridgeWire& wire) {
    forget();
    TBridgeReply r = synchronise(wire);
    if (!r.ok()) return r;
    QByteArray a;
    if (!(r = query(wire, CSerprog::qIface, 2, a)).ok()) return r;
    const unsigned short iface = uchar(a.at(0)) | uchar(a.at(1)) << 8;
    if (iface != CSerprog::ifaceVersion)
        return TBridgeReply::refused(Lang.get(1506).arg(protocol(), wire.portName()).arg(iface));
    if (!(r = query(wire, CSerprog::qCmdMap, CSerprog::cmdMapSize, a)).ok()) return r;
    cmdMap = a;
    // Never send what the map does not list: some firmwares do not answer unknown commands.
    if (!offers(CSerprog::oSpiOp)) return missing(wire, name(CSerprog::oSpiOp));
    if (offers(CSerprog::qBusType)) {
        if (!(r = query(wire, CSerprog::qBusType, 1, a)).ok()) return r;
        if (!(uchar(a.at(0)) & CSerprog::busSpi)) return missing(wire, QStringLiteral("SPI"));
    }
    if (offers(CSerprog::sBusType) &&
        !(r = command(wire, CSerprog::sBusType, QByteArray(1, char(CSerprog::busSpi)), 0, a)).ok())
        return r;
    for (const unsigned char op : {CSerprog::qRdnMaxLen, CSerprog::qWrnMaxLen}) {
        if (!offers(op)) continue;
        if (!(r = query(wire, op, 3, a)).ok()) return r;
        const int n = u24(a) == 0 ? CSerprog::lengthMax : u24(a);
        (op == CSerprog::qRdnMaxLen ? readMax : writeMax) = qMin(n, CSerprog::opMax);
    }
    if (offers(CSerprog::qSerBuf)) {
        if (!(r = query(wire, CSerprog::qSerBuf, 2, a)).ok()) return r;
        const int size = uchar(a.at(0)) | uchar(a.at(1)) << 8;
        if (size > 0) serBuf = size;
    }
    QString pgm = QStringLiteral("(unknown)");
    if (offers(CSerprog::qPgmName)) {
        if (!(r = query(wire, CSerprog::qPgmName, CSerprog::pgmNameSize, a)).ok()) return r;
        pgm = QString::fromLatin1(a.left(a.indexOf('\0') < 0 ? a.size() : a.indexOf('\0')));
    }
    return TBridgeReply::done(QStringLiteral("serprog: %1").arg(pgm).toLatin1());
}

TBridgeReply TBridgeSerprog::selectDevice(IBridgeWire& wire, unsigned short, const QByteArray& payload) {
    unsigned int hz = 0;
    for (int i = 3; i >= 0; --i)
        hz = hz << 8 | uchar(payload.at(CBridge::setDeviceClockAt + i));
    TBridgeReply r = setClock(wire, hz);
    return r.ok() ? setPins(wire, true) : r;
}

TBridgeReply TBridgeSerprog::setClock(IBridgeWire& wire, unsigned int hz) {
    if (hz == 0) return TBridgeReply::error(CProtocol::ErrRange);
    if (!offers(CSerprog::sSpiFreq)) return TBridgeReply::done(); // the firmware's fixed clock
    QByteArray a;
    return command(wire, CSerprog::sSpiFreq, spiFreq(hz), 4, a);
}

TBridgeReply TBridgeSerprog::setPins(IBridgeWire& wire, bool on) {
    if (!offers(CSerprog::sPinState)) return TBridgeReply::done();
    QByteArray a;
    return command(wire, CSerprog::sPinState, QByteArray(1, char(on ? 1 : 0)), 0, a);
}

TBridgeReply TBridgeSerprog::leave(IBridgeWire& wire) {
    return setPins(wire, false);
}

TBridgeReply TBridgeSerprog::family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) {
    switch (cmd) {
    case CProtocol::Family::Leave:
        return setPins(wire, false);
    case CProtocol::Family::SetClk:
        if (data.size() != 4) return TBridgeReply::error(CProtocol::ErrLength);
        return setClock(wire, uchar(data.at(0)) | uchar(data.at(1)) << 8 | uchar(data.at(2)) << 16 |
                                  uint(uchar(data.at(3))) << 24);
    case CProtocol::Spi::Read:
        return read(wire, data);
    case CProtocol::Spi::Write:
        return write(wire, data);
    default:
        return TBridgeReply::error(CProtocol::ErrUnknownCommand);
    }
}

TBridgeReply TBridgeSerprog::transaction(IBridgeWire& wire, const QByteArray& tx, int readCount,
                                         QByteArray& rx) {
    return command(wire, CSerprog::oSpiOp, spiOp(tx, readCount), readCount, rx);
}

// Operations go ahead of their answers as long as what is on its way stays below the firmware's serial
// buffer, as flashrom streams them; a NAK does not end the group before its other answers are read,
// so the line stays in step.
TBridgeReply TBridgeSerprog::transactions(IBridgeWire& wire, const QList<TBridgeSpiFlash::Shift>& shifts,
                                          QList<QByteArray>& rx) {
    rx.clear();
    TBridgeReply first = TBridgeReply::done();
    for (int at = 0; at < shifts.size();) {
        QByteArray ahead;
        int n = 0;
        do {
            const TBridgeSpiFlash::Shift& s = shifts.at(at + n);
            ahead += char(CSerprog::oSpiOp) + spiOp(s.tx, s.readCount);
            ++n;
        } while (at + n < shifts.size() && ahead.size() + 1 + spiOp(shifts.at(at + n).tx, 0).size() < serBuf);
        if (!wire.send(ahead)) return noAnswer(wire, name(CSerprog::oSpiOp), 0, 1);
        for (; n > 0; --n, ++at) {
            rx.append(QByteArray());
            const TBridgeReply r = answerOf(wire, CSerprog::oSpiOp, shifts.at(at).readCount, rx.last());
            if (r.kind == TBridgeReply::Kind::Lost) return r;
            if (first.ok()) first = r;
        }
    }
    return first;
}

TBridgeReply TBridgeSerprog::read(IBridgeWire& wire, const QByteArray& data) {
    return TBridgeSpiFlash::read(data, readMax, writeMax, spi(wire));
}

TBridgeReply TBridgeSerprog::write(IBridgeWire& wire, const QByteArray& tx) {
    return TBridgeSpiFlash::write(tx, writeMax, spi(wire), [this, &wire](const auto& shifts, auto& rx) {
        return transactions(wire, shifts, rx);
    });
}

TBridgeSpiFlash::Transaction TBridgeSerprog::spi(IBridgeWire& wire) {
    return [this, &wire](const QByteArray& tx, int readCount, QByteArray& rx) {
        return transaction(wire, tx, readCount, rx);
    };
}
