#include "pins.h"

#include "board.h"
#include "busy.h"
#include "protocol.h"

#include <avr/interrupt.h>

typedef struct {
    volatile uint8_t* ddr;
    volatile uint8_t* port;
    uint8_t bit;
} pin_t;

/* In the order of the description's [Pins], which is the order of their names:
 * A2 A3 A4 A5 D10 D11 D12 D13 D4 D5 D6 D8 D9. */
static const pin_t pins[PIN_COUNT] = {
    {&DDRC, &PORTC, PC2}, {&DDRC, &PORTC, PC3}, {&DDRC, &PORTC, PC4}, {&DDRC, &PORTC, PC5},
    {&DDRB, &PORTB, PB2}, {&DDRB, &PORTB, PB3}, {&DDRB, &PORTB, PB4}, {&DDRB, &PORTB, PB5},
    {&DDRD, &PORTD, PD4}, {&DDRD, &PORTD, PD5}, {&DDRD, &PORTD, PD6}, {&DDRB, &PORTB, PB0},
    {&DDRB, &PORTB, PB1},
};
#define RESET_PIN 4 /* D10 */

static void drive(const pin_t* p, bool output, bool high) {
    const uint8_t m = _BV(p->bit);
    if (high)
        *p->port |= m;
    else
        *p->port &= (uint8_t)~m;
    if (output)
        *p->ddr |= m;
    else
        *p->ddr &= (uint8_t)~m;
}

int8_t pins_set(const uint8_t* states, uint8_t count) {
    for (uint8_t i = 0; i < count; ++i)
        if (states[i] > PIN_TRISTATE || states[i] == PIN_PULL_DOWN) return ERR_RANGE;
    for (uint8_t i = 0; i < count; ++i) {
        const pin_t* p = &pins[i];
        switch (states[i]) {
        case PIN_PULL_UP:
            drive(p, false, true);
            break;
        case PIN_LOW:
        case PIN_OD_LOW:
            drive(p, true, false);
            break;
        case PIN_HIGH:
            drive(p, true, true);
            break;
        case PIN_INPUT:
        case PIN_OD_HIGH: /* an open drain let go */
        case PIN_TRISTATE:
            drive(p, false, false);
            break;
        }
    }
    return 0;
}

/* The error state blinks: Timer 2 overflows about 61 times a second at prescaler 1024. */
#define BLINK_OVERFLOWS 15
static volatile uint8_t overflows;

ISR(TIMER2_OVF_vect) {
    if (++overflows < BLINK_OVERFLOWS) return;
    overflows = 0;
    PORTB ^= _BV(LED_BIT);
}

void led_set(uint8_t state, bool sck_in_use) {
    TIMSK2 = 0;
    TCCR2B = 0;
    if (sck_in_use) return; /* D13 is the SPI clock now */
    DDRB |= _BV(LED_BIT);
    if (state == LED_IDLE)
        PORTB &= (uint8_t)~_BV(LED_BIT);
    else
        PORTB |= _BV(LED_BIT);
    if (state == LED_ERROR) {
        TCCR2B = _BV(CS22) | _BV(CS21) | _BV(CS20);
        TIMSK2 = _BV(TOIE2);
    }
}

void reset_pulse(int16_t ms) {
    if (ms == 0) return;
    const pin_t* reset = &pins[RESET_PIN];
    drive(reset, true, ms > 0);
    delay_ms((uint16_t)(ms > 0 ? (int32_t)ms : -(int32_t)ms));
    drive(reset, false, false);
}
