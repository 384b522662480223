/*
 * The platform's service manager: starts, stops and watches a service, by its name, on the nodes of the device. Every
 * call returns 0 on success and another code on failure. What the last numbers of the start and stop calls mean is
 * the platform's matter.
 */
#ifndef PLATFORM_SERVICE_H
#define PLATFORM_SERVICE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Stores the status of `service` on `node`: 0 and 3 stopped, 1 and 2 running, any other neither. Nothing is stored on
 * failure. The code 0x40010005 says that the service has never run on the node. `selector` is 0 or -1. */
uint32_t SERVICE_GetStatus(uint32_t node, const char *service, int32_t selector, uint32_t *status);

uint32_t SERVICE_Start(uint32_t node, const char *service, uint32_t, uint32_t);
uint32_t SERVICE_Stop(uint32_t node, const char *service, uint32_t, uint32_t);
uint32_t SERVICE_BatchStart(uint16_t *nodes, uint32_t count, const char *service, uint32_t, uint32_t);
uint32_t SERVICE_BatchStop(uint16_t *nodes, uint32_t count, const char *service, uint32_t, uint32_t);

#ifdef __cplusplus
}
#endif

#endif
