/**
 * @file lsp.h
 * LSP state: path, reservation and previous hop state blocks (RFC 2205, RFC 2209, RFC 3209) and CR-LSP records, one
 * block per call with all its lists. All reads use a held session.
 *
 * A list is either a heap array, given by a pointer and a count, or a chain of heap nodes. It belongs to the record
 * that points to it and is freed by that record's release function, which also resets the slot, so a second call does
 * nothing. If an item is missing from the reply, its part of the record is unchanged. The fixed part of a record
 * survives the release, so the key of the next call can be copied from it before or after; do so before the next get,
 * which may fail and yet have overwritten it.
 *
 * List slots must be null before a get. If one is not, the pointer in it is lost where the reply has the list, and
 * stays where it has not; the get functions name the exceptions. If the call fails over an item of the reply, the
 * slots are released whatever they hold: a pointer that was released before is released twice.
 */
#ifndef RSVP_MOR_LSP_H
#define RSVP_MOR_LSP_H

#include <stdint.h>

#include "rsvp_mor/status_codes.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- Lists ---------------------------------------------------------------------------------------------------- */

/** RSVP_MOR_HopEntry.kind for an address: a subobject type of RECORD_ROUTE (RFC 3209). */
#define RSVP_MOR_HOP_IPV4 1
/** RSVP_MOR_HopEntry.kind for a label. */
#define RSVP_MOR_HOP_LABEL 3

/** One hop of a recorded route: 36 bytes. */
typedef struct RSVP_MOR_HopEntry {
    uint8_t kind;          /**< RSVP_MOR_HOP_IPV4 or RSVP_MOR_HOP_LABEL; for any other kind nothing is converted */
    uint8_t reserved0[3];  /**< as sent */
    uint32_t address;      /**< the hop's IPv4 address, if `kind` is RSVP_MOR_HOP_IPV4; else as sent */
    uint32_t label;        /**< the label, if `kind` is RSVP_MOR_HOP_LABEL; else as sent */
    uint8_t reserved1[24]; /**< as sent */
} RSVP_MOR_HopEntry;

/** One element of a route list: 12 bytes. */
typedef struct RSVP_MOR_RouteEntry {
    uint8_t reserved0[4]; /**< as sent */
    uint32_t value;       /**< the element's number */
    uint8_t reserved1[4]; /**< as sent */
} RSVP_MOR_RouteEntry;

/** A recorded route. Even a list of no hops may have a pointer, which is released like any other. */
typedef struct RSVP_MOR_HopList {
    RSVP_MOR_HopEntry *entries; /**< heap array, null if the reply had none */
    uint16_t count;             /**< number of entries */
} RSVP_MOR_HopList;

/** A route list. */
typedef struct RSVP_MOR_RouteList {
    RSVP_MOR_RouteEntry *entries; /**< heap array, null if the reply had none */
    uint16_t count;               /**< number of entries */
} RSVP_MOR_RouteList;

/* ---- Objects that several blocks share ------------------------------------------------------------------------ */

/** SESSION of an LSP tunnel (RFC 3209): 12 bytes. */
typedef struct RSVP_MOR_Session {
    uint32_t tunnelEndpoint;   /**< IPv4 address of the tunnel's end point */
    uint8_t reserved[2];       /**< as sent */
    uint16_t tunnelId;         /**< tunnel identifier */
    uint32_t extendedTunnelId; /**< extended tunnel identifier */
} RSVP_MOR_Session;

/** RSVP_HOP (RFC 2205): 8 bytes. */
typedef struct RSVP_MOR_Hop {
    uint32_t hopAddress;      /**< IPv4 address of the neighbouring hop */
    uint32_t logicalIfHandle; /**< logical interface handle */
} RSVP_MOR_Hop;

/** SENDER_TEMPLATE and FILTER_SPEC of an LSP tunnel (RFC 3209): 8 bytes. */
typedef struct RSVP_MOR_Sender {
    uint32_t senderAddress; /**< IPv4 address of the tunnel's sender */
    uint8_t reserved[2];    /**< as sent */
    uint16_t lspId;         /**< LSP identifier */
} RSVP_MOR_Sender;

/** The daemon's reference to an interface: 6 bytes. */
typedef struct RSVP_MOR_IfRef {
    uint8_t ifRefHead[2]; /**< as sent */
    uint16_t ifRefNumber; /**< number */
    uint8_t ifRefTail[2]; /**< as sent */
} RSVP_MOR_IfRef;

/** SENDER_TSPEC (RFC 2210): 32 bytes. The rates are IEEE 754 singles, most significant byte first, as sent. */
typedef struct RSVP_MOR_SenderTspec {
    uint8_t versionHeader[2];    /**< version and reserved bits */
    uint16_t overallLength;      /**< overall length, in words */
    uint8_t serviceHeader[2];    /**< service number and reserved byte */
    uint16_t serviceLength;      /**< length of the service's data, in words */
    uint8_t tspecParamHeader[2]; /**< parameter number and flags */
    uint16_t tspecParamLength;   /**< length of the parameter, in words */
    uint8_t tokenRate[4];        /**< token bucket rate, bytes a second */
    uint8_t bucketSize[4];       /**< token bucket size, bytes */
    uint8_t peakRate[4];         /**< peak data rate, bytes a second */
    uint32_t minPolicedUnit;     /**< minimum policed unit, bytes */
    uint32_t maxPacketSize;      /**< maximum packet size, bytes */
} RSVP_MOR_SenderTspec;

/** FLOWSPEC (RFC 2210): 44 bytes. The rates are IEEE 754 singles, most significant byte first, as sent. */
typedef struct RSVP_MOR_FlowSpec {
    uint8_t versionHeader[2];    /**< version and reserved bits */
    uint16_t overallLength;      /**< overall length, in words */
    uint8_t serviceHeader[2];    /**< service number and reserved byte */
    uint16_t serviceLength;      /**< length of the service's data, in words */
    uint8_t tspecParamHeader[2]; /**< parameter number and flags */
    uint16_t tspecParamLength;   /**< length of the parameter, in words */
    uint8_t tokenRate[4];        /**< token bucket rate, bytes a second */
    uint8_t bucketSize[4];       /**< token bucket size, bytes */
    uint8_t peakRate[4];         /**< peak data rate, bytes a second */
    uint32_t minPolicedUnit;     /**< minimum policed unit, bytes */
    uint32_t maxPacketSize;      /**< maximum packet size, bytes */
    uint8_t rspecParamHeader[2]; /**< parameter number and flags of the guaranteed service */
    uint16_t rspecParamLength;   /**< length of the parameter, in words */
    uint8_t rspecRate[4];        /**< rate, bytes a second */
    uint32_t slackTerm;          /**< slack term, microseconds */
} RSVP_MOR_FlowSpec;

/** One parameter of an ADSPEC: 8 bytes. */
typedef struct RSVP_MOR_AdspecParam {
    uint8_t paramHeader[2]; /**< parameter number and flags */
    uint16_t paramLength;   /**< length of the parameter, in words */
    uint32_t paramValue;    /**< value; where the parameter is a float, its bits in host order */
} RSVP_MOR_AdspecParam;

/** ADSPEC (RFC 2210): 160 bytes. */
typedef struct RSVP_MOR_Adspec {
    uint8_t msgHeader[2];                        /**< version and reserved bits */
    uint16_t msgLength;                          /**< message length, in words */
    uint8_t generalHeader[2];                    /**< service number and break bit of the general fragment */
    uint16_t generalLength;                      /**< length of the general fragment, in words */
    RSVP_MOR_AdspecParam hopCount;               /**< number of hops that support integrated services */
    RSVP_MOR_AdspecParam pathBandwidth;          /**< path bandwidth estimate; the value holds the bits of a float */
    RSVP_MOR_AdspecParam minPathLatency;         /**< minimum path latency */
    RSVP_MOR_AdspecParam composedMtu;            /**< composed path MTU */
    uint16_t guaranteedLead;                     /**< lead-in of the guaranteed service fragment */
    uint8_t guaranteedLeadTail[2];               /**< as sent */
    uint8_t guaranteedHeader[2];                 /**< service number and break bit */
    uint16_t guaranteedLength;                   /**< length, in words */
    RSVP_MOR_AdspecParam guaranteedParams[4];    /**< error terms of the guaranteed service */
    uint32_t guaranteedWord;                     /**< number */
    RSVP_MOR_AdspecParam guaranteedOverrides[4]; /**< the service's overrides of the general parameters */
    uint16_t loadLead;                           /**< lead-in of the controlled load fragment */
    uint8_t loadLeadTail[2];                     /**< as sent */
    uint8_t loadHeader[2];                       /**< service number and break bit */
    uint16_t loadLength;                         /**< length, in words */
    uint32_t loadWord;                           /**< number */
    RSVP_MOR_AdspecParam loadOverrides[4];       /**< the service's overrides of the general parameters */
} RSVP_MOR_Adspec;

/** RSVP_MOR_LabelRequest.kind for an ATM label range: a C-Type of RFC 3209. */
#define RSVP_MOR_LABEL_REQUEST_ATM 2
/** RSVP_MOR_LabelRequest.kind for a frame relay label range. */
#define RSVP_MOR_LABEL_REQUEST_FRAME_RELAY 3

/** LABEL_REQUEST (RFC 3209): 16 bytes. `kind` says which range it has, if any. */
typedef struct RSVP_MOR_LabelRequest {
    uint8_t kind;         /**< RSVP_MOR_LABEL_REQUEST_ATM, _FRAME_RELAY, or another value for no range */
    uint8_t reserved0[3]; /**< as sent */
    uint16_t reserved;    /**< number */
    uint16_t l3pid;       /**< layer 3 protocol identifier */
    __extension__ union {
        __extension__ struct {
            uint16_t minVpi; /**< ATM: word with the minimum VPI */
            uint16_t minVci; /**< ATM: minimum VCI */
            uint16_t maxVpi; /**< ATM: word with the maximum VPI */
            uint16_t maxVci; /**< ATM: maximum VCI */
        };
        __extension__ struct {
            uint32_t minDlci; /**< frame relay: minimum DLCI word */
            uint32_t maxDlci; /**< frame relay: maximum DLCI word */
        };
    };
} RSVP_MOR_LabelRequest;

/** RSVP_MOR_SessionAttr.kind for the form with resource affinities: the C-Type of RFC 3209. */
#define RSVP_MOR_SESSION_ATTR_AFFINITY 1

/** SESSION_ATTRIBUTE with resource affinities (RFC 3209). */
typedef struct RSVP_MOR_SessionAttrAffinity {
    uint32_t excludeAny;     /**< resource affinities that exclude a link */
    uint32_t includeAny;     /**< resource affinities of which a link must have at least one */
    uint32_t includeAll;     /**< resource affinities that a link must all have */
    uint8_t setupPriority;   /**< 0 (best) to 7 */
    uint8_t holdingPriority; /**< 0 (best) to 7 */
    uint8_t flags;           /**< flags of RFC 3209 and RFC 4090 */
    uint8_t reserved;        /**< never written */
} RSVP_MOR_SessionAttrAffinity;

/** SESSION_ATTRIBUTE without resource affinities (RFC 3209). */
typedef struct RSVP_MOR_SessionAttrShort {
    uint8_t setupPriority;   /**< 0 (best) to 7 */
    uint8_t holdingPriority; /**< 0 (best) to 7 */
    uint8_t flags;           /**< flags of RFC 3209 and RFC 4090 */
} RSVP_MOR_SessionAttrShort;

/** SESSION_ATTRIBUTE (RFC 3209): 20 bytes. Check `kind` first; bytes that are not part of its form are not written.
 */
typedef struct RSVP_MOR_SessionAttr {
    uint8_t kind;         /**< RSVP_MOR_SESSION_ATTR_AFFINITY, or any other value for the short form */
    uint8_t reserved0[3]; /**< never written */
    union {
        RSVP_MOR_SessionAttrAffinity affinityForm; /**< if `kind` is RSVP_MOR_SESSION_ATTR_AFFINITY */
        RSVP_MOR_SessionAttrShort shortForm;       /**< for any other `kind` */
    };
} RSVP_MOR_SessionAttr;

/** A filter spec with its label; a node of a list. */
typedef struct RSVP_MOR_ReplyFSInfo {
    struct RSVP_MOR_ReplyFSInfo *next; /**< next node, null at the end */
    RSVP_MOR_Sender filter;            /**< the filter spec */
    RSVP_MOR_HopList rro;              /**< its recorded route; empty if the reply had none */
    uint32_t label;                    /**< its label */
} RSVP_MOR_ReplyFSInfo;

/* ---- Path state (PSB) ----------------------------------------------------------------------------------------- */

/** A sender with its numbers, inside a path state block. */
typedef struct RSVP_MOR_PsbSlot {
    RSVP_MOR_Sender slotSender; /**< the sender */
    uint32_t slotWords[3];      /**< three numbers */
    uint8_t slotByte;           /**< single byte */
    uint8_t reserved[3];        /**< never written */
} RSVP_MOR_PsbSlot;

/** One path state block with its lists. Released by RSVP_MOR_FreeReplyPsb. */
typedef struct RSVP_MOR_ReplyPsb {
    RSVP_MOR_Session session;           /**< together with `sender`, the key for the next call */
    RSVP_MOR_Hop hop;                   /**< previous hop */
    RSVP_MOR_IfRef ifRef;               /**< interface */
    RSVP_MOR_Sender sender;             /**< sender template */
    RSVP_MOR_SenderTspec tspec;         /**< sender's traffic specification */
    RSVP_MOR_Adspec adspec;             /**< advertisement block */
    RSVP_MOR_LabelRequest labelRequest; /**< label request */
    uint8_t leadBytes[2];               /**< two bytes */
    RSVP_MOR_SessionAttr sessionAttr;   /**< session attribute */
    uint32_t reserved1;                 /**< never written */
    uint32_t wordsA[3];                 /**< three numbers */
    uint32_t wordsB[3];                 /**< three numbers */
    RSVP_MOR_RouteList routeList3;      /**< list */
    RSVP_MOR_RouteList routeList4;      /**< list */
    RSVP_MOR_RouteList routeList6;      /**< list */
    RSVP_MOR_HopList hopList;           /**< recorded route */
    RSVP_MOR_Sender secondSender;       /**< a second sender */
    RSVP_MOR_RouteList routeList5;      /**< list */
    uint32_t wordsC[5];                 /**< five numbers */
    uint16_t halfC;                     /**< number */
    uint32_t reserved2[4];              /**< never written */
    RSVP_MOR_PsbSlot slots[2];          /**< two senders with their numbers */
    uint32_t wordsD[13];                /**< thirteen numbers */
    uint16_t halvesD[3];                /**< three numbers */
    uint8_t flagBytes[8];               /**< eight single bytes */
} RSVP_MOR_ReplyPsb;

/**
 * Reads the first path state block. A reply with an item that does not belong to the block is refused.
 *
 * @param fd              held session
 * @param[in,out] record  its five lists must be null before the call; after status 0 release it with
 *                        RSVP_MOR_FreeReplyPsb
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstPsbInfo(int32_t fd, RSVP_MOR_ReplyPsb *record);

/**
 * Reads the path state block after a given one.
 *
 * @param fd              held session
 * @param session         of the previous block; only read; may lie inside `record`; null is refused
 * @param sender          of the previous block; likewise
 * @param[in,out] record  as in RSVP_MOR_GetFirstPsbInfo
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextPsbInfo(int32_t fd, const RSVP_MOR_Session *session, const RSVP_MOR_Sender *sender,
                                 RSVP_MOR_ReplyPsb *record);

/**
 * Releases the five lists of a path state block and resets their slots. May be called twice.
 *
 * @param record  the block, not null; the record itself still belongs to the caller
 */
void RSVP_MOR_FreeReplyPsb(RSVP_MOR_ReplyPsb *record);

/* ---- Reservation state (RSB) ---------------------------------------------------------------------------------- */

/** One reservation state block with its filter specs. Released by RSVP_MOR_FreeReplyRsb. */
typedef struct RSVP_MOR_ReplyRsb {
    RSVP_MOR_Session session;     /**< together with `hop` and `filter`, the key for the next call */
    RSVP_MOR_Hop hop;             /**< next hop */
    RSVP_MOR_Sender filter;       /**< filter spec */
    RSVP_MOR_IfRef ifRef;         /**< interface */
    RSVP_MOR_FlowSpec flowSpec;   /**< flow specification */
    uint32_t style;               /**< reservation style */
    RSVP_MOR_ReplyFSInfo *fsList; /**< filter specs, the last of the reply first */
    uint32_t wordsA[3];           /**< three numbers */
    uint32_t wordsB[5];           /**< five numbers */
    uint16_t halfB;               /**< number */
    uint8_t flagBytes[3];         /**< three single bytes */
} RSVP_MOR_ReplyRsb;

/**
 * Reads the first reservation state block. Items that do not belong to the block are skipped.
 *
 * @param fd              held session
 * @param[in,out] record  `fsList` must be null before the call; after status 0 release it with RSVP_MOR_FreeReplyRsb.
 *                        What it held is lost with the block's fixed part; filter specs that come without one go in
 *                        front of it
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstRsbInfo(int32_t fd, RSVP_MOR_ReplyRsb *record);

/**
 * Reads the reservation state block after a given one.
 *
 * @param fd              held session
 * @param session         of the previous block; only read; may lie inside `record`; null is refused
 * @param hop             of the previous block; likewise
 * @param filter          of the previous block; likewise
 * @param[in,out] record  as in RSVP_MOR_GetFirstRsbInfo
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextRsbInfo(int32_t fd, const RSVP_MOR_Session *session, const RSVP_MOR_Hop *hop,
                                 const RSVP_MOR_Sender *filter, RSVP_MOR_ReplyRsb *record);

/**
 * Releases the filter specs of a reservation state block, with their routes. May be called twice.
 *
 * @param record  the block; null does nothing
 */
void RSVP_MOR_FreeReplyRsb(RSVP_MOR_ReplyRsb *record);

/**
 * Releases one filter spec node and its route. The caller has unlinked it.
 *
 * @param node  the node; null does nothing
 */
void rsvp_mor_FreeReplyFSInfo(RSVP_MOR_ReplyFSInfo *node);

/* ---- Previous hop state (PHSB) -------------------------------------------------------------------------------- */

/** A flow descriptor (RFC 2205): a flow specification and the filter specs that it covers; a node of a list. */
typedef struct RSVP_MOR_ReplyFDInfo {
    struct RSVP_MOR_ReplyFDInfo *next; /**< next flow descriptor, null at the end */
    RSVP_MOR_FlowSpec flowSpec;        /**< flow specification */
    RSVP_MOR_ReplyFSInfo *fsList;      /**< its filter specs, the last of the reply first */
} RSVP_MOR_ReplyFDInfo;

/** One previous hop state block with its flow descriptors. Released by RSVP_MOR_FreeReplyPhsb. */
typedef struct RSVP_MOR_ReplyPhsb {
    RSVP_MOR_Session session;     /**< together with `hop`, the key for the next call */
    RSVP_MOR_Hop hop;             /**< previous hop */
    RSVP_MOR_IfRef ifRef;         /**< interface */
    uint32_t style;               /**< reservation style */
    RSVP_MOR_ReplyFDInfo *fdList; /**< flow descriptors, the last of the reply first */
    uint32_t wordsA[3];           /**< three numbers */
    uint32_t wordsB[2];           /**< two numbers */
    uint16_t halvesB[2];          /**< two numbers */
} RSVP_MOR_ReplyPhsb;

/**
 * Reads the first previous hop state block. Items that do not belong to the block are skipped.
 *
 * @param fd              held session
 * @param[in,out] record  `fdList` must be null before the call; after status 0 release it with
 *                        RSVP_MOR_FreeReplyPhsb. Flow descriptors go in front of what `fdList` held
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstPhsbInfo(int32_t fd, RSVP_MOR_ReplyPhsb *record);

/**
 * Reads the previous hop state block after a given one.
 *
 * @param fd              held session
 * @param session         of the previous block; only read; may lie inside `record`; null is refused
 * @param hop             of the previous block; likewise
 * @param[in,out] record  as in RSVP_MOR_GetFirstPhsbInfo
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextPhsbInfo(int32_t fd, const RSVP_MOR_Session *session, const RSVP_MOR_Hop *hop,
                                  RSVP_MOR_ReplyPhsb *record);

/**
 * Releases the flow descriptors of a previous hop state block, with their filter specs. May be called twice.
 *
 * @param record  the block; null does nothing
 */
void RSVP_MOR_FreeReplyPhsb(RSVP_MOR_ReplyPhsb *record);

/**
 * Releases one flow descriptor and its filter specs. The caller has unlinked it.
 *
 * @param node  the flow descriptor; null does nothing
 */
void rsvp_mor_FreeReplyFDInfo(RSVP_MOR_ReplyFDInfo *node);

/* ---- CR-LSP --------------------------------------------------------------------------------------------------- */

/** Identity of a CR-LSP: 20 bytes. */
typedef struct RSVP_MOR_CrlspKey {
    uint32_t keyWord0;  /**< number */
    uint32_t keyWord1;  /**< number */
    uint32_t keyWord2;  /**< number */
    uint16_t keyShort0; /**< number */
    uint16_t keyShort1; /**< number */
    uint8_t keyTail[4]; /**< four bytes, part of the key; sent back unchanged */
} RSVP_MOR_CrlspKey;

/** The path group of a CR-LSP: 24 bytes. */
typedef struct RSVP_MOR_CrlspPath {
    uint32_t pathWord0;  /**< number */
    uint32_t pathWord1;  /**< number */
    uint32_t pathWord2;  /**< number */
    uint32_t pathWord3;  /**< number */
    uint32_t pathWord4;  /**< number */
    uint16_t pathShort;  /**< number */
    uint8_t pathTail[2]; /**< two bytes */
} RSVP_MOR_CrlspPath;

/** The traffic group of a CR-LSP. Rates are whole numbers: a fraction is cut off. On the wire they are not in network
 * order: the bytes of the whole number are reversed, and what that gives is an IEEE 754 single, least significant
 * byte first. */
typedef struct RSVP_MOR_CrlspTraffic {
    uint32_t trafficWord0; /**< number */
    uint32_t trafficWord1; /**< number */
    float trafficRate0;    /**< rate, exact from 0 to 16777215 */
    uint32_t trafficWord2; /**< number */
    float trafficRate1;    /**< rate, exact from 0 to 16777215 */
    uint32_t trafficWord3; /**< number */
    uint32_t trafficWord4; /**< number */
} RSVP_MOR_CrlspTraffic;

/** One CR-LSP with its route and its name. Released by RSVP_MOR_FreeReplyCrlsp. */
typedef struct RSVP_MOR_ReplyCrlsp {
    RSVP_MOR_CrlspKey key;         /**< identity; the key for the next call */
    RSVP_MOR_CrlspPath path;       /**< path group */
    RSVP_MOR_CrlspTraffic traffic; /**< traffic group */
    RSVP_MOR_HopList hopList;      /**< route hops */
    uint32_t tailWord0;            /**< number */
    uint32_t tailWord1;            /**< number */
    uint16_t tailShort;            /**< number */
    uint32_t tailWord2;            /**< number */
    uint32_t tailWord3;            /**< number */
    uint32_t tailWord4;            /**< number */
    uint32_t tailWord5;            /**< number */
    uint32_t tailWord6;            /**< number */
    uint32_t tailWord7;            /**< number */
    uint32_t tailWord8;            /**< number */
    uint32_t tailWord9;            /**< number */
    uint32_t tailWord10;           /**< number */
    uint8_t tailByte0;             /**< single byte */
    uint8_t tailByte1;             /**< single byte */
    uint8_t tailByte2;             /**< single byte */
    uint8_t tailByte3;             /**< single byte */
    uint8_t tailByte4;             /**< single byte */
    char *name;                    /**< terminated text on the heap, null if the reply had none */
} RSVP_MOR_ReplyCrlsp;

/**
 * Reads the first CR-LSP. Items that do not belong to the record are skipped.
 *
 * @param fd              held session
 * @param[in,out] record  `hopList` and `name` must be null before the call; after status 0 release it with
 *                        RSVP_MOR_FreeReplyCrlsp
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstCrlsp(int32_t fd, RSVP_MOR_ReplyCrlsp *record);

/**
 * Reads the CR-LSP after a given one.
 *
 * @param fd              held session
 * @param key             of the previous record; only read; may lie inside `record`; null is refused
 * @param[in,out] record  as in RSVP_MOR_GetFirstCrlsp
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextCrlsp(int32_t fd, const RSVP_MOR_CrlspKey *key, RSVP_MOR_ReplyCrlsp *record);

/**
 * Releases the route and the name of a CR-LSP. May be called twice.
 *
 * @param record  the record, not null
 */
void RSVP_MOR_FreeReplyCrlsp(RSVP_MOR_ReplyCrlsp *record);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
