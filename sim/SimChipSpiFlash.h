#pragma once

#include "SimChip.h"
#include "SimProtocol.h"

#include <QHash>

// A serial NOR flash of the 25 series as the programmer sees it through its two SPI transactions:
// 3 sends opcode bytes and reads N bytes back, 4 only sends (the programmer has already set the write
// enable latch and waits for the end of the internal cycle before it replies).
//
// The part answers its JEDEC ID, (fast) reads, page program (clears bits only, wraps inside the page),
// its sector, block and chip erases, status registers 1-3 with block protection, SFDP, three security
// registers and a unique ID.
class SimChipSpiFlash : public SimChip {
public:
    explicit SimChipSpiFlash(const SimChipInfo& info);

    SimReply request(unsigned char cmd, const QByteArray& data) override;
    QByteArray* contents() override { return &flash; }

    // The protected range [begin, end) of the block-protect bits of status register 1.
    void protectedRange(qint64& begin, qint64& end) const;

private:
    QByteArray read(const QByteArray& tx, int len) const;
    QByteArray readSecurity(qint64 addr, int len) const;
    void write(const QByteArray& tx);
    void program(qint64 addr, const QByteArray& data);
    void program(qint64 addr, const QByteArray& data, int span);
    void eraseRange(qint64 begin, qint64 size, int typicalMs);
    void programSecurity(qint64 addr, const QByteArray& data);
    void eraseSecurity(qint64 addr);
    void writeStatus(int reg, unsigned char value);
    bool isProtected(qint64 begin, qint64 size) const;
    int securityIndex(qint64 addr) const;
    void wait(int ms) const;

    QByteArray flash, security, sfdp, jedec, uniqueId;
    unsigned char status[3] = {0, 0, 0};
    int pageSize;
    unsigned char chipErase = SimProtocol::OpChipEraseC7;
    QHash<unsigned char, qint64> blockErase; // opcode to block size
    bool timing;
    bool byteProgram; // 0x02 programs one byte (SST AAI parts, some Atmel and ESMT parts)
};
