/* 25-series SPI flash: the host builds every opcode; the programmer adds the write enable before and
 * the busy wait after each write transaction. */
#include "busy.h"
#include "family.h"
#include "protocol.h"
#include "spi.h"

#define OP_WRITE_ENABLE 0x06
#define OP_READ_STATUS 0x05
#define STATUS_BUSY 0x01
#define STATUS_WEL 0x02
/* The longest chip erase of the large parts, with room. */
#define BUSY_TIMEOUT_MS 400000UL

static void cs(bool active) {
    if (active)
        SPI_PORT &= (uint8_t)~_BV(SS_BIT);
    else
        SPI_PORT |= _BV(SS_BIT);
}

static uint8_t read_status(void) {
    cs(true);
    spi_xfer(OP_READ_STATUS);
    const uint8_t s = spi_xfer(0xFF);
    cs(false);
    return s;
}

static bool ready(void) {
    return !(read_status() & STATUS_BUSY);
}

static int8_t select_flash(const uint8_t* p, uint16_t len) {
    if (len != SET_DEVICE_SIZE) return ERR_LENGTH;
    SPI_PORT |= _BV(SS_BIT) | _BV(WP_BIT) | _BV(HOLD_BIT);
    SPI_DDR |= _BV(WP_BIT) | _BV(HOLD_BIT);
    spi_begin(le32(p + 4));
    cs(false);
    return 0;
}

/* Count of bytes to read, then the bytes to send. */
static void read_transaction(const request_t* r) {
    if (r->len < 3) return reply_error(ERR_LENGTH);
    const uint16_t n = le16(r->data);
    if (n > MAX_DATA) return reply_error(ERR_RANGE);
    cs(true);
    for (uint16_t i = 2; i < r->len; ++i)
        spi_xfer(r->data[i]);
    reply_begin(PKT_3, n);
    for (uint16_t i = 0; i < n; ++i)
        reply_byte(spi_xfer(0xFF));
    cs(false);
    reply_end();
}

static void write_transaction(const request_t* r) {
    if (r->len < 1) return reply_error(ERR_LENGTH);
    cs(true);
    spi_xfer(OP_WRITE_ENABLE);
    cs(false);
    const uint8_t s = read_status();
    if (s == 0xFF) return reply_error(ERR_NO_ACK); /* nothing drives MISO */
    if (!(s & STATUS_WEL)) return reply_error(ERR_WRITE);
    cs(true);
    for (uint16_t i = 0; i < r->len; ++i)
        spi_xfer(r->data[i]);
    cs(false);
    if (!busy_wait(ready, BUSY_TIMEOUT_MS)) return reply_error(ERR_BUSY);
    reply_ok(PKT_4);
}

static void handle_flash(const request_t* r) {
    if (r->cmd == PKT_3) return read_transaction(r);
    if (r->cmd == PKT_4) return write_transaction(r);
    reply_error(ERR_UNKNOWN_COMMAND);
}

static void release_flash(void) {
    cs(false);
    spi_end();
    SPI_DDR &= (uint8_t) ~(_BV(SS_BIT) | _BV(WP_BIT) | _BV(HOLD_BIT));
    SPI_PORT &= (uint8_t) ~(_BV(SS_BIT) | _BV(WP_BIT) | _BV(HOLD_BIT));
}

const family_t family_spi_flash = {select_flash, handle_flash, spi_begin, release_flash};
