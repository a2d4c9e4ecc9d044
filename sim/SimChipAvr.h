#pragma once

#include "SimChip.h"

// An AVR microcontroller on its serial programming interface. It answers only while the programmer
// holds its reset line at the level its description names (set-device byte 3); otherwise it is not in
// programming mode and every instruction shifts in FF FF FF FF. Replies echo the instruction's first
// three bytes (r1 r2 r3 = b0 b1 b2) except where a read puts its result in r3.
//
// The image (--image) holds, in this order: the flash, the EEPROM, three fuse bytes (low, high,
// extended), the lock byte.
class SimChipAvr : public SimChip {
public:
    explicit SimChipAvr(const SimChipInfo& info);

    SimReply request(unsigned char cmd, const QByteArray& data) override;
    void select(const QByteArray& payload) override;
    QByteArray* contents() override { return &memory; }

private:
    SimReply readSpace(const QByteArray& data, int base, int size, qint64 upper);
    SimReply loadPage(const QByteArray& data);
    SimReply writeEeprom(const QByteArray& data);
    SimReply instruction(const QByteArray& data);
    // The result byte of a read instruction, or -1 when b0..b3 is no read.
    int readInstruction(unsigned char b0, unsigned char b1, unsigned char b2) const;
    void writeInstruction(unsigned char b1, unsigned char b3);
    void commitPage(qint64 byteAddr);
    void chipErase();
    bool writesLocked() const;

    unsigned char& fuse(int i) { return reinterpret_cast<unsigned char&>(memory.data()[eepromEnd + i]); }
    unsigned char fuse(int i) const { return static_cast<unsigned char>(memory.at(eepromEnd + i)); }
    unsigned char& lock() { return reinterpret_cast<unsigned char&>(memory.data()[eepromEnd + 3]); }
    unsigned char lock() const { return static_cast<unsigned char>(memory.at(eepromEnd + 3)); }

    QByteArray memory;
    int flashSize, eepromSize, eepromEnd, page;
    QByteArray pageBuffer, signature;
    int osccalCount;
    unsigned char lockDefault;
    int algFlashWrite, algFuseRead, algFuseWrite, algLockWrite;
    int resetPolarity;
    bool programming = false;
    int extended = 0; // upper byte-address bits set by the extended address instruction
};
