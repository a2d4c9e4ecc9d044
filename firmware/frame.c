#include "frame.h"

#include "protocol.h"
#include "uart.h"

#define BYTE_TIMEOUT_MS 200 /* a frame whose bytes stop coming is dropped */
#define KEEPALIVE_BYTE 0x55

static uint8_t sum;

uint16_t le16(const uint8_t* p) {
    return (uint16_t)(p[0] | (uint16_t)p[1] << 8);
}

uint32_t le32(const uint8_t* p) {
    return (uint32_t)le16(p) | (uint32_t)le16(p + 2) << 16;
}

static bool get(uint8_t* b, uint8_t* check) {
    if (!uart_get(b, BYTE_TIMEOUT_MS)) return false;
    *check = (uint8_t)(*check + *b);
    return true;
}

int8_t frame_receive(request_t* r) {
    uint8_t b = 0, check, lo, hi;
    for (;;) {
        do {
            uart_wait();
            uart_get(&b, 0);
        } while (b != FRAME_START);
        check = FRAME_START;
        if (!get(&r->cmd, &check) || !get(&lo, &check) || !get(&hi, &check)) continue;
        r->len = (uint16_t)(lo | hi << 8);
        bool fits = r->len <= REQUEST_MAX, complete = true;
        for (uint16_t i = 0; i < r->len && complete; ++i)
            complete = get(fits ? &r->data[i] : &b, &check);
        if (!complete || !get(&b, &check)) continue;
        if (!fits) return ERR_LENGTH;
        return check == 0 ? 0 : ERR_BAD_FRAME;
    }
}

static void put(uint8_t b) {
    sum = (uint8_t)(sum + b);
    uart_put(b);
}

void reply_begin(uint8_t cmd, uint16_t len) {
    sum = 0;
    put(FRAME_START);
    put(cmd);
    put((uint8_t)len);
    put((uint8_t)(len >> 8));
}

void reply_byte(uint8_t b) {
    put(b);
}

void reply_end(void) {
    uart_put((uint8_t)(0x100 - sum));
}

void reply_ok(uint8_t cmd) {
    reply_begin(cmd, 0);
    reply_end();
}

void reply_error(uint16_t code) {
    reply_begin(REPLY_ERROR, 2);
    put((uint8_t)code);
    put((uint8_t)(code >> 8));
    reply_end();
}

void reply_keepalive(void) {
    uart_put(KEEPALIVE_BYTE);
}
