#include "BoardSimavrFixes.h"

extern "C" {
#include <avr_spi.h>
#include <avr_twi.h>
#include <avr_uart.h>
#include <sim_avr.h>
#include <sim_cycle_timers.h>
#include <sim_io.h>
}

#include <cstring>

namespace {
avr_io_t* ioOfKind(avr_t* avr, const char* kind) {
    for (avr_io_t* io = avr->io_port; io; io = io->next)
        if (io->kind && std::strcmp(io->kind, kind) == 0) return io;
    return nullptr;
}

// Runs after simavr's own SPDR handler has started its 100 us timer, and starts it again.
void onSpdrWrite(avr_t* avr, avr_io_addr_t, uint8_t, void* param) {
    auto* spi = static_cast<avr_spi_t*>(param);
    for (avr_cycle_timer_slot_t* t = avr->cycle_timers.timer; t; t = t->next) {
        if (t->param != spi) continue;
        const avr_cycle_timer_t done = t->timer;
        static const int dividers[] = {4, 16, 64, 128};
        const int divider = dividers[avr->data[spi->r_spcr] & 3] >> (avr->data[spi->r_spsr] & 1);
        avr_cycle_timer_cancel(avr, done, spi);
        avr_cycle_timer_register(avr, avr_cycle_count_t(8 * divider), done, spi);
        return;
    }
}

// Runs after simavr's own baud-rate handler.
void onBaudWrite(avr_t* avr, avr_io_addr_t, uint8_t, void* param) {
    auto* uart = static_cast<avr_uart_t*>(param);
    const uint8_t c = avr->data[uart->r_ucsrc];
    const int dataBits = (c >> 1 & 3) + 5, parity = (c >> 4 & 3) ? 1 : 0, stopBits = (c >> 3 & 1) + 1;
    const uint32_t ubrr = avr_regbit_get(avr, uart->ubrrl) | avr_regbit_get(avr, uart->ubrrh) << 8;
    const uint32_t cyclesPerBit = (ubrr + 1) * (avr_regbit_get(avr, uart->u2x) ? 8 : 16);
    uart->cycles_per_byte = cyclesPerBit * uint32_t(1 + dataBits + parity + stopBits);
}
} // namespace

bool BoardSimavrFixes::install(avr_t* avr) {
    auto* spi = reinterpret_cast<avr_spi_t*>(ioOfKind(avr, "spi"));
    auto* twi = reinterpret_cast<avr_twi_t*>(ioOfKind(avr, "twi"));
    auto* uart = reinterpret_cast<avr_uart_t*>(ioOfKind(avr, "uart"));
    if (!spi || !twi || !uart) return false;
    avr_register_io_write(avr, spi->r_spdr, onSpdrWrite, spi);
    twi->twi.raise_sticky = 0;
    avr_register_io_write(avr, uart->ubrrl.reg, onBaudWrite, uart);
    return true;
}
