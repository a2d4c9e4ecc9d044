#include "uart.h"

#include "board.h"

#include <avr/interrupt.h>
#include <avr/sleep.h>
#include <util/delay.h>

#define RING_SIZE 64 /* a power of two */

static volatile uint8_t ring[RING_SIZE];
static volatile uint8_t head, tail;

ISR(USART_RX_vect) {
    const uint8_t b = UDR0;
    const uint8_t next = (uint8_t)((head + 1) & (RING_SIZE - 1));
    if (next != tail) { /* a full ring drops the byte; the frame's check byte then fails */
        ring[head] = b;
        head = next;
    }
}

void uart_init(void) {
    const uint16_t ubrr = (uint16_t)((F_CPU / 8 + SERIAL_BAUD / 2) / SERIAL_BAUD - 1);
    UBRR0H = (uint8_t)(ubrr >> 8);
    UBRR0L = (uint8_t)ubrr;
    UCSR0A = _BV(U2X0);
    UCSR0C = _BV(UCSZ01) | _BV(UCSZ00);
    UCSR0B = _BV(RXEN0) | _BV(TXEN0) | _BV(RXCIE0);
}

bool uart_available(void) {
    return head != tail;
}

bool uart_get(uint8_t* b, uint16_t timeout_ms) {
    for (uint32_t us = (uint32_t)timeout_ms * 1000; !uart_available(); us -= 10) {
        if (us < 10) return false;
        _delay_us(10);
    }
    *b = ring[tail];
    tail = (uint8_t)((tail + 1) & (RING_SIZE - 1));
    return true;
}

void uart_put(uint8_t b) {
    loop_until_bit_is_set(UCSR0A, UDRE0);
    UDR0 = b;
}

/* Interrupts are enabled only together with the sleep instruction, so a byte that arrives between the
 * test and the sleep still wakes the processor. */
void uart_wait(void) {
    set_sleep_mode(SLEEP_MODE_IDLE);
    cli();
    while (!uart_available()) {
        sleep_enable();
        sei();
        sleep_cpu();
        sleep_disable();
        cli();
    }
    sei();
}
