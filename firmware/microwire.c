/* 93-series Microwire EEPROM on bit-banged pins. The host selects this family with an empty payload and
 * does not say how many address bits the part takes, so they are counted: after a READ instruction the
 * part drives a dummy 0 on DO right after its last address bit (DO has a pull-up until then). */
#include "busy.h"
#include "family.h"
#include "protocol.h"

#include <util/delay.h>

#define MW_START 1
#define MW_OP_READ 2    /* 10 */
#define MW_OP_SPECIAL 0 /* 00: the upper address bits choose EWEN, ERAL, EWDS */
#define MW_EWEN 3       /* 11 */
#define MW_ERAL 2       /* 10 */
#define MW_EWDS 0       /* 00 */
#define MW_MAX_ADDRESS_BITS 16
#define ERASE_TIMEOUT_MS 50

static uint16_t half_period_us = 2;
static uint8_t address_bits;

static void wait_half(void) {
    for (uint16_t i = 0; i < half_period_us; ++i)
        _delay_us(1);
}

static void chip_select(bool on) {
    if (on)
        MW_PORT |= _BV(MW_CS_BIT);
    else
        MW_PORT &= (uint8_t)~_BV(MW_CS_BIT);
    wait_half();
}

static bool data_out(void) {
    return MW_DO_PIN & _BV(MW_DO_BIT);
}

/* Puts one bit on DI and clocks it in; returns DO after the rising edge. */
static bool clock_bit(bool bit) {
    if (bit)
        MW_PORT |= _BV(MW_DI_BIT);
    else
        MW_PORT &= (uint8_t)~_BV(MW_DI_BIT);
    wait_half();
    MW_PORT |= _BV(MW_SK_BIT);
    wait_half();
    const bool out = data_out();
    MW_PORT &= (uint8_t)~_BV(MW_SK_BIT);
    return out;
}

static void send_bits(uint16_t value, uint8_t count) {
    while (count--)
        clock_bit((value >> count) & 1);
}

static bool count_address_bits(void) {
    chip_select(true);
    send_bits(MW_START << 2 | MW_OP_READ, 3);
    address_bits = 0;
    for (uint8_t n = 1; n <= MW_MAX_ADDRESS_BITS && !address_bits; ++n)
        if (!clock_bit(0)) address_bits = n;
    chip_select(false);
    return address_bits != 0;
}

static void special(uint8_t which) {
    chip_select(true);
    send_bits(MW_START << 2 | MW_OP_SPECIAL, 3);
    send_bits((uint16_t)which << (address_bits - 2), address_bits);
    chip_select(false);
}

static bool ready(void) {
    return data_out();
}

static void erase_all(void) {
    if (!count_address_bits()) return reply_error(ERR_NO_ACK);
    special(MW_EWEN);
    special(MW_ERAL);
    chip_select(true); /* DO shows busy (low) and ready (high) while CS is high */
    const bool done = busy_wait(ready, ERASE_TIMEOUT_MS);
    chip_select(false);
    special(MW_EWDS);
    if (!done) return reply_error(ERR_BUSY);
    reply_ok(PKT_3);
}

static int8_t select_microwire(const uint8_t* p, uint16_t len) {
    (void)p;
    if (len != 0) return ERR_LENGTH;
    MW_PORT &= (uint8_t) ~(_BV(MW_CS_BIT) | _BV(MW_SK_BIT) | _BV(MW_DI_BIT));
    MW_DDR |= _BV(MW_CS_BIT) | _BV(MW_SK_BIT) | _BV(MW_DI_BIT);
    MW_DO_DDR &= (uint8_t)~_BV(MW_DO_BIT);
    MW_DO_PORT |= _BV(MW_DO_BIT);
    return 0;
}

static void handle_microwire(const request_t* r) {
    if (r->cmd != PKT_3) return reply_error(ERR_UNKNOWN_COMMAND);
    if (r->len != 0) return reply_error(ERR_LENGTH);
    erase_all();
}

static void set_clock(uint32_t hz) {
    const uint32_t half = hz ? 500000UL / hz : 1;
    half_period_us = half < 1 ? 1 : half > 1000 ? 1000 : (uint16_t)half;
}

static void release_microwire(void) {
    MW_DDR &= (uint8_t) ~(_BV(MW_CS_BIT) | _BV(MW_SK_BIT) | _BV(MW_DI_BIT));
    MW_PORT &= (uint8_t) ~(_BV(MW_CS_BIT) | _BV(MW_SK_BIT) | _BV(MW_DI_BIT));
    MW_DO_PORT &= (uint8_t)~_BV(MW_DO_BIT);
}

const family_t family_microwire = {select_microwire, handle_microwire, set_clock, release_microwire};
