#pragma once

#include "BoardSpiChip.h"
#include "SimChipSpiFlash.h"

// A 25-series flash on the board's SPI pins. The bytes between chip select and its release make one
// transaction, answered byte by byte; the memory, registers and opcodes are the simulator's model of the
// part. What only the pins show is added here: the write-enable latch that every write needs and
// clears, and the program and erase times during which the status register shows BUSY and the part
// ignores everything but a status read.
class BoardSpiFlash : public BoardSpiChip {
public:
    BoardSpiFlash(avr_t* avr, const QVariantMap& params, const QString& name);
    QByteArray& contents() override { return *part.contents(); }

protected:
    uint8_t transfer(uint8_t mosi) override;
    void selectLine(bool high) override;

private:
    uint8_t answer(int dataIndex);
    void finish();
    unsigned long writeTimeUs(uint8_t op) const;
    bool busy() const { return now() < busyUntil; }

    SimChipSpiFlash part;
    uint8_t chipEraseOp;
    unsigned long chipEraseUs;
    bool selected = false, writeEnabled = false;
    unsigned long long busyUntil = 0;
    QByteArray command; // the bytes since chip select
    QByteArray ahead;   // what the part drives for the data bytes of a read
};
