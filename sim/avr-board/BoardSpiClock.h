#pragma once

struct avr_t;

// simavr 1.6 takes 100 us of simulated time for every SPI byte, whatever the clock. This puts each byte
// back at the time its clock gives (8 bits of the SPCR/SPSR divider), so that a 1 MiB flash can be
// written in the time the real board takes.
class BoardSpiClock {
public:
    static bool install(avr_t* avr);
};
