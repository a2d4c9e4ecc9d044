/* A target family: what the set-device payload selects. Each handler sends exactly one reply. */
#ifndef FAMILY_H
#define FAMILY_H

#include "frame.h"

typedef struct {
    /* Returns 0 or an error code; payload is the set-device payload. */
    int8_t (*select)(const uint8_t* payload, uint16_t len);
    /* Family packets 3 to 7. */
    void (*handle)(const request_t* r);
    void (*set_clock)(uint32_t hz);
    /* Lets go of the target's lines. */
    void (*release)(void);
} family_t;

extern const family_t family_spi_flash;
extern const family_t family_avr_isp;
extern const family_t family_i2c_eeprom;
extern const family_t family_microwire;

#endif
