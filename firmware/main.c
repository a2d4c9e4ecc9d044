/* Tarvelix programmer firmware for an Arduino Nano or Uno: one request, one reply, for ever. */
#include "board.h"
#include "family.h"
#include "frame.h"
#include "pins.h"
#include "protocol.h"
#include "uart.h"

#include <avr/interrupt.h>
#include <avr/pgmspace.h>
#include <string.h>

#define CLOCK_MAX 8000000UL
#define LEAVE_HEADER 2 /* the duration before the pin states */

static request_t request;
static const family_t* family;
/* The lines are let go after a leave and taken again, with the same payload, by the next packet. */
static bool family_active;
static uint8_t selection[SET_DEVICE_SIZE];
static uint8_t selection_len;
static uint8_t led_state;

static const char ident[] PROGMEM = IDENT_TEXT;

static void release(void) {
    if (family && family_active) family->release();
    family_active = false;
    led_set(led_state, false);
}

static bool uses_sck(void) {
    return family_active && (family == &family_spi_flash || family == &family_avr_isp);
}

static int8_t activate(void) {
    if (family_active) return 0;
    const int8_t err = family->select(selection, selection_len);
    family_active = err == 0;
    if (!family_active) family->release();
    return err;
}

static const family_t* family_of(const uint8_t* p, uint16_t len) {
    if (len == 0) return &family_microwire; /* the 93 series sends no payload */
    if (len != SET_DEVICE_SIZE) return 0;
    switch (le16(p)) {
    case TYPE_I2C_EEPROM:
        return &family_i2c_eeprom;
    case TYPE_SPI_FLASH:
        return &family_spi_flash;
    case TYPE_AVR_ISP:
        return &family_avr_isp;
    default:
        return 0;
    }
}

static void set_device(const request_t* r) {
    release();
    family = 0;
    const family_t* f = family_of(r->data, r->len);
    if (!f) return reply_error(r->len == 0 || r->len == SET_DEVICE_SIZE ? ERR_NOT_SUPPORTED : ERR_LENGTH);
    family = f;
    selection_len = (uint8_t)r->len;
    memcpy(selection, r->data, r->len);
    const int8_t err = activate();
    if (err) return reply_error((uint16_t)err);
    reply_ok(r->cmd);
}

static void family_packet(const request_t* r) {
    if (!family) return reply_error(ERR_NO_DEVICE);
    if (r->cmd == PKT_LEAVE) {
        if (r->len < LEAVE_HEADER || r->len > LEAVE_HEADER + PIN_COUNT) return reply_error(ERR_LENGTH);
        release();
        reset_pulse((int16_t)le16(r->data));
        const int8_t err = pins_set(r->data + LEAVE_HEADER, (uint8_t)(r->len - LEAVE_HEADER));
        return err ? reply_error((uint16_t)err) : reply_ok(r->cmd);
    }
    const int8_t err = activate();
    if (err) return reply_error((uint16_t)err);
    if (r->cmd == PKT_CLOCK) {
        if (r->len != 4) return reply_error(ERR_LENGTH);
        const uint32_t hz = le32(r->data);
        if (hz == 0 || hz > CLOCK_MAX) return reply_error(ERR_RANGE);
        family->set_clock(hz);
        return reply_ok(r->cmd);
    }
    family->handle(r);
}

static void identify(uint8_t cmd) {
    const uint16_t n = (uint16_t)strlen_P(ident) + 1;
    reply_begin(cmd, n);
    for (uint16_t i = 0; i < n; ++i)
        reply_byte(pgm_read_byte(&ident[i]));
    reply_end();
}

static void own_command(const request_t* r) {
    switch (r->cmd) {
    case CMD_INTERFACE:
        reply_begin(r->cmd, 2);
        reply_byte((uint8_t)INTERFACE_CODE);
        reply_byte((uint8_t)(INTERFACE_CODE >> 8));
        return reply_end();
    case CMD_IDENT:
        return identify(r->cmd);
    case CMD_LED:
        if (r->len != 1) return reply_error(ERR_LENGTH);
        if (r->data[0] > LED_MAX) return reply_error(ERR_RANGE);
        led_state = r->data[0];
        led_set(led_state, uses_sck());
        return reply_ok(r->cmd);
    case CMD_SET_DEVICE:
        return set_device(r);
    case CMD_LEAVE_ALL:
        release();
        return reply_ok(r->cmd);
    case CMD_RESET:
        if (r->len != 2) return reply_error(ERR_LENGTH);
        reset_pulse((int16_t)le16(r->data));
        return reply_ok(r->cmd);
    case CMD_SET_IO: {
        if (r->len == 0 || r->len > PIN_COUNT) return reply_error(ERR_LENGTH);
        const int8_t err = pins_set(r->data, (uint8_t)r->len);
        return err ? reply_error((uint16_t)err) : reply_ok(r->cmd);
    }
    case CMD_GENERATOR:
    case CMD_SET_VCC:
    case CMD_SET_VPP:
    case CMD_SET_VICC:
    case CMD_SET_VIPP:
        return reply_error(ERR_NOT_SUPPORTED); /* no generator, no programmable supplies */
    default:
        return reply_error(ERR_UNKNOWN_COMMAND);
    }
}

int main(void) {
    uart_init();
    led_set(LED_IDLE, false);
    sei();
    for (;;) {
        const int8_t err = frame_receive(&request);
        if (err)
            reply_error((uint16_t)err);
        else if (request.cmd >= PKT_LEAVE && request.cmd <= PKT_7)
            family_packet(&request);
        else
            own_command(&request);
    }
}
