#pragma once

#include "BoardChip.h"

#include <cstdint>

struct avr_irq_t;

// A chip on the SPI bus with its select line on D10 (PB2): a 25-series chip select or an AVR's RESET.
// Every byte the microcontroller sends comes to transfer(), whose answer is the byte it reads.
class BoardSpiChip : public BoardChip {
public:
    BoardSpiChip(avr_t* avr, const QVariantMap& params);

protected:
    virtual uint8_t transfer(uint8_t mosi) = 0;
    virtual void selectLine(bool high) = 0;

private:
    static void onByte(avr_irq_t* irq, uint32_t value, void* self);
    static void onSelect(avr_irq_t* irq, uint32_t value, void* self);

    avr_irq_t* misoIrq;
};
