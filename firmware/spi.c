#include "spi.h"

#include "board.h"

/* SPR1, SPR0 and SPI2X for the dividers 2, 4, 8, 16, 32, 64, 128. */
static const uint8_t spcr_bits[] = {0, 0, 1, 1, 2, 2, 3};
static const uint8_t double_speed[] = {1, 0, 1, 0, 1, 0, 0};

void spi_begin(uint32_t hz) {
    uint8_t i = 0;
    while (i < sizeof spcr_bits - 1 && (F_CPU >> (i + 1)) > hz)
        ++i;
    SPI_DDR |= _BV(SS_BIT) | _BV(MOSI_BIT) | _BV(SCK_BIT);
    SPI_DDR &= (uint8_t)~_BV(MISO_BIT);
    SPI_PORT &= (uint8_t)~_BV(SCK_BIT);
    SPCR = (uint8_t)(_BV(SPE) | _BV(MSTR) | spcr_bits[i]);
    SPSR = double_speed[i] ? _BV(SPI2X) : 0;
}

void spi_end(void) {
    SPCR = 0;
    SPI_DDR &= (uint8_t) ~(_BV(MOSI_BIT) | _BV(SCK_BIT));
    SPI_PORT &= (uint8_t) ~(_BV(MOSI_BIT) | _BV(SCK_BIT));
}

uint8_t spi_xfer(uint8_t b) {
    SPDR = b;
    loop_until_bit_is_set(SPSR, SPIF);
    return SPDR;
}
