/* Waiting for a target that is busy: a poll function is asked every POLL_US until it says ready or the
 * time runs out, and the host hears a keep-alive byte now and then. */
#ifndef BUSY_H
#define BUSY_H

#include <stdbool.h>
#include <stdint.h>

typedef bool (*ready_fn)(void);

bool busy_wait(ready_fn ready, uint32_t timeout_ms);
void delay_ms(uint16_t ms);

#endif
