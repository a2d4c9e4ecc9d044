/* Frames of the programmer protocol: C0, command, 16-bit length (low byte first), data, and a check
 * byte that makes the byte sum of the whole frame zero. Replies are sent while they are produced, so a
 * reply of MAX_DATA bytes needs no buffer. */
#ifndef FRAME_H
#define FRAME_H

#include <stdbool.h>
#include <stdint.h>

#include "board.h"

typedef struct {
    uint8_t cmd;
    uint16_t len;
    uint8_t data[REQUEST_MAX];
} request_t;

/* Reads the next request. Returns 0 for a frame, or an error code for a frame that cannot be
 * taken (wrong check byte, too long); bytes before the start byte are skipped. */
int8_t frame_receive(request_t* r);

void reply_begin(uint8_t cmd, uint16_t len);
void reply_byte(uint8_t b);
void reply_end(void);
void reply_ok(uint8_t cmd);
void reply_error(uint16_t code);
/* While the target is busy for long, a byte that is not a start byte keeps the host's per-byte
 * time-out from expiring; the host skips everything before the start byte. Only before reply_begin. */
void reply_keepalive(void);

uint16_t le16(const uint8_t* p);
uint32_t le32(const uint8_t* p);

#endif
