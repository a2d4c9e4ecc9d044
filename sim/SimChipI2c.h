#pragma once

#include "SimChip.h"

#include <QElapsedTimer>

// A 24-series two-wire EEPROM: device-select byte 1010 b3 b2 b1 with block-select bits (memory address
// bits above the address bytes) in the low bits and strapped address pins in the bits of addr_mask;
// page writes wrap inside their page; reads run on across the whole array. With timing on, the chip
// ignores its select byte for the write cycle after each write, and the programmer waits the set-device
// delay (in ms) after each write before it answers: a delay shorter than the write cycle leaves the next
// transfer unacknowledged, as on a real part.
class SimChipI2c : public SimChip {
public:
    explicit SimChipI2c(const SimChipInfo& info);

    SimReply request(unsigned char cmd, const QByteArray& data) override;
    void select(const QByteArray& payload) override;
    QByteArray* contents() override { return &memory; }

private:
    // The address a select byte and address bytes name; false when the chip would not acknowledge.
    bool address(const QByteArray& data, int at, qint64& addr) const;
    SimReply write(const QByteArray& data);
    SimReply read(const QByteArray& data);
    bool inWriteCycle() const;

    QByteArray memory;
    int addrBytes;
    int page;
    unsigned pinMask;
    unsigned pins;
    bool timing;
    int writeCycleMs;
    unsigned char setAddress = 0; // set by the programmer's set-address packet, ORed into every select
    int writeWaitMs = 0;          // the set-device delay
    QElapsedTimer writeCycle;     // runs from the end of the last write
};
