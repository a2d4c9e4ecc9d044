/* 24-series EEPROM on the hardware TWI. The host sends the device-select byte with the block bits and
 * the address bytes; this side adds the bus address pins, the repeated start of a read and the wait
 * for the write cycle, asking with the select byte until the part acknowledges again. */
#include "busy.h"
#include "family.h"
#include "protocol.h"

#include <util/twi.h>

#define WRITE_CYCLE_TIMEOUT_MS 50
#define TWI_TIMEOUT_LOOPS 20000U /* a bus that never finishes a byte: SDA or SCL held low */

static uint8_t pin_address; /* A2..A0 shifted into place for the select byte */
static uint8_t write_delay_ms;
static uint8_t poll_select;

static bool twi_go(uint8_t control) {
    TWCR = (uint8_t)(control | _BV(TWINT) | _BV(TWEN));
    for (uint16_t i = 0; i < TWI_TIMEOUT_LOOPS; ++i)
        if (TWCR & _BV(TWINT)) return true;
    return false;
}

static bool twi_start(void) {
    return twi_go(_BV(TWSTA)) && (TW_STATUS == TW_START || TW_STATUS == TW_REP_START);
}

static void twi_stop(void) {
    TWCR = _BV(TWINT) | _BV(TWEN) | _BV(TWSTO);
    for (uint16_t i = 0; i < TWI_TIMEOUT_LOOPS && (TWCR & _BV(TWSTO)); ++i) {
    }
}

static bool twi_send(uint8_t b, uint8_t ack_status) {
    TWDR = b;
    return twi_go(0) && TW_STATUS == ack_status;
}

/* simavr 1.6 reports the acknowledged address of a write as an acknowledged data byte; on the part
 * that status cannot follow a start, so taking it as well changes nothing there. */
static bool twi_select(uint8_t select) {
    if (!twi_start()) return false;
    if (select & 1) return twi_send(select, TW_MR_SLA_ACK);
    TWDR = select;
    return twi_go(0) && (TW_STATUS == TW_MT_SLA_ACK || TW_STATUS == TW_MT_DATA_ACK);
}

static bool acknowledges(void) {
    const bool ack = twi_select(poll_select);
    twi_stop();
    return ack;
}

static void set_clock(uint32_t hz) {
    const uint32_t twbr = hz >= F_CPU / 16 ? 0 : (F_CPU / hz - 16) / 2;
    TWSR = 0; /* prescaler 1 */
    TWBR = twbr > 255 ? 255 : (uint8_t)twbr;
}

/* Type (2), hardware configuration, bus address, clock (4), write delay. */
static int8_t select_eeprom(const uint8_t* p, uint16_t len) {
    if (len != SET_DEVICE_SIZE) return ERR_LENGTH;
    pin_address = (uint8_t)((p[3] & 7) << 1);
    write_delay_ms = p[8];
    DDRC |= _BV(I2C_WP_BIT);
    PORTC &= (uint8_t)~_BV(I2C_WP_BIT);
    PORTC |= _BV(PC4) | _BV(PC5); /* the internal pull-ups, for short wires without resistors */
    set_clock(le32(p + 4));
    TWCR = _BV(TWEN);
    return 0;
}

/* Select byte, address bytes, data. */
static void write_eeprom(const request_t* r) {
    if (r->len < 1) return reply_error(ERR_LENGTH);
    const uint8_t select = (uint8_t)((r->data[0] | pin_address) & 0xFE);
    if (!twi_select(select)) {
        twi_stop();
        return reply_error(ERR_NO_ACK);
    }
    for (uint16_t i = 1; i < r->len; ++i)
        if (!twi_send(r->data[i], TW_MT_DATA_ACK)) {
            twi_stop();
            return reply_error(ERR_WRITE);
        }
    twi_stop();
    delay_ms(write_delay_ms);
    poll_select = select;
    if (!busy_wait(acknowledges, WRITE_CYCLE_TIMEOUT_MS)) return reply_error(ERR_BUSY);
    reply_ok(PKT_4);
}

/* Count (2), select byte, address bytes; the last byte read gets no acknowledge. */
static void read_eeprom(const request_t* r) {
    if (r->len < 3) return reply_error(ERR_LENGTH);
    const uint16_t n = le16(r->data);
    if (n > MAX_DATA) return reply_error(ERR_RANGE);
    const uint8_t select = (uint8_t)((r->data[2] | pin_address) & 0xFE);
    bool ok = twi_select(select);
    for (uint16_t i = 3; ok && i < r->len; ++i)
        ok = twi_send(r->data[i], TW_MT_DATA_ACK);
    if (!ok || !twi_select(select | 1)) {
        twi_stop();
        return reply_error(ERR_NO_ACK);
    }
    reply_begin(PKT_5, n);
    for (uint16_t i = 0; i < n; ++i) {
        const bool last = i + 1 == n;
        twi_go(last ? 0 : _BV(TWEA));
        reply_byte(TWDR);
    }
    twi_stop();
    reply_end();
}

static void handle_eeprom(const request_t* r) {
    switch (r->cmd) {
    case PKT_3:
        if (r->len != 1) return reply_error(ERR_LENGTH);
        pin_address = r->data[0];
        return reply_ok(PKT_3);
    case PKT_4:
        return write_eeprom(r);
    case PKT_5:
        return read_eeprom(r);
    default:
        return reply_error(ERR_UNKNOWN_COMMAND);
    }
}

static void release_eeprom(void) {
    TWCR = 0;
    DDRC &= (uint8_t)~_BV(I2C_WP_BIT);
    PORTC &= (uint8_t) ~(_BV(I2C_WP_BIT) | _BV(PC4) | _BV(PC5));
}

const family_t family_i2c_eeprom = {select_eeprom, handle_eeprom, set_clock, release_eeprom};
