/* AVR serial programming over SPI: the host sends single instructions (packet 7) and bulk reads and
 * writes of flash and EEPROM, which this side turns into instruction sequences. Addresses in packets
 * are byte addresses; the upper byte of a flash address comes as the host's extended-address
 * instruction, which is kept here and handed to the target as its word-address form. */
#include "busy.h"
#include "family.h"
#include "protocol.h"
#include "spi.h"

#include <util/delay.h>

#define I_PROGRAM_ENABLE_0 0xAC
#define I_PROGRAM_ENABLE_1 0x53
#define I_READ_FLASH_LOW 0x20
#define I_READ_FLASH_HIGH 0x28
#define I_LOAD_PAGE_LOW 0x40
#define I_LOAD_PAGE_HIGH 0x48
#define I_WRITE_PAGE 0x4C
#define I_EXTENDED_ADDRESS 0x4D
#define I_READ_EEPROM 0xA0
#define I_WRITE_EEPROM 0xC0
#define I_POLL_READY 0xF0
#define WAIT_POLL 0xFF

#define ENABLE_TRIES 8
#define RESET_SETTLE_MS 20
#define POLL_TIMEOUT_MS 100
#define FLASH_WRITE_MS 5   /* a page of 0xFF bytes cannot be polled by its data */
#define EEPROM_WRITE_MS 10 /* nor can an EEPROM byte 0xFF */
#define PAGE_POLL_TIMEOUT_MS 50

static uint8_t reset_active_high;
static uint8_t extended; /* bits 23..16 of the byte address, as the host sent them */
static uint8_t poll_instr;
static uint16_t poll_word;
static uint8_t poll_value;

static void reset_line(bool active) {
    if (active == (bool)reset_active_high)
        SPI_PORT |= _BV(SS_BIT);
    else
        SPI_PORT &= (uint8_t)~_BV(SS_BIT);
}

static uint8_t instruction(uint8_t a, uint8_t b, uint8_t c, uint8_t d, uint8_t* echo) {
    const uint8_t r0 = spi_xfer(a), r1 = spi_xfer(b), r2 = spi_xfer(c), r3 = spi_xfer(d);
    if (echo) {
        echo[0] = r0;
        echo[1] = r1;
        echo[2] = r2;
        echo[3] = r3;
    }
    return r3;
}

static bool target_ready(void) {
    return !(instruction(I_POLL_READY, 0, 0, 0, 0) & 1);
}

static bool value_written(void) {
    return instruction(poll_instr, (uint8_t)(poll_word >> 8), (uint8_t)poll_word, 0, 0) == poll_value;
}

/* The target answers the enable with 0x53 in the third byte once it is in step; a short reset pulse
 * brings it back in step otherwise. */
static bool program_enable(void) {
    for (uint8_t i = 0; i < ENABLE_TRIES; ++i) {
        reset_line(false);
        _delay_us(100);
        reset_line(true);
        delay_ms(RESET_SETTLE_MS);
        uint8_t echo[4];
        instruction(I_PROGRAM_ENABLE_0, I_PROGRAM_ENABLE_1, 0, 0, echo);
        if (echo[2] == I_PROGRAM_ENABLE_1) return true;
    }
    return false;
}

static int8_t select_avr(const uint8_t* p, uint16_t len) {
    if (len != SET_DEVICE_SIZE) return ERR_LENGTH;
    reset_active_high = p[3] != 0;
    extended = 0;
    reset_line(false);
    SPI_DDR |= _BV(SS_BIT);
    spi_begin(le32(p + 4));
    return program_enable() ? 0 : ERR_NO_ACK;
}

static uint16_t word_of(uint16_t byte_addr) {
    return (uint16_t)((uint16_t)(extended & 1) << 15 | byte_addr >> 1);
}

/* Address (2), count (2). */
static void read_space(const request_t* r, bool flash) {
    if (r->len != 4) return reply_error(ERR_LENGTH);
    uint16_t addr = le16(r->data);
    const uint16_t n = le16(r->data + 2);
    if (n > MAX_DATA) return reply_error(ERR_RANGE);
    reply_begin(r->cmd, n);
    for (uint16_t i = 0; i < n; ++i, ++addr) {
        const uint16_t at = flash ? word_of(addr) : addr;
        const uint8_t op = flash ? (addr & 1 ? I_READ_FLASH_HIGH : I_READ_FLASH_LOW) : I_READ_EEPROM;
        reply_byte(instruction(op, (uint8_t)(at >> 8), (uint8_t)at, 0, 0));
    }
    reply_end();
}

/* Address (2), data: loads the page buffer and writes the page. */
static void write_flash(const request_t* r) {
    if (r->len < 3) return reply_error(ERR_LENGTH);
    const uint16_t addr = le16(r->data);
    poll_instr = 0;
    for (uint16_t i = 2; i < r->len; ++i) {
        const uint16_t a = (uint16_t)(addr + i - 2), w = word_of(a);
        const uint8_t v = r->data[i], op = a & 1 ? I_LOAD_PAGE_HIGH : I_LOAD_PAGE_LOW;
        instruction(op, (uint8_t)(w >> 8), (uint8_t)w, v, 0);
        if (v != 0xFF) {
            poll_instr = a & 1 ? I_READ_FLASH_HIGH : I_READ_FLASH_LOW;
            poll_word = w;
            poll_value = v;
        }
    }
    const uint16_t page = word_of(addr);
    instruction(I_WRITE_PAGE, (uint8_t)(page >> 8), (uint8_t)page, 0, 0);
    if (!poll_instr)
        delay_ms(FLASH_WRITE_MS);
    else if (!busy_wait(value_written, PAGE_POLL_TIMEOUT_MS))
        return reply_error(ERR_WRITE);
    reply_ok(PKT_4);
}

/* Address (2), data: one byte after the other, each waited for. */
static void write_eeprom(const request_t* r) {
    if (r->len < 3) return reply_error(ERR_LENGTH);
    for (uint16_t i = 2; i < r->len; ++i) {
        const uint16_t a = (uint16_t)(le16(r->data) + i - 2);
        instruction(I_WRITE_EEPROM, (uint8_t)(a >> 8), (uint8_t)a, r->data[i], 0);
        poll_instr = I_READ_EEPROM;
        poll_word = a;
        poll_value = r->data[i];
        if (poll_value == 0xFF)
            delay_ms(EEPROM_WRITE_MS);
        else if (!busy_wait(value_written, PAGE_POLL_TIMEOUT_MS))
            return reply_error(ERR_WRITE);
    }
    reply_ok(PKT_6);
}

/* Wait byte, then the four instruction bytes; the reply is what came back. */
static void single_instruction(const request_t* r) {
    if (r->len != 5) return reply_error(ERR_LENGTH);
    const uint8_t* i = r->data + 1;
    uint8_t echo[4];
    uint8_t third = i[2];
    if (i[0] == I_EXTENDED_ADDRESS) {
        extended = i[2];
        third = extended >> 1;
    }
    instruction(i[0], i[1], third, i[3], echo);
    if (i[0] == I_EXTENDED_ADDRESS) echo[3] = i[2];
    if (r->data[0] == WAIT_POLL) {
        if (!busy_wait(target_ready, POLL_TIMEOUT_MS)) return reply_error(ERR_BUSY);
    } else if (r->data[0]) {
        /* The catalogue's write times are cut to whole milliseconds (4.5 ms travels as 4). */
        delay_ms((uint16_t)(r->data[0] + 1));
    }
    reply_begin(PKT_7, 4);
    for (uint8_t k = 0; k < 4; ++k)
        reply_byte(echo[k]);
    reply_end();
}

static void handle_avr(const request_t* r) {
    switch (r->cmd) {
    case PKT_3:
        return read_space(r, true);
    case PKT_4:
        return write_flash(r);
    case PKT_5:
        return read_space(r, false);
    case PKT_6:
        return write_eeprom(r);
    case PKT_7:
        return single_instruction(r);
    default:
        return reply_error(ERR_UNKNOWN_COMMAND);
    }
}

/* The target runs again: reset inactive, then the line is let go. */
static void release_avr(void) {
    spi_end();
    reset_line(false);
    SPI_DDR &= (uint8_t)~_BV(SS_BIT);
    SPI_PORT &= (uint8_t)~_BV(SS_BIT);
}

const family_t family_avr_isp = {select_avr, handle_avr, spi_begin, release_avr};
