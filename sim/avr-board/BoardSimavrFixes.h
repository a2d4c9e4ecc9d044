#pragma once

struct avr_t;

// Puts right three shortcuts of simavr 1.6 that a firmware on the real part would not see:
// - every SPI byte takes 100 us, whatever the clock: here it takes the 8 bits of its SPCR/SPSR divider,
//   so that a 1 MiB flash is written in the time the real board takes;
// - the TWI's TWINT stays set when the firmware writes a one to it (simavr treats it as a flag only an
//   interrupt handler clears); the part clears it, which is what a polling driver waits for;
// - every USART byte is timed with a parity bit, with parity off too (11 bits for 10 at 8N1).
class BoardSimavrFixes {
public:
    // False when the ATmega328P lacks one of the three ports.
    static bool install(avr_t* avr);
};
