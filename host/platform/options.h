// The table that the stand-in's OPT_ParseEx takes. On the router the platform defines its form; this is the least
// that can give the option line "plugin-option refresh=30 dscp=0x30" a meaning.
#ifndef HOST_PLATFORM_OPTIONS_H
#define HOST_PLATFORM_OPTIONS_H

#include <stdint.h>

// A table is an array of these and ends with a null name. The value of `name` is stored as an unsigned 32-bit number
// in host order, `offset` bytes from the start of the target.
typedef struct HostOption {
    const char *name;
    uint32_t offset;
} HostOption;

#endif
