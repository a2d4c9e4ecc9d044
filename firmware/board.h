/* The board: an Arduino Nano or Uno (ATmega328P at 16 MHz) and the pins the families use. */
#ifndef BOARD_H
#define BOARD_H

#include <avr/io.h>

#define INTERFACE_CODE 0x0A10
#define IDENT_TEXT "Tarvelix Nano programmer 1.0"

/* 1,000,000 baud is exact at 16 MHz with double speed; a board whose USB bridge cannot do it is built
 * with -DSERIAL_BAUD=115200. */
#ifndef SERIAL_BAUD
#define SERIAL_BAUD 1000000UL
#endif

/* Largest reply payload; replies are streamed, but a request (an EEPROM write of an AVR) can carry this
 * much, so the request buffer holds it. */
#define MAX_DATA 1024
#define REQUEST_MAX (MAX_DATA + 8)

/* Port B: D8 HOLD, D9 WP, D10 chip select of a flash or RESET of an AVR, D11 MOSI, D12 MISO, D13 SCK
 * (and the LED). */
#define SPI_DDR DDRB
#define SPI_PORT PORTB
#define HOLD_BIT PB0
#define WP_BIT PB1
#define SS_BIT PB2
#define MOSI_BIT PB3
#define MISO_BIT PB4
#define SCK_BIT PB5
#define LED_BIT PB5

/* Port C: A3 write protect of a 24-series part, A4 SDA, A5 SCL. */
#define I2C_WP_BIT PC3

/* The Microwire pins: D4 CS, D5 SK, D6 DI (to the chip) on port D, and DO (from the chip) on A2, with
 * the pull-up on, on a port that nothing else writes while the part is clocked. */
#define MW_DDR DDRD
#define MW_PORT PORTD
#define MW_CS_BIT PD4
#define MW_SK_BIT PD5
#define MW_DI_BIT PD6
#define MW_DO_DDR DDRC
#define MW_DO_PORT PORTC
#define MW_DO_PIN PINC
#define MW_DO_BIT PC2

#endif
