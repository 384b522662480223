// What the stand-in's OPT_ParseEx takes as its table. On the router the table's form is the platform's; this one is
// the least that gives the option line "plugin-option refresh=30 dscp=0x30" a meaning.
#ifndef HOST_PLATFORM_OPTIONS_H
#define HOST_PLATFORM_OPTIONS_H

#include <stdint.h>

// A table is an array of these and ends with a null name. The value of `name` is stored as an unsigned 32-bit number
// in host order, `offset` bytes behind the start of the target.
typedef struct HostOption {
    const char *name;
    uint32_t offset;
} HostOption;

#endif
