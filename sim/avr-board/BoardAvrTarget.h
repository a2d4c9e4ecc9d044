#pragma once

#include "BoardSpiChip.h"

// An AVR microcontroller as its programming pins see it: held in reset (RESET low) it takes the
// programming enable and then serial programming instructions of four bytes, answering each byte with
// the one before it. Flash pages are loaded into a buffer and written by the write-page instruction;
// writes keep the part busy for their time. Contents: flash, EEPROM, three fuse bytes, the lock byte.
class BoardAvrTarget : public BoardSpiChip {
public:
    BoardAvrTarget(avr_t* avr, const QVariantMap& params);
    QByteArray& contents() override { return memory; }

protected:
    uint8_t transfer(uint8_t mosi) override;
    void selectLine(bool high) override;

private:
    uint8_t execute(const uint8_t* b);
    int readInstruction(const uint8_t* b);
    void writeInstruction(const uint8_t* b);
    void chipErase();
    void commitPage(unsigned long wordAddr);
    void busyFor(unsigned long us) { busyUntil = now() + cyclesOfUs(us); }
    bool busy() const { return now() < busyUntil; }
    char& fuse(int i) { return memory.data()[eepromEnd + i]; }
    char& lock() { return memory.data()[eepromEnd + 3]; }

    int flashSize, eepromSize, eepromEnd, page;
    QByteArray memory, pageBuffer, signature;
    int osccalCount;
    uint8_t lockDefault;
    bool inReset = false, enabled = false;
    uint8_t bytes[4] = {0, 0, 0, 0};
    int index = 0;
    uint8_t previous = 0;
    uint8_t extended = 0;
    unsigned long long busyUntil = 0;
};
