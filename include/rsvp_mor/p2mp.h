/**
 * @file p2mp.h
 * Point-to-multipoint state (RFC 4875): path state, reservation state, and the CR-LSP with all its sub-LSPs; one
 * block per call, by its key. There are no get-first and get-next functions: the caller chooses the key and the
 * message operation of every call. All reads use a held session.
 *
 * The release functions differ. RSVP_MOR_FreeP2mpPsbInfo and RSVP_MOR_FreeP2mpRsbInfo reset nothing: release such a
 * record only once, and zero it before you use it again. RSVP_MOR_FreeP2mpCrlspInfo resets what it frees and may be
 * called twice. After a failed get there is nothing to release in any of the three.
 *
 * List slots must be null before a get; each function says what happens otherwise.
 */
#ifndef RSVP_MOR_P2MP_H
#define RSVP_MOR_P2MP_H

#include <stdint.h>

#include "rsvp_mor/lsp.h"
#include "rsvp_mor/status_codes.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- What path and reservation state share -------------------------------------------------------------------- */

/** SESSION of a P2MP LSP tunnel (RFC 4875): 12 bytes. */
typedef struct RSVP_MOR_P2mpSession {
    uint32_t p2mpId;           /**< P2MP identifier */
    uint16_t reserved;         /**< number, unlike the bytes of RSVP_MOR_Session */
    uint16_t tunnelId;         /**< tunnel identifier */
    uint32_t extendedTunnelId; /**< extended tunnel identifier */
} RSVP_MOR_P2mpSession;

/** SENDER_TEMPLATE and FILTER_SPEC of a P2MP LSP tunnel (RFC 4875): 16 bytes. */
typedef struct RSVP_MOR_P2mpSender {
    uint32_t senderAddress;      /**< IPv4 address of the tunnel's sender */
    uint8_t reserved[2];         /**< as sent */
    uint16_t lspId;              /**< LSP identifier */
    uint32_t subGroupOriginator; /**< sub-group originator identifier */
    uint16_t subGroupReserved;   /**< number */
    uint16_t subGroupId;         /**< sub-group identifier */
} RSVP_MOR_P2mpSender;

/** The path side of a P2MP state block. */
typedef struct RSVP_MOR_P2mpPathState {
    RSVP_MOR_P2mpSession session;     /**< session */
    RSVP_MOR_IfRef ifRef;             /**< interface */
    uint16_t stateHalf1;              /**< number */
    RSVP_MOR_Hop hop;                 /**< previous hop */
    uint32_t stateWord2;              /**< number */
    uint32_t stateWord0;              /**< number */
    uint32_t stateWord4;              /**< number */
    RSVP_MOR_SenderTspec tspec;       /**< sender's traffic specification */
    uint8_t leadBytes[2];             /**< two bytes */
    RSVP_MOR_SessionAttr sessionAttr; /**< session attribute */
    uint32_t reserved;                /**< never written */
    RSVP_MOR_Adspec adspec;           /**< advertisement block */
    uint32_t stateWord3;              /**< number */
    uint16_t stateHalf0;              /**< number */
    uint32_t stateWord1;              /**< number */
} RSVP_MOR_P2mpPathState;

/** The reservation side of a P2MP state block. */
typedef struct RSVP_MOR_P2mpResvState {
    uint32_t resvWord0;         /**< number */
    RSVP_MOR_P2mpSender filter; /**< filter spec */
    RSVP_MOR_FlowSpec flowSpec; /**< flow specification */
    uint32_t resvWord1;         /**< number */
    uint32_t resvWord2;         /**< number */
    uint8_t resvByte0;          /**< single byte */
    uint16_t resvHalf;          /**< number */
    uint32_t reserved0;         /**< never written */
    uint32_t resvWord3;         /**< number */
    uint32_t resvWord4;         /**< number */
    uint32_t reserved1;         /**< never written */
    uint32_t resvWord5;         /**< number */
    uint32_t resvWord6;         /**< number */
    uint32_t resvWord7;         /**< number */
    uint8_t resvByte1;          /**< single byte */
} RSVP_MOR_P2mpResvState;

/** The sender template of a sub-group. */
typedef struct RSVP_MOR_P2mpSubGroup {
    RSVP_MOR_P2mpSender sender; /**< sender template */
    uint8_t subGroupByte;       /**< single byte */
    uint8_t reserved;           /**< never written */
    uint16_t subGroupHalf0;     /**< number */
    uint16_t subGroupHalf1;     /**< number */
} RSVP_MOR_P2mpSubGroup;

/** Key of a P2MP path or reservation state block: 56 bytes. The daemon defines what its fields mean. */
typedef struct RSVP_MOR_P2mpStateKey {
    uint32_t stateKeyWord0;    /**< number */
    uint32_t stateKeyWord1;    /**< number */
    uint32_t stateKeyWord2;    /**< number */
    uint8_t stateKeyBytes0[4]; /**< four bytes, sent unchanged */
    uint16_t stateKeyHalf0;    /**< number */
    uint16_t stateKeyHalf1;    /**< number */
    uint32_t stateKeyWord3;    /**< number */
    uint32_t stateKeyWord4;    /**< number */
    uint16_t stateKeyHalf2;    /**< number */
    uint16_t stateKeyHalf3;    /**< number */
    uint16_t stateKeyHalf4;    /**< number */
    uint8_t stateKeyBytes1[2]; /**< two bytes, sent unchanged */
    uint32_t stateKeyWord5;    /**< number */
    uint32_t stateKeyWord6;    /**< number */
    uint32_t stateKeyWord7;    /**< number */
    uint32_t stateKeyWord8;    /**< number */
    uint32_t stateKeyWord9;    /**< number */
} RSVP_MOR_P2mpStateKey;

/* ---- P2MP path state ------------------------------------------------------------------------------------------ */

/** A sender with its numbers, inside a P2MP path state block. */
typedef struct RSVP_MOR_P2mpPsbSlot {
    RSVP_MOR_P2mpSender slotSender; /**< the sender */
    uint32_t slotWords[3];          /**< three numbers */
    uint8_t slotByte;               /**< single byte */
    uint8_t reserved[3];            /**< never written */
} RSVP_MOR_P2mpPsbSlot;

/** One P2MP path state block with its lists. Released, once only, by RSVP_MOR_FreeP2mpPsbInfo. */
typedef struct RSVP_MOR_P2mpPsbInfo {
    RSVP_MOR_P2mpPathState pathState; /**< path side */
    RSVP_MOR_P2mpResvState resvState; /**< reservation side */
    RSVP_MOR_P2mpSubGroup subGroup;   /**< sub-group */
    RSVP_MOR_P2mpSender secondSender; /**< a second sender */
    uint32_t wordsC[5];               /**< five numbers */
    uint16_t halfC;                   /**< number */
    RSVP_MOR_RouteList routeList5;    /**< list */
    RSVP_MOR_P2mpPsbSlot slots[2];    /**< two senders with their numbers */
    RSVP_MOR_RouteList routeList6;    /**< list */
    RSVP_MOR_HopList hopList;         /**< recorded route */
    RSVP_MOR_RouteList routeList4;    /**< list */
} RSVP_MOR_P2mpPsbInfo;

/**
 * Reads one P2MP path state block. Items that do not belong to the block are skipped.
 *
 * @param fd              held session
 * @param itemType        item type of the request, as the daemon defines it; its low 16 bits are sent
 * @param op              message operation, as the daemon defines it; its low byte is sent
 * @param key             the block; only read; null is refused
 * @param[in,out] record  its four lists must be null before the call; after status 0 release it with
 *                        RSVP_MOR_FreeP2mpPsbInfo. After any other status do not: it has no lists, although its slots
 *                        may hold stale pointers. A pointer that a slot held is lost where the reply has the list; if
 *                        the call fails over a list, all four are released whatever they hold
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetP2mpPsbInfo(int32_t fd, uint32_t itemType, uint32_t op, const RSVP_MOR_P2mpStateKey *key,
                                 RSVP_MOR_P2mpPsbInfo *record);

/**
 * Releases the four lists of a P2MP path state block. Resets nothing: call it only once for each filled record.
 *
 * @param record  the block, not null
 */
void RSVP_MOR_FreeP2mpPsbInfo(RSVP_MOR_P2mpPsbInfo *record);

/* ---- P2MP reservation state ----------------------------------------------------------------------------------- */

/** One P2MP reservation state block with its route. Released, once only, by RSVP_MOR_FreeP2mpRsbInfo. */
typedef struct RSVP_MOR_P2mpRsbInfo {
    RSVP_MOR_P2mpPathState pathState; /**< path side */
    RSVP_MOR_P2mpResvState resvState; /**< reservation side */
    RSVP_MOR_P2mpSubGroup subGroup;   /**< sub-group */
    RSVP_MOR_HopList hopList;         /**< recorded route */
} RSVP_MOR_P2mpRsbInfo;

/**
 * Reads one P2MP reservation state block. Items that do not belong to the block are skipped.
 *
 * @param fd              held session
 * @param op              message operation, as the daemon defines it; its low byte is sent
 * @param key             the block; only read; null is refused
 * @param[in,out] record  `hopList` must be null before the call; after status 0 release it with
 *                        RSVP_MOR_FreeP2mpRsbInfo. What it held is lost where the reply has a route
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetP2mpRsbInfo(int32_t fd, uint32_t op, const RSVP_MOR_P2mpStateKey *key,
                                 RSVP_MOR_P2mpRsbInfo *record);

/**
 * Releases the route of a P2MP reservation state block. Resets nothing: call it only once for each filled record.
 *
 * @param record  the block, not null
 */
void RSVP_MOR_FreeP2mpRsbInfo(RSVP_MOR_P2mpRsbInfo *record);

/* ---- P2MP CR-LSP ---------------------------------------------------------------------------------------------- */

/** Key of a P2MP CR-LSP: 36 bytes. The daemon defines what its fields mean. */
typedef struct RSVP_MOR_P2mpCrlspKey {
    uint32_t keyWord0;  /**< number */
    uint32_t keyWord1;  /**< number */
    uint32_t keyWord2;  /**< number */
    uint16_t keyShort0; /**< number */
    uint16_t keyShort1; /**< number */
    uint16_t keyShort2; /**< number */
    uint16_t keyShort3; /**< number */
    uint32_t keyWord3;  /**< number */
    uint32_t keyWord4;  /**< number */
    uint32_t keyWord5;  /**< number */
    uint32_t keyWord6;  /**< number */
} RSVP_MOR_P2mpCrlspKey;

/** One sub-LSP and its recorded route; a node of a list. */
typedef struct RSVP_MOR_P2mpRro {
    struct RSVP_MOR_P2mpRro *next; /**< next sub-LSP, null at the end */
    RSVP_MOR_CrlspPath path;       /**< path group */
    uint16_t subShort;             /**< number */
    uint32_t subWord0;             /**< number */
    uint32_t subWord1;             /**< number */
    uint32_t subWord2;             /**< number */
    uint32_t subWord3;             /**< number */
    uint8_t subByte;               /**< single byte */
    RSVP_MOR_HopList hopList;      /**< recorded route; empty if the reply had none */
} RSVP_MOR_P2mpRro;

/** One P2MP CR-LSP with its sub-LSPs and its name. Released by RSVP_MOR_FreeP2mpCrlspInfo. */
typedef struct RSVP_MOR_P2mpCrlspInfo {
    RSVP_MOR_CrlspKey key;         /**< identity; not the key of a request */
    RSVP_MOR_CrlspTraffic traffic; /**< traffic group */
    RSVP_MOR_P2mpRro *rroHead;     /**< first sub-LSP, in the order of the reply; follow `next` */
    RSVP_MOR_P2mpRro *rroTail;     /**< last sub-LSP */
    uint16_t lspShort;             /**< number */
    uint32_t lspWord0;             /**< number */
    uint32_t lspWord1;             /**< number */
    uint32_t lspWord2;             /**< number */
    uint32_t lspWord3;             /**< number */
    uint32_t lspWord4;             /**< number */
    uint32_t lspWord5;             /**< number */
    uint32_t lspWord6;             /**< number */
    uint8_t lspByte0;              /**< single byte */
    uint8_t lspByte1;              /**< single byte */
    uint8_t lspByte2;              /**< single byte */
    uint8_t lspByte3;              /**< single byte */
    char *name;                    /**< terminated text on the heap, null if the reply had none */
} RSVP_MOR_P2mpCrlspInfo;

/** A sub-LSP node that the caller makes with `malloc`; the library only releases it. */
typedef struct RSVP_MOR_P2mpReplySubLsp {
    uint32_t words[3]; /**< the library does not touch them */
    void *rroBlock;    /**< block from `malloc`, or null */
} RSVP_MOR_P2mpReplySubLsp;

/**
 * Reads one P2MP CR-LSP with all its sub-LSPs. Items that do not belong to the record are skipped.
 *
 * @param fd              held session
 * @param op              message operation, as the daemon defines it; its low byte is sent
 * @param key             the record; only read; null is refused
 * @param[in,out] record  `rroHead`, `rroTail` and `name` must be null before the call; after status 0 release it with
 *                        RSVP_MOR_FreeP2mpCrlspInfo. Sub-LSPs go behind `rroTail`, and if that is null `rroHead` is
 *                        lost; a name replaces what `name` held. If the call fails over an item of the reply, all are
 *                        released whatever they hold
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetP2mpCrlsp(int32_t fd, uint32_t op, const RSVP_MOR_P2mpCrlspKey *key,
                               RSVP_MOR_P2mpCrlspInfo *record);

/**
 * Releases the sub-LSPs and the name of a P2MP CR-LSP. May be called twice.
 *
 * @param record  the record, not null
 */
void RSVP_MOR_FreeP2mpCrlspInfo(RSVP_MOR_P2mpCrlspInfo *record);

/**
 * Releases one sub-LSP and its route. The caller has unlinked it.
 *
 * @param node  the sub-LSP, not null
 */
void rsvp_mor_FreeP2mpRro(RSVP_MOR_P2mpRro *node);

/**
 * Releases one node of a caller's own list and its block. Follows no link.
 *
 * @param node  the node, not null
 */
void rsvp_mor_FreeP2mpReplySubLsp(RSVP_MOR_P2mpReplySubLsp *node);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
