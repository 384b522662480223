/*
 * The platform's view of the device: one node is the system master, any number of others are on standby.
 */
#ifndef PLATFORM_DEVICE_H
#define PLATFORM_DEVICE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The node that is the system master. */
uint32_t DEV_GetSystemMaster(void);

/* The standby nodes: a heap array of `*count` identifiers, which the caller releases with free; null if there is no
 * list. */
uint16_t *DEV_GetAllStandbyNodes(uint32_t *count);

#ifdef __cplusplus
}
#endif

#endif
