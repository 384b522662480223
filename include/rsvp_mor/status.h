/**
 * @file status.h
 * Status queries: one fixed record per call. No record here owns memory, so there is nothing to release.
 *
 * Some functions accept an empty reply, one in which no item can be read: it is taken like a value of no bytes, with
 * status 0 and the caller's numbers converted.
 *
 * The daemon defines what the numbered fields mean. Where a record does not have its key under a name
 * (RSVP_MOR_IfInfo, RSVP_MOR_ReplyNbr, RSVP_MOR_ReplyAuth and the three fast reroute records), the caller and the
 * daemon settle which fields make up the key of the next call.
 */
#ifndef RSVP_MOR_STATUS_H
#define RSVP_MOR_STATUS_H

#include <stdint.h>

#include "rsvp_mor/status_codes.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- The daemon as a whole ------------------------------------------------------------------------------------ */

/** One block of the daemon's counters. */
typedef struct RSVP_MOR_GlobalCounters {
    uint32_t countsA[27]; /**< first group */
    uint32_t countsB[27]; /**< second group */
    uint32_t countsC[17]; /**< third group */
} RSVP_MOR_GlobalCounters;

/** Settings and counters of the daemon as a whole: 680 bytes. */
typedef struct RSVP_MOR_GlobalInfo {
    uint32_t authWord;                 /**< head of the authentication group */
    uint8_t authKey[68];               /**< as large as the key of RSVP_MOR_SetAuthKey */
    uint32_t authLifeTime;             /**< as wide as the number of RSVP_MOR_SetAuthLifeTime */
    uint16_t authNumber;               /**< number of the authentication group */
    uint8_t authEndBytes[2];           /**< end of the authentication group */
    uint8_t settingBytes[4];           /**< four single bytes */
    uint32_t settingWord1;             /**< setting */
    uint16_t settingShort;             /**< setting */
    uint8_t settingBytes2[2];          /**< two single bytes */
    uint32_t settingWord2;             /**< setting */
    RSVP_MOR_GlobalCounters counters1; /**< first block of counters */
    uint32_t statWord1;                /**< counter */
    uint32_t statWord2;                /**< counter */
    uint32_t statWord3;                /**< counter */
    uint32_t statWord4;                /**< counter */
    RSVP_MOR_GlobalCounters counters2; /**< second block of counters */
} RSVP_MOR_GlobalInfo;

/**
 * Reads the global settings and counters. Held session. An empty reply is accepted.
 *
 * @param fd         held session
 * @param[out] info  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetGlobalInfo(int32_t fd, RSVP_MOR_GlobalInfo *info);

/* ---- Interfaces ----------------------------------------------------------------------------------------------- */

/** One block of an interface's counters. */
typedef struct RSVP_MOR_IfCounters {
    uint32_t countsA[27]; /**< first group */
    uint32_t countsB[27]; /**< second group */
    uint32_t countsC[2];  /**< third group */
} RSVP_MOR_IfCounters;

/** Settings and counters of one interface: 556 bytes. */
typedef struct RSVP_MOR_IfInfo {
    RSVP_MOR_IfCounters counters1; /**< first block of counters */
    uint32_t authWord;             /**< head of the authentication group */
    uint8_t authKey[68];           /**< as large as the key of RSVP_MOR_SetIntfAuthKey */
    uint32_t authLifeTime;         /**< as wide as the number of RSVP_MOR_SetIntfAuthLifeTime */
    uint16_t authNumber;           /**< number of the authentication group */
    uint8_t authEndBytes[2];       /**< end of the authentication group */
    uint16_t ifShort1;             /**< setting */
    uint8_t ifBytes1[2];           /**< two single bytes */
    uint16_t ifShort2;             /**< setting */
    uint16_t ifShort3;             /**< setting */
    uint16_t ifShort4;             /**< setting */
    uint8_t ifBytes2[2];           /**< two single bytes */
    uint32_t ifWord1;              /**< setting */
    uint32_t ifWord2;              /**< setting */
    uint32_t ifWord3;              /**< setting */
    uint16_t ifShort5;             /**< setting */
    uint8_t ifBytes3[2];           /**< two single bytes */
    RSVP_MOR_IfCounters counters2; /**< second block of counters */
} RSVP_MOR_IfInfo;

/**
 * Reads one interface. Held session. An empty reply is accepted.
 *
 * @param fd         held session
 * @param ifIndex    interface index
 * @param[out] info  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetIfInfo(int32_t fd, uint32_t ifIndex, RSVP_MOR_IfInfo *info);

/**
 * Reads the first interface of the table. Held session; an empty reply is accepted.
 *
 * @param fd         held session
 * @param[out] info  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstIfInfo(int32_t fd, RSVP_MOR_IfInfo *info);

/**
 * Reads the interface after a given one. Held session; an empty reply is accepted.
 *
 * @param fd         held session
 * @param ifIndex    interface index of the previous row
 * @param[out] info  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextIfInfo(int32_t fd, uint32_t ifIndex, RSVP_MOR_IfInfo *info);

/** The small configuration row of one interface. */
typedef struct RSVP_MOR_IfConfig {
    uint32_t ifIndex;  /**< interface index; the key for the next call */
    uint16_t ifConfig; /**< its setting */
} RSVP_MOR_IfConfig;

/**
 * Reads the configuration row of one interface. Own session. The bytes that are missing from a short value read as
 * 0, and a value of no bytes makes a row of zeros. A reply without an item is refused.
 *
 * @param ifIndex      interface index
 * @param[out] config  the row; null is refused before a session is opened; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetIfConfig(uint32_t ifIndex, RSVP_MOR_IfConfig *config);

/**
 * Reads the first configuration row. Own session; as RSVP_GetIfConfig.
 *
 * @param[out] config  the row; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetFirstIfConfig(RSVP_MOR_IfConfig *config);

/**
 * Reads the configuration row after a given one. Own session; as RSVP_GetIfConfig.
 *
 * @param ifIndex      interface index of the previous row
 * @param[out] config  the row; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_GetNextIfConfig(uint32_t ifIndex, RSVP_MOR_IfConfig *config);

/* ---- Neighbours and authentication state ---------------------------------------------------------------------- */

/** Key of a neighbour row. */
typedef struct RSVP_MOR_NbrKey {
    uint32_t nbrKey0; /**< first key field */
    uint32_t nbrKey1; /**< second key field */
} RSVP_MOR_NbrKey;

/** One neighbour: 48 bytes. */
typedef struct RSVP_MOR_ReplyNbr {
    uint32_t nbrWord0;   /**< number */
    uint32_t nbrWord1;   /**< number */
    uint32_t nbrWord2;   /**< number */
    uint32_t nbrWord3;   /**< number */
    uint32_t nbrWord4;   /**< number */
    uint32_t nbrWord5;   /**< number */
    uint32_t nbrWord6;   /**< number */
    uint32_t nbrWord7;   /**< number */
    uint16_t nbrShort;   /**< number */
    uint8_t nbrBytes[6]; /**< six bytes */
    uint32_t nbrWord8;   /**< number */
    uint32_t nbrWord9;   /**< number */
} RSVP_MOR_ReplyNbr;

/**
 * Reads the first neighbour. Held session. An empty reply is accepted.
 *
 * @param fd        held session
 * @param[out] out  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstNbr(int32_t fd, RSVP_MOR_ReplyNbr *out);

/**
 * Reads the neighbour after a given one. Held session; an empty reply is accepted.
 *
 * @param fd        held session
 * @param key       key of the previous row; only read; may lie inside `out`; null is refused
 * @param[out] out  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextNbr(int32_t fd, const RSVP_MOR_NbrKey *key, RSVP_MOR_ReplyNbr *out);

/** Key of an authentication row. */
typedef struct RSVP_MOR_AuthWalkKey {
    uint32_t authEntryKey0; /**< first key field */
    uint32_t authEntryKey1; /**< second key field */
} RSVP_MOR_AuthWalkKey;

/** One authentication entry (RFC 2747): 128 bytes. */
typedef struct RSVP_MOR_ReplyAuth {
    uint8_t authEntryBytes[80]; /**< eighty bytes */
    uint64_t authEntryLong0;    /**< 64-bit number, converted as one unit */
    uint64_t authEntryLong1;    /**< 64-bit number, converted as one unit */
    uint32_t authEntryWord0;    /**< number */
    uint32_t authEntryWord1;    /**< number */
    uint32_t authEntryWord2;    /**< number */
    uint32_t authEntryWord3;    /**< number */
    uint32_t authEntryWord4;    /**< number */
    uint16_t authEntryShort;    /**< number */
    uint8_t authEntryTail[10];  /**< ten bytes */
} RSVP_MOR_ReplyAuth;

/**
 * Reads the first authentication entry. Held session. A reply whose body is not exactly 132 bytes, as one item
 * with a value of 128 has, is refused; what is in the body is not looked at.
 *
 * @param fd        held session
 * @param[out] out  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstAuth(int32_t fd, RSVP_MOR_ReplyAuth *out);

/**
 * Reads the authentication entry after a given one. Held session; as RSVP_MOR_GetFirstAuth.
 *
 * @param fd        held session
 * @param key       key of the previous row; only read; may lie inside `out`; null is refused
 * @param[out] out  the record; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; the daemon's status
 */
uint32_t RSVP_MOR_GetNextAuth(int32_t fd, const RSVP_MOR_AuthWalkKey *key, RSVP_MOR_ReplyAuth *out);

/* ---- Fast reroute (RFC 4090, RFC 6445) ------------------------------------------------------------------------ */

/** Key of a row of the fast reroute facility table. */
typedef struct RSVP_MOR_FrrFacilityKey {
    uint32_t facilityKey0;   /**< number */
    uint32_t facilityKey1;   /**< number */
    uint32_t facilityKey2;   /**< number */
    uint32_t facilityKey3;   /**< number */
    uint8_t facilityKey4[4]; /**< four bytes, sent unchanged: the daemon says in which order */
    uint8_t facilityKey5[4]; /**< four bytes, sent unchanged: the daemon says in which order */
} RSVP_MOR_FrrFacilityKey;

/** One row of the fast reroute facility table: 44 bytes. */
typedef struct RSVP_MOR_ReplyFrrFacility {
    uint32_t facilityWord0;  /**< number */
    uint32_t facilityWord1;  /**< number */
    uint32_t facilityWord2;  /**< number */
    uint32_t facilityWord3;  /**< number */
    uint32_t facilityWord4;  /**< number */
    uint32_t facilityWord5;  /**< number */
    uint32_t facilityWord6;  /**< number */
    uint32_t facilityWord7;  /**< number */
    uint32_t facilityWord8;  /**< number */
    uint32_t facilityWord9;  /**< number */
    uint32_t facilityWord10; /**< number */
} RSVP_MOR_ReplyFrrFacility;

/**
 * Reads a row of the fast reroute facility table (the facility database of RFC 6445). Own session. A reply without
 * an item is refused.
 *
 * @param msgOp     3 reads the row with this key, 4 the first row, 5 the row after this key; any other value is
 * refused
 * @param key       only read; with `msgOp` 4 it is ignored and may be null, otherwise null is refused. May be the
 * same memory as `out`
 * @param[out] out  the record; null is refused before a session is opened; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetFrrFacilityDBTbl(uint32_t msgOp, const RSVP_MOR_FrrFacilityKey *key,
                                      RSVP_MOR_ReplyFrrFacility *out);

/** Key of a row of the fast reroute general table. */
typedef struct RSVP_MOR_FrrGeneralKey {
    uint32_t frrKey0; /**< number */
    uint32_t frrKey1; /**< number */
    uint32_t frrKey2; /**< number */
} RSVP_MOR_FrrGeneralKey;

/** One row of the fast reroute general table: 44 bytes. */
typedef struct RSVP_MOR_ReplyFrrGeneral {
    uint32_t frrWord0;  /**< number */
    uint32_t frrWord1;  /**< number */
    uint32_t frrWord2;  /**< number */
    uint32_t frrWord3;  /**< number */
    uint32_t frrWord4;  /**< number */
    uint32_t frrWord5;  /**< number */
    uint32_t frrWord6;  /**< number */
    uint32_t frrWord7;  /**< number */
    uint32_t frrWord8;  /**< number */
    uint32_t frrWord9;  /**< number */
    uint32_t frrWord10; /**< number */
} RSVP_MOR_ReplyFrrGeneral;

/**
 * Reads one row of the fast reroute general table. Own session. A reply without an item is refused.
 *
 * @param key       the row; only read; null is refused; may be the same memory as `out`
 * @param[out] out  the record; null is refused before a session is opened; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetFrrGeneralTbl(const RSVP_MOR_FrrGeneralKey *key, RSVP_MOR_ReplyFrrGeneral *out);

/**
 * Reads the first row of the fast reroute general table. Own session; as RSVP_MOR_GetFrrGeneralTbl.
 *
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstFrrGeneralTbl(RSVP_MOR_ReplyFrrGeneral *out);

/**
 * Reads the row after a given one of the fast reroute general table. Own session; as RSVP_MOR_GetFrrGeneralTbl.
 *
 * @param key       key of the previous row; only read; null is refused; may be the same memory as `out`
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetNextFrrGeneralTbl(const RSVP_MOR_FrrGeneralKey *key, RSVP_MOR_ReplyFrrGeneral *out);

/** Fast reroute state of one actual route hop: 12 bytes. */
typedef struct RSVP_MOR_ReplyExtArHop {
    uint32_t extArHopWord0;   /**< number */
    uint32_t extArHopWord1;   /**< number */
    uint8_t extArHopBytes[4]; /**< four bytes */
} RSVP_MOR_ReplyExtArHop;

/**
 * Reads one extended actual route hop. Own session. A reply without an item is refused.
 *
 * @param hopListIndex  first key field
 * @param hopIndex      second key field
 * @param[out] out      the record; null is refused before a session is opened; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetExtArHop(uint32_t hopListIndex, uint32_t hopIndex, RSVP_MOR_ReplyExtArHop *out);

/**
 * Reads the first extended actual route hop. Own session; as RSVP_MOR_GetExtArHop.
 *
 * @param[out] out  the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetFirstExtArHop(RSVP_MOR_ReplyExtArHop *out);

/**
 * Reads the extended actual route hop after a given one. Own session; as RSVP_MOR_GetExtArHop.
 *
 * @param hopListIndex  first key field of the previous row
 * @param hopIndex      second key field of the previous row
 * @param[out] out      the record; null is refused; written only with status 0
 * @return 0; RSVP_MOR_ERR_FAIL; RSVP_MOR_ERR_LIPC; the daemon's status
 */
uint32_t RSVP_MOR_GetNextExtArHop(uint32_t hopListIndex, uint32_t hopIndex, RSVP_MOR_ReplyExtArHop *out);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
