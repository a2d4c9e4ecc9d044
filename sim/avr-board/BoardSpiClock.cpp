#include "BoardSpiClock.h"

extern "C" {
#include <avr_spi.h>
#include <sim_avr.h>
#include <sim_cycle_timers.h>
#include <sim_io.h>
}

#include <cstring>

namespace {
avr_spi_t* spiPort(avr_t* avr) {
    for (avr_io_t* io = avr->io_port; io; io = io->next)
        if (io->kind && std::strcmp(io->kind, "spi") == 0) return reinterpret_cast<avr_spi_t*>(io);
    return nullptr;
}

// Called after simavr's own SPDR handler has started its 100 us timer.
void onSpdrWrite(avr_t* avr, avr_io_addr_t, uint8_t, void* param) {
    auto* spi = static_cast<avr_spi_t*>(param);
    for (avr_cycle_timer_slot_t* t = avr->cycle_timers.timer; t; t = t->next) {
        if (t->param != spi) continue;
        const avr_cycle_timer_t done = t->timer;
        const uint8_t spcr = avr->data[spi->r_spcr], spsr = avr->data[spi->r_spsr];
        static const int dividers[] = {4, 16, 64, 128};
        const int divider = dividers[spcr & 3] >> (spsr & 1);
        avr_cycle_timer_cancel(avr, done, spi);
        avr_cycle_timer_register(avr, avr_cycle_count_t(8 * divider), done, spi);
        return;
    }
}
} // namespace

bool BoardSpiClock::install(avr_t* avr) {
    avr_spi_t* spi = spiPort(avr);
    if (!spi) return false;
    avr_register_io_write(avr, spi->r_spdr, onSpdrWrite, spi);
    return true;
}
