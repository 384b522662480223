/**
 * @file config.h
 * Commands: they change the daemon and return only a status.
 *
 * Where a command takes `op`, 0 sets and 1 undoes the setting. The low byte of `op` is sent. A command that is called
 * gated asks the service manager first: if the service runs on no node, or no node can be asked, it sends nothing and
 * returns 0 for `op` 1, since there is nothing to undo, and RSVP_MOR_ERR_NOT_ENABLED for any other `op`.
 *
 * The daemon defines units and ranges; the library passes numbers through. Every command uses its own session, except
 * RSVP_MOR_ResetStatistics.
 */
#ifndef RSVP_MOR_CONFIG_H
#define RSVP_MOR_CONFIG_H

#include <stdint.h>

#include "rsvp_mor/lsp.h"
#include "rsvp_mor/status_codes.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Bytes of an authentication key. The caller pads a shorter key. */
#define RSVP_MOR_AUTH_KEY_SIZE 68

/** One of the two debug types that bind a switch to one RSVP session; all others are for the whole daemon. A type is
 * a number and is compared whole: 80 is neither of the two. */
#define RSVP_MOR_DEBUG_SESSION_A 16u
/** The other one. */
#define RSVP_MOR_DEBUG_SESSION_B 64u

/* ---- Enabling ---------------------------------------------------------------------------------------------- */

/**
 * Switches RSVP on or off for the device.
 *
 * Enabling talks to the service manager alone. It starts the service on the system master, if it is stopped there,
 * and then on the standby nodes that do not run it. The service manager must answer for the master; if it answers
 * 0x40010005, the service has never run and is started. If a start fails, the nodes that have started stay started,
 * and enabling again starts the rest. A list of standby nodes that cannot be read counts as empty.
 *
 * Disabling tells the daemon, then stops the service on the standby nodes and last on the master. Only the daemon's
 * answer counts: if the request fails in any way and the daemon's database can still be opened, nothing is stopped.
 * If it cannot be opened, there is no daemon that could object. What the service manager answers is ignored, so that
 * 0 does not mean that a node has stopped.
 *
 * @param op  0 enables, any other value disables
 * @return 0; RSVP_MOR_ERR_FAIL as told above, whatever the daemon or the service manager answered
 */
uint32_t RSVP_MOR_SetMplsRsvp(uint32_t op);

/**
 * RSVP_MOR_SetMplsRsvp, for callers with a yes-or-no value.
 *
 * @param capability  0 disables, anything else enables
 * @return as RSVP_MOR_SetMplsRsvp
 */
uint32_t RSVP_SetGlobalCapability(uint32_t capability);

/**
 * Switches RSVP on or off on an interface. Gated.
 *
 * @param op       0 enables, 1 disables
 * @param ifIndex  interface index
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetRsvpEnable(uint32_t op, uint32_t ifIndex);

/**
 * RSVP_MOR_SetRsvpEnable, for callers with a yes-or-no value.
 *
 * @param ifIndex     interface index
 * @param capability  0 disables, anything else enables
 * @return as RSVP_MOR_SetRsvpEnable
 */
uint32_t RSVP_SetIfCapability(uint32_t ifIndex, uint32_t capability);

/**
 * Configures or removes an RSVP peer. Not gated.
 *
 * @param op    0 configures, 1 removes
 * @param peer  IPv4 address of the peer
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetRsvpPeer(uint32_t op, uint32_t peer);

/* ---- Protocol parameters of the whole daemon, not gated ------------------------------------------------------ */

/**
 * Sets the interval of Path and Resv refreshes (RFC 2205, R).
 *
 * @param interval  the interval
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetRefreshInterval(uint16_t interval);

/**
 * Sets the keep multiplier: state outlives the loss of K - 1 refreshes in a row (RFC 2205, K).
 *
 * @param multiplier  the keep multiplier
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetKeepMultiplier(uint8_t multiplier);

/**
 * Sets the interval of Hello messages (RFC 3209).
 *
 * @param interval  the interval
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetHelloInterval(uint8_t interval);

/**
 * Sets how many Hello messages may be lost before a neighbour counts as dead (RFC 3209).
 *
 * @param lost  the number of messages
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetHelloLost(uint8_t lost);

/**
 * Sets the DSCP value of the daemon's messages (RFC 2474).
 *
 * @param dscp  the value
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetDscpValue(uint32_t dscp);

/**
 * Switches graceful restart on or off (RFC 3473).
 *
 * @param op  0 on, 1 off
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetGrEnable(uint32_t op);

/* ---- Protocol parameters of one interface, gated ------------------------------------------------------------- */

/**
 * Switches Hello messages on or off on an interface (RFC 3209). Gated.
 *
 * @param op       0 on, 1 off
 * @param ifIndex  interface index
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetHelloEnable(uint32_t op, uint32_t ifIndex);

/**
 * Switches BFD for RSVP on or off on an interface (RFC 5880). Gated.
 *
 * @param op       0 on, 1 off
 * @param ifIndex  interface index
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetBfdEnable(uint32_t op, uint32_t ifIndex);

/**
 * Sets or undoes refresh overhead reduction on an interface (RFC 2961). Gated.
 *
 * @param op       0 sets, 1 undoes; the numbers are sent in both cases
 * @param ifIndex  interface index
 * @param[in,out] pair  two numbers in host order. They are converted to network order in place and stay so after the
 *                 call, even a failed one; only if the service does not run are they unchanged
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetReduction(uint32_t op, uint32_t ifIndex, uint16_t *pair);

/**
 * Sets the retransmission interval on an interface (RFC 2961, Rf). Gated. `op` is used for the gate alone: while the
 * service runs, 0 and 1 send the same message.
 *
 * @param op        the result if the service does not run: 0 for `op` 1, RSVP_MOR_ERR_NOT_ENABLED for any other
 * @param ifIndex   interface index
 * @param interval  the interval
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetRetransInterval(uint32_t op, uint32_t ifIndex, uint16_t interval);

/**
 * Sets the retransmission increment on an interface (RFC 2961, Delta). Gated; `op` is used for the gate alone.
 *
 * @param op         as in RSVP_MOR_SetRetransInterval
 * @param ifIndex    interface index
 * @param increment  the increment
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetRetransIncrement(uint32_t op, uint32_t ifIndex, uint8_t increment);

/* ---- Authentication (RFC 2747) of the whole daemon, not gated ------------------------------------------------- */

/**
 * Sets or undoes the authentication key of the whole daemon.
 *
 * @param op       0 sets, 1 undoes; the key is sent in both cases
 * @param authKey  RSVP_MOR_AUTH_KEY_SIZE bytes, sent unchanged, zero bytes included
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetAuthKey(uint32_t op, const uint8_t *authKey);

/**
 * Switches the challenge handshake of the whole daemon on or off.
 *
 * @param op  0 on, 1 off
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetAuthChallenge(uint32_t op);

/**
 * Sets the life time of the daemon's key.
 *
 * @param lifeTime  the life time
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetAuthLifeTime(uint32_t lifeTime);

/**
 * Sets how many messages may arrive out of sequence, for the whole daemon.
 *
 * @param windowSize  the window size
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetAuthWindowSize(uint8_t windowSize);

/* ---- Authentication of one interface, gated ------------------------------------------------------------------- */

/**
 * Sets or undoes the authentication key of an interface. Gated.
 *
 * @param op       0 sets, 1 undoes; the key is sent in both cases
 * @param ifIndex  interface index
 * @param authKey  RSVP_MOR_AUTH_KEY_SIZE bytes, sent unchanged
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetIntfAuthKey(uint32_t op, uint32_t ifIndex, const uint8_t *authKey);

/**
 * Switches the challenge handshake of an interface on or off. Gated.
 *
 * @param op       0 on, 1 off
 * @param ifIndex  interface index
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetIntfAuthChallenge(uint32_t op, uint32_t ifIndex);

/**
 * Sets the life time of an interface's key. Gated; `op` is used for the gate alone.
 *
 * @param op        as in RSVP_MOR_SetRetransInterval
 * @param ifIndex   interface index
 * @param lifeTime  the life time
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetIntfAuthLifeTime(uint32_t op, uint32_t ifIndex, uint32_t lifeTime);

/**
 * Sets how many messages may arrive out of sequence on an interface. Gated; `op` is used for the gate alone.
 *
 * @param op          as in RSVP_MOR_SetRetransInterval
 * @param ifIndex     interface index
 * @param windowSize  the window size
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetIntfAuthWindowSize(uint32_t op, uint32_t ifIndex, uint8_t windowSize);

/* ---- Authentication of one peer, not gated -------------------------------------------------------------------- */

/**
 * Sets or undoes the authentication key of a peer.
 *
 * @param op       0 sets, 1 undoes; the key is sent in both cases
 * @param peer     IPv4 address of the peer
 * @param authKey  RSVP_MOR_AUTH_KEY_SIZE bytes, sent unchanged
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetPeerAuthKey(uint32_t op, uint32_t peer, const uint8_t *authKey);

/**
 * Switches the challenge handshake of a peer on or off.
 *
 * @param op    0 on, 1 off
 * @param peer  IPv4 address of the peer
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetPeerAuthChallenge(uint32_t op, uint32_t peer);

/**
 * Sets the life time of a peer's key.
 *
 * @param peer      IPv4 address of the peer
 * @param lifeTime  the life time
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetPeerAuthLifeTime(uint32_t peer, uint32_t lifeTime);

/**
 * Sets how many messages may arrive out of sequence from a peer.
 *
 * @param peer        IPv4 address of the peer
 * @param windowSize  the window size
 * @return 0; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetPeerAuthWindowSize(uint32_t peer, uint8_t windowSize);

/** Identifies one authentication entry (a security association of RFC 2747) for RSVP_MOR_ResetAuth. */
typedef struct RSVP_MOR_AuthEntryKey {
    uint32_t authId1; /**< first number of the entry's key */
    uint32_t authId2; /**< second number */
    uint16_t authId3; /**< third number */
    uint16_t authId4; /**< fourth number */
} RSVP_MOR_AuthEntryKey;

/**
 * Resets one authentication entry. If the service does not run, the result is RSVP_MOR_ERR_NOT_ENABLED.
 *
 * @param key  the entry; only read; null is refused
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_ResetAuth(const RSVP_MOR_AuthEntryKey *key);

/* ---- Debug switches and statistics ---------------------------------------------------------------------------- */

/** A debug switch, bound to one RSVP session if its type is one of the two session types. */
typedef struct RSVP_MOR_DebugSwitch {
    RSVP_MOR_Session session; /**< sent only for RSVP_MOR_DEBUG_SESSION_A and _B, and without its reserved bytes; in
                                 their place, and for all other types, zeros are sent */
    uint32_t debugType;       /**< which switch, as the daemon numbers them; a number, not a bit */
} RSVP_MOR_DebugSwitch;

/** The state of the debug switches. */
typedef struct RSVP_MOR_DebugInfo {
    RSVP_MOR_Session session1; /**< first session filter */
    RSVP_MOR_Session session2; /**< second session filter */
    uint32_t debugFlags;       /**< state of the switches */
} RSVP_MOR_DebugInfo;

/** What RSVP_MOR_ResetStatistics clears; the daemon defines the numbers. */
typedef struct RSVP_MOR_StatisticsKey {
    uint32_t statsId1; /**< first number */
    uint16_t statsId2; /**< second number */
} RSVP_MOR_StatisticsKey;

/**
 * Sets or clears a debug switch. Gated.
 *
 * @param op     0 sets, 1 clears
 * @param debug  the switch; only read, and not even that if the service does not run; null is refused
 * @return 0; RSVP_MOR_ERR_NOT_ENABLED; RSVP_MOR_ERR_LIPC; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_SetDebug(uint32_t op, const RSVP_MOR_DebugSwitch *debug);

/**
 * Reads the state of the debug switches. Held session. A reply whose body is not exactly 32 bytes, as one item with a
 * value of 28 has, is refused; what is in the body is not looked at.
 *
 * @param fd            held session
 * @param[in,out] info  the state; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetRsvpDebug(int32_t fd, RSVP_MOR_DebugInfo *info);

/**
 * Clears counters. Held session: the only command that does not open its own. Not gated.
 *
 * @param fd   held session
 * @param key  what to clear; only read; null is refused
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_ResetStatistics(int32_t fd, const RSVP_MOR_StatisticsKey *key);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
