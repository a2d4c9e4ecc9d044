#include "BoardSpiChip.h"

extern "C" {
#include <avr_ioport.h>
#include <avr_spi.h>
#include <sim_avr.h>
#include <sim_io.h>
}

BoardSpiChip::BoardSpiChip(avr_t* avr, const QVariantMap& params)
    : BoardChip(avr, params), misoIrq(avr_io_getirq(avr, AVR_IOCTL_SPI_GETIRQ(0), SPI_IRQ_INPUT)) {
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_SPI_GETIRQ(0), SPI_IRQ_OUTPUT), onByte, this);
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_IOPORT_GETIRQ('B'), 2), onSelect, this);
}

void BoardSpiChip::onByte(avr_irq_t*, uint32_t value, void* self) {
    auto* chip = static_cast<BoardSpiChip*>(self);
    avr_raise_irq(chip->misoIrq, chip->transfer(static_cast<uint8_t>(value)));
}

void BoardSpiChip::onSelect(avr_irq_t*, uint32_t value, void* self) {
    static_cast<BoardSpiChip*>(self)->selectLine(value != 0);
}
