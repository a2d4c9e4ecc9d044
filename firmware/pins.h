/* The programmer's numbered pins (1 ... PIN_COUNT) of the set-io and leave packets, the LED and the
 * target reset pulse. */
#ifndef PINS_H
#define PINS_H

#include <stdbool.h>
#include <stdint.h>

#define PIN_COUNT 13

/* Returns an error code for a state it does not know, 0 otherwise; PIN_KEEP leaves the pin. */
int8_t pins_set(const uint8_t* states, uint8_t count);
void led_set(uint8_t state, bool sck_in_use);
/* A pulse of |ms| on the reset line (D10): low for a negative value, high for a positive one. */
void reset_pulse(int16_t ms);

#endif
