/* The serial line, polled; the receive interrupt wakes the processor from its sleep. */
#ifndef UART_H
#define UART_H

#include <stdbool.h>
#include <stdint.h>

void uart_init(void);
bool uart_available(void);
/* Waits at most timeout_ms for a byte; false when none came. */
bool uart_get(uint8_t* b, uint16_t timeout_ms);
void uart_put(uint8_t b);
/* Sleeps until a byte arrives. */
void uart_wait(void);

#endif
