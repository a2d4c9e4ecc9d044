#include "busy.h"

#include "frame.h"

#include <util/delay.h>

#define POLL_US 50
#define KEEPALIVE_MS 100

bool busy_wait(ready_fn ready, uint32_t timeout_ms) {
    uint16_t since_keepalive = 0;
    for (uint32_t us = 0; us / 1000 < timeout_ms; us += POLL_US) {
        if (ready()) return true;
        _delay_us(POLL_US);
        since_keepalive += POLL_US;
        if (since_keepalive >= KEEPALIVE_MS * 1000U) {
            since_keepalive = 0;
            reply_keepalive();
        }
    }
    return ready();
}

void delay_ms(uint16_t ms) {
    while (ms--)
        _delay_ms(1);
}
