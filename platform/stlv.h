/*
 * The platform's item library: writes and reads the items of a message body. The platform decides how an item is laid
 * out; all that is known here is that it takes four bytes more than its value.
 */
#ifndef PLATFORM_STLV_H
#define PLATFORM_STLV_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes one whole item at `buf`, where `room` bytes are free. `value` may be null if `length` is 0; its bytes are
 * copied unchanged. Returns the number of bytes that the item takes. */
uint32_t STLV_Set(void *buf, uint16_t room, uint16_t type, uint16_t length, const void *value);

/* Reads the item at the start of `buf`, where `length` bytes are available. Stores its type, the length of its value
 * and a pointer to the value inside `buf`. Returns the number of bytes that the item takes, or 0 if no item can be
 * read; then nothing is stored. */
uint32_t STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value);

#ifdef __cplusplus
}
#endif

#endif
