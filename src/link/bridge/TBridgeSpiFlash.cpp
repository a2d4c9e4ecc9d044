#include "link/bridge/TBridgeSpiFlash.h"

#include "link/CProtocol.h"
#include "link/bridge/CBridge.h"

#include <QElapsedTimer>

namespace {
const int header = 4; // opcode and a 24-bit address

bool isAddressedRead(const QByteArray& tx) {
    const unsigned char op = uchar(tx.at(0));
    return (op == CBridge::spiReadData || op == CProtocol::Spi::OpFastRead) && tx.size() >= header;
}

qint64 addressOf(const QByteArray& tx) {
    return qint64(uchar(tx.at(1))) << 16 | uchar(tx.at(2)) << 8 | uchar(tx.at(3));
}

void setAddress(QByteArray& tx, qint64 addr) {
    tx[1] = char(addr >> 16 & 0xFF);
    tx[2] = char(addr >> 8 & 0xFF);
    tx[3] = char(addr & 0xFF);
}
} // namespace

// A read longer than the hardware takes is cut into reads at consecutive addresses; only an addressed
// read can be cut.
TBridgeReply TBridgeSpiFlash::read(const QByteArray& data, int readMax, int writeMax,
                                   const Transaction& spi) {
    if (data.size() < 3) return TBridgeReply::error(CProtocol::ErrLength);
    const int count = uchar(data.at(0)) | uchar(data.at(1)) << 8;
    QByteArray tx = data.mid(2);
    if (tx.size() > writeMax) return TBridgeReply::error(CProtocol::ErrLength);
    const bool cut = count > readMax;
    if (cut && !isAddressedRead(tx)) return TBridgeReply::error(CProtocol::ErrLength);
    const qint64 start = cut ? addressOf(tx) : 0;
    QByteArray all, part;
    do {
        if (cut) setAddress(tx, start + all.size());
        TBridgeReply r = spi(tx, qMin(readMax, count - all.size()), part);
        if (!r.ok()) return r;
        all += part;
    } while (all.size() < count);
    return TBridgeReply::done(all);
}

TBridgeSpiFlash::Transactions TBridgeSpiFlash::oneByOne(const Transaction& spi) {
    return [spi](const QList<Shift>& shifts, QList<QByteArray>& rx) {
        rx.clear();
        for (const Shift& s : shifts) {
            rx.append(QByteArray());
            TBridgeReply r = spi(s.tx, s.readCount, rx.last());
            if (!r.ok()) return r;
        }
        return TBridgeReply::done();
    };
}

// A page program longer than the hardware takes goes as several programs. Most writes are done by
// the time the first status is read; only a busy one is polled further.
TBridgeReply TBridgeSpiFlash::write(const QByteArray& tx, int writeMax, const Transaction& spi,
                                    const Transactions& group) {
    if (tx.isEmpty()) return TBridgeReply::error(CProtocol::ErrLength);
    const bool cut = tx.size() > writeMax;
    if (cut &&
        (uchar(tx.at(0)) != CProtocol::Spi::OpPageProgram || tx.size() <= header || writeMax <= header))
        return TBridgeReply::error(CProtocol::ErrLength);
    const int piece = cut ? writeMax - header : tx.size();
    const int dataBytes = cut ? tx.size() - header : piece;
    const qint64 start = cut ? addressOf(tx) : 0;
    const Transactions shifts = group ? group : oneByOne(spi);
    const QByteArray readStatus(1, char(CProtocol::Spi::OpReadStatus1));
    QList<QByteArray> rx;
    for (int done = 0; done < dataBytes; done += piece) {
        QByteArray part = tx;
        if (cut) {
            part = tx.left(header) + tx.mid(header + done, piece);
            setAddress(part, start + done);
        }
        TBridgeReply r =
            shifts({{QByteArray(1, char(CBridge::spiWriteEnable)), 0}, {part, 0}, {readStatus, 1}}, rx);
        if (r.ok() && (rx.last().isEmpty() || uchar(rx.last().at(0)) & CBridge::spiStatusBusy))
            r = waitReady(spi);
        if (!r.ok()) return r;
    }
    return TBridgeReply::done();
}

TBridgeReply TBridgeSpiFlash::waitReady(const Transaction& spi) {
    QElapsedTimer t;
    t.start();
    QElapsedTimer floating;
    QByteArray status;
    for (;;) {
        TBridgeReply r = spi(QByteArray(1, char(CProtocol::Spi::OpReadStatus1)), 1, status);
        if (!r.ok()) return r;
        const unsigned char s = uchar(status.at(0));
        if (!(s & CBridge::spiStatusBusy)) return TBridgeReply::done();
        if (s != 0xFF)
            floating.invalidate();
        else if (!floating.isValid())
            floating.start();
        else if (floating.elapsed() > floatingMs)
            return TBridgeReply::error(CProtocol::ErrNoAck);
        if (t.elapsed() > busyTimeOutMs) return TBridgeReply::error(CProtocol::ErrBusy);
    }
}
