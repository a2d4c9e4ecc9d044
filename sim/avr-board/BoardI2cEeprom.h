#pragma once

#include "BoardChip.h"

#include <cstdint>

struct avr_irq_t;

// A 24-series EEPROM on the two-wire bus: it acknowledges its select byte (address pins strapped as
// told), takes its address bytes, writes into a page buffer that wraps at the page end, and starts its
// write cycle at the stop, during which it acknowledges nothing.
class BoardI2cEeprom : public BoardChip {
public:
    BoardI2cEeprom(avr_t* avr, const QVariantMap& params, int strappedPins, unsigned long writeCycleUs);
    QByteArray& contents() override { return memory; }

private:
    static void onMessage(avr_irq_t* irq, uint32_t value, void* self);
    void message(uint8_t msg, uint8_t addr, uint8_t data);
    bool start(uint8_t select);
    void answer(uint8_t msg, uint8_t data);

    QByteArray memory;
    int addrBytes, page;
    unsigned pinMask, pins;
    unsigned long cycleUs;
    avr_irq_t* toMcu;
    unsigned long long busyUntil = 0;
    bool selected = false, reading = false, written = false;
    int index = 0;    // bytes of this write after the select byte
    qint64 block = 0; // the address bits carried by the select byte
    qint64 pointer = 0;
};
