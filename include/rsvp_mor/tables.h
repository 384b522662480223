/**
 * @file tables.h
 * Access by row to the tunnel, hop and resource tables, in the shape of the MPLS-TE MIB (RFC 3812), for a network
 * management agent. Every call uses its own session; no record owns memory.
 *
 * A value may be shorter than its record, even 0 bytes long, and then leaves caller's bytes in it (see rsvp_mor.h). A
 * reply without an item is refused with RSVP_MOR_ERR_FAIL.
 */
#ifndef RSVP_MOR_TABLES_H
#define RSVP_MOR_TABLES_H

#include <stdint.h>

#include "rsvp_mor/status_codes.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- Tunnels -------------------------------------------------------------------------------------------------- */

/** Index of a tunnel row, its parts in the order of RFC 3812. Which numbers of a row make up the key of the next call
 * is settled between the caller and the daemon, for both walks. */
typedef struct RSVP_MOR_TunnelKey {
    uint32_t tunnelIndex;    /**< first index part */
    uint32_t tunnelInstance; /**< second index part */
    uint32_t ingressLsrId;   /**< third index part */
    uint32_t egressLsrId;    /**< fourth index part */
} RSVP_MOR_TunnelKey;

/** One tunnel row: 60 bytes. */
typedef struct RSVP_MOR_ReplyTunnel {
    uint32_t tunnelWord0;  /**< number */
    uint32_t tunnelWord1;  /**< number */
    uint32_t tunnelWord2;  /**< number */
    uint32_t tunnelWord3;  /**< number */
    uint32_t tunnelWord4;  /**< number */
    uint32_t tunnelWord5;  /**< number */
    uint32_t tunnelWord6;  /**< number */
    uint32_t tunnelWord7;  /**< number */
    uint32_t tunnelWord8;  /**< number */
    uint32_t tunnelWord9;  /**< number */
    uint32_t tunnelWord10; /**< number */
    uint32_t tunnelWord11; /**< number */
    uint32_t tunnelWord12; /**< number */
    uint16_t tunnelShort0; /**< number */
    uint8_t tunnelByte;    /**< single byte */
    uint8_t tunnelRole;    /**< 0 if the wire has 1, 2 if it has 3, and 1 for any other number. To RFC 3812
                              1 is the head of a tunnel and 3 its tail; the daemon says whether it means these */
    uint16_t tunnelShort1; /**< number */
    uint8_t tunnelTail[2]; /**< two bytes */
} RSVP_MOR_ReplyTunnel;

/**
 * Reads one tunnel row.
 *
 * @param key       the row; only read; null is refused; may be the same memory as `out`
 * @param[out] out  the record; null is refused before a session is opened; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetTunnel(const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out);

/**
 * Reads the first tunnel row.
 *
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetFirstTunnel(RSVP_MOR_ReplyTunnel *out);

/**
 * Reads the tunnel row after a given one.
 *
 * @param key       key of the previous row; only read; null is refused; may be the same memory as `out`
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetNextTunnel(const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out);

/**
 * Reads the first row of the tunnels that start at this router.
 *
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetFirstIngressTunnel(RSVP_MOR_ReplyTunnel *out);

/**
 * Reads the row after a given one, of the tunnels that start at this router.
 *
 * @param key       key of the previous row; only read; null is refused; may be the same memory as `out`
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetNextIngressTunnel(const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out);

/* ---- Hops ----------------------------------------------------------------------------------------------------- */

/** One computed hop: 36 bytes. It contains its two key fields, so a walk needs no other cursor. */
typedef struct RSVP_MOR_ReplyCHop {
    uint16_t hopAddrKind;     /**< number */
    uint8_t hopAddrBytes[18]; /**< eighteen bytes */
    uint32_t hopListIndex;    /**< first key field */
    uint32_t hopIndex;        /**< second key field */
    uint32_t cHopWord0;       /**< number */
    uint32_t cHopWord1;       /**< number */
} RSVP_MOR_ReplyCHop;

/** One actual route hop: 28 bytes. It contains its two key fields, so a walk needs no other cursor. */
typedef struct RSVP_MOR_ReplyArHop {
    uint16_t hopAddrKind;     /**< number */
    uint8_t hopAddrBytes[18]; /**< eighteen bytes */
    uint32_t hopListIndex;    /**< first key field */
    uint32_t hopIndex;        /**< second key field */
} RSVP_MOR_ReplyArHop;

/**
 * Reads one computed hop.
 *
 * @param[in,out] record  `hopListIndex` and `hopIndex` say which row; with status 0 the whole record is the answer,
 *                        else it is unchanged; null is refused before a session is opened
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetCHop(RSVP_MOR_ReplyCHop *record);

/**
 * Reads the first computed hop.
 *
 * @param[out] record  the answer, if the status is 0; not read; null is refused
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetFirstCHop(RSVP_MOR_ReplyCHop *record);

/**
 * Reads the computed hop after the one in the record.
 *
 * @param[in,out] record  as in RSVP_GetCHop
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetNextCHop(RSVP_MOR_ReplyCHop *record);

/**
 * Reads one actual route hop.
 *
 * @param[in,out] record  as in RSVP_GetCHop
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetArHop(RSVP_MOR_ReplyArHop *record);

/**
 * Reads the first actual route hop.
 *
 * @param[out] record  the answer, if the status is 0; not read; null is refused
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetFirstArHop(RSVP_MOR_ReplyArHop *record);

/**
 * Reads the actual route hop after the one in the record.
 *
 * @param[in,out] record  as in RSVP_GetCHop
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetNextArHop(RSVP_MOR_ReplyArHop *record);

/* ---- Resources ------------------------------------------------------------------------------------------------ */

/** One row of the tunnel resource table: 24 bytes. It contains its index, so a walk needs no other cursor. */
typedef struct RSVP_MOR_ReplyResource {
    uint32_t resourceIndex; /**< key of the row */
    uint32_t resourceWord1; /**< number */
    uint32_t resourceWord2; /**< number */
    uint32_t resourceWord3; /**< number */
    uint32_t resourceWord4; /**< number */
    uint32_t resourceWord5; /**< number */
} RSVP_MOR_ReplyResource;

/**
 * Reads one resource row.
 *
 * @param[in,out] record  `resourceIndex` says which row; with status 0 the whole record is the answer, else it is
 *                        unchanged; null is refused before a session is opened
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetResource(RSVP_MOR_ReplyResource *record);

/**
 * Reads the first resource row.
 *
 * @param[out] record  the answer, if the status is 0; not read; null is refused
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetFirstResource(RSVP_MOR_ReplyResource *record);

/**
 * Reads the resource row after the one in the record.
 *
 * @param[in,out] record  as in RSVP_GetResource
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetNextResource(RSVP_MOR_ReplyResource *record);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
