/* The hardware SPI port as bus master, mode 0, most significant bit first. */
#ifndef SPI_H
#define SPI_H

#include <stdint.h>

void spi_begin(uint32_t hz);
void spi_end(void);
uint8_t spi_xfer(uint8_t b);

#endif
