/**
 * @file channel.h
 * The session to the daemon, the plain counters, whether the service runs, and the option file.
 */
#ifndef RSVP_MOR_CHANNEL_H
#define RSVP_MOR_CHANNEL_H

#include <stdint.h>

#include "rsvp_mor/status_codes.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/**
 * Opens a session to the daemon, with time-outs of 10 seconds for each send and each receive. If the daemon does not
 * accept it, the call waits as long as a send would.
 *
 * @return a descriptor, to be closed with RSVP_MOR_LIPCClose; or -1 if the socket, its options or the connection
 *         failed, and then nothing is left open
 */
int32_t RSVP_MOR_LIPCOpen(void);

/**
 * Closes a session.
 *
 * @param fd  the session
 * @return the result of close(2)
 */
int32_t RSVP_MOR_LIPCClose(int32_t fd);

/**
 * Reads the number of interfaces that are configured for fast reroute (RFC 4090, RFC 6445). Own session. A value of
 * less than 4 bytes is refused.
 *
 * @param[out] count  the number; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL (also for a null `count`); RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetFrrIfNum(uint32_t *count);

/**
 * Reads the number of interfaces on which fast reroute is active. Own session; as RSVP_MOR_GetFrrIfNum.
 *
 * @param[out] count  the number; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL (also for a null `count`); RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetFrrActiveIfNum(uint32_t *count);

/**
 * Reads the number of active bypass tunnels. Own session; as RSVP_MOR_GetFrrIfNum.
 *
 * @param[out] count  the number; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL (also for a null `count`); RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetActBypassTunnels(uint32_t *count);

/**
 * Says whether the service "RSVP" runs on the system master or on any standby node. Asks the platform's service
 * manager, not the daemon. On a node that cannot be asked the service counts as stopped.
 *
 * @return 1 if it runs, else 0
 */
uint32_t RSVP_IsGlobalEnabled(void);

/**
 * Reads the number of LSPs that are up. Own session. If the service does not run there are none: the function stores
 * 0, returns status 0 and sends nothing. Unlike the counts above it takes a value of less than 4 bytes, over the
 * front of the caller's number: set `count` to 0 before the call.
 *
 * @param[in,out] count  the number; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL (also for a null `count`); RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetUpLspNumber(uint32_t *count);

/**
 * Parses the first plug-in option of "/etc/te.conf" with the platform's option reader. Does not talk to the daemon.
 *
 * @param target  where the option's values go; passed to the platform untouched
 * @param table   the option table, in the platform's form; passed on untouched
 * @return 0 or the platform's code; RSVP_MOR_ERR_NOT_EXIST if the file cannot be used; RSVP_MOR_ERR_FAIL if it
 *         contains no plug-in option
 */
uint32_t RSVP_Opt_Parse(void *target, void *table);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
