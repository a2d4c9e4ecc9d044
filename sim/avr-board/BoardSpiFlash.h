#pragma once

#include "BoardSpiChip.h"

#include <QHash>

// A 25-series flash as its pins see it: an opcode after chip select, address and dummy bytes, data in or
// out; writes need the write-enable latch and take their program and erase times, during which the
// status register shows BUSY.
class BoardSpiFlash : public BoardSpiChip {
public:
    BoardSpiFlash(avr_t* avr, const QVariantMap& params, const QString& name);
    QByteArray& contents() override { return flash; }

protected:
    uint8_t transfer(uint8_t mosi) override;
    void selectLine(bool high) override;

private:
    uint8_t readByte(int index);
    void finish();
    void program(QByteArray& target, qint64 base, int span, qint64 addr, const QByteArray& data);
    void erase(qint64 begin, qint64 size, unsigned long ms);
    bool isProtected(qint64 begin, qint64 size) const;
    int securityRegister(qint64 addr) const;
    void writeStatus(int reg, uint8_t value);
    bool busy() const { return now() < busyUntil; }
    qint64 address() const;

    QByteArray flash, security, jedec, sfdp, uniqueId;
    int pageSize;
    uint8_t chipErase = 0xC7;
    QHash<uint8_t, qint64> blockErase;
    uint8_t status[3] = {0, 0, 0};
    bool writeEnabled = false;
    unsigned long long busyUntil = 0;
    bool selected = false;
    QByteArray command; // the bytes since chip select
};
