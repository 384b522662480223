/*
 * The platform's item library: writes and reads the items of a message body. The platform owns the layout of an
 * item; all that is known here is that one item takes four bytes more than its value.
 */
#ifndef PLATFORM_STLV_H
#define PLATFORM_STLV_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes one whole item at `buf`, where `room` bytes are free. `value` may be null if `length` is 0; its bytes are
 * copied as they stand. Returns the bytes that the item took. */
uint32_t STLV_Set(void *buf, uint16_t room, uint16_t type, uint16_t length, const void *value);

/* Reads the item that begins at `buf`, of which `length` bytes are available. Stores its type, the length of its
 * value and a pointer to the value inside `buf`. Returns the bytes that the item takes, or 0 where none can be
 * read; the three stores are then left as they were. */
uint32_t STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value);

#ifdef __cplusplus
}
#endif

#endif
