#pragma once

#include "SimAvrIsp.h"
#include "SimChip.h"

#include <QElapsedTimer>

// An AVR microcontroller on its serial programming interface. It answers only while the programmer
// holds its reset line at the level its description names (set-device byte 3); otherwise it is not in
// programming mode and every instruction shifts in FF FF FF FF. Replies echo the instruction's first
// three bytes (r1 r2 r3 = b0 b1 b2) except where a read puts its result in r3.
//
// Instructions are decoded by the part's own patterns (the "isp_" keys of its description), not by
// the algorithms the catalogue chose: an instruction that is none of the part's shifts in FF FF FF FF
// and does nothing. The extended address instruction (0x4D) is also kept by the programmer for the
// upper address bits of its packets 3 and 4. With timing on, a write takes the part's minimum time;
// the programmer waits the instruction's wait byte (polling: until the part is ready), and when that
// wait is shorter than the write the part is still busy for the next packet, which it ignores.
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
    // The byte a read shifts out, or -1 when the instruction is none of the part's reads.
    int readInstruction(quint32 instr) const;
    // The part's write the instruction is, after doing it; empty when it is none.
    QString writeInstruction(quint32 instr);
    void writeTime(const QString& name, unsigned char wait);
    bool takeBusy();
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
    int algFlashWrite;
    int resetPolarity;
    QHash<QString, SimAvrIsp> isp;
    QVariantMap params;
    bool timing;
    bool busy = false; // the last write outlasted the programmer's wait
    QElapsedTimer writeStart;
    int writeUs = 0;
    bool programming = false;
    int extended = 0; // upper byte-address bits set by the extended address instruction
};
