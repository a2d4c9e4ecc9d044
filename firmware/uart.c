#include "uart.h"

#include "board.h"

#include <avr/interrupt.h>
#include <avr/sleep.h>
#include <util/delay.h>

/* The receive interrupt only wakes the processor from its sleep and switches itself off; the bytes of a
 * frame are then read straight from the USART, which keeps up with 1,000,000 baud (a byte every 160
 * cycles) where a ring filled by the interrupt does not. */
ISR(USART_RX_vect) {
    UCSR0B &= (uint8_t)~_BV(RXCIE0);
}

void uart_init(void) {
    const uint16_t ubrr = (uint16_t)((F_CPU / 8 + SERIAL_BAUD / 2) / SERIAL_BAUD - 1);
    /* Double speed and the frame format first: a simulator takes the byte time when the rate is set. */
    UCSR0A = _BV(U2X0);
    UCSR0C = _BV(UCSZ01) | _BV(UCSZ00);
    UBRR0H = (uint8_t)(ubrr >> 8);
    UBRR0L = (uint8_t)ubrr;
    UCSR0B = _BV(RXEN0) | _BV(TXEN0);
}

bool uart_available(void) {
    return UCSR0A & _BV(RXC0);
}

bool uart_get(uint8_t* b, uint16_t timeout_ms) {
    if (!uart_available()) {
        uint8_t ticks = 0;
        for (uint16_t left = timeout_ms; !uart_available(); _delay_us(10)) {
            if (++ticks == 100) {
                ticks = 0;
                if (left-- == 0) return false;
            }
        }
    }
    *b = UDR0;
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
        UCSR0B |= _BV(RXCIE0);
        sleep_enable();
        sei();
        sleep_cpu();
        sleep_disable();
        cli();
    }
    sei();
}
