/*
 * The layout of every record that no assertion next to its decoder covers: programs are compiled against it, so it
 * must not change. Compiled as C, which proves that the headers are C. The two numbers are for pointers of four and
 * of eight bytes.
 */
#include "rsvp_mor.h"

#include <stddef.h>

#define SIZE(record, narrow, wide)                                                                                   \
    _Static_assert(sizeof(record) == (sizeof(void *) == 4 ? (narrow) : (wide)), "size of " #record)
#define PLACE(record, field, narrow, wide)                                                                           \
    _Static_assert(offsetof(record, field) == (sizeof(void *) == 4 ? (narrow) : (wide)), #record "." #field)

SIZE(RSVP_MOR_HopList, 8, 16);
PLACE(RSVP_MOR_HopList, count, 4, 8);
SIZE(RSVP_MOR_RouteList, 8, 16);
PLACE(RSVP_MOR_RouteList, count, 4, 8);
SIZE(RSVP_MOR_ReplyFSInfo, 24, 40);
SIZE(RSVP_MOR_SessionAttr, 20, 20);
SIZE(RSVP_MOR_PsbSlot, 24, 24);
SIZE(RSVP_MOR_ReplyPsb, 500, 544);
PLACE(RSVP_MOR_ReplyPsb, routeList3, 296, 296);
PLACE(RSVP_MOR_ReplyPsb, routeList5, 336, 368);
PLACE(RSVP_MOR_ReplyPsb, flagBytes, 490, 530);
SIZE(RSVP_MOR_ReplyRsb, 128, 136);
PLACE(RSVP_MOR_ReplyRsb, fsList, 84, 88);
SIZE(RSVP_MOR_ReplyFDInfo, 52, 64);
PLACE(RSVP_MOR_ReplyFDInfo, fsList, 48, 56);
SIZE(RSVP_MOR_ReplyPhsb, 60, 64);
PLACE(RSVP_MOR_ReplyPhsb, fdList, 32, 32);
SIZE(RSVP_MOR_CrlspKey, 20, 20);
SIZE(RSVP_MOR_CrlspPath, 24, 24);
SIZE(RSVP_MOR_CrlspTraffic, 28, 28);
SIZE(RSVP_MOR_ReplyCrlsp, 140, 152);
PLACE(RSVP_MOR_ReplyCrlsp, hopList, 72, 72);
PLACE(RSVP_MOR_ReplyCrlsp, name, 136, 144);
SIZE(RSVP_MOR_P2mpPathState, 272, 272);
PLACE(RSVP_MOR_P2mpPathState, stateWord1, 268, 268);
SIZE(RSVP_MOR_P2mpResvState, 108, 108);
SIZE(RSVP_MOR_P2mpSubGroup, 24, 24);
PLACE(RSVP_MOR_P2mpSubGroup, subGroupHalf1, 20, 20);
SIZE(RSVP_MOR_P2mpPsbSlot, 32, 32);
SIZE(RSVP_MOR_P2mpPsbInfo, 540, 576);
PLACE(RSVP_MOR_P2mpPsbInfo, routeList5, 444, 448);
PLACE(RSVP_MOR_P2mpPsbInfo, hopList, 524, 544);
PLACE(RSVP_MOR_P2mpPsbInfo, routeList4, 532, 560);
SIZE(RSVP_MOR_P2mpRsbInfo, 412, 424);
PLACE(RSVP_MOR_P2mpRsbInfo, hopList, 404, 408);
SIZE(RSVP_MOR_P2mpRro, 60, 72);
PLACE(RSVP_MOR_P2mpRro, hopList, 52, 56);
SIZE(RSVP_MOR_P2mpCrlspInfo, 96, 112);
PLACE(RSVP_MOR_P2mpCrlspInfo, rroHead, 48, 48);
PLACE(RSVP_MOR_P2mpCrlspInfo, lspShort, 56, 64);
PLACE(RSVP_MOR_P2mpCrlspInfo, name, 92, 104);
SIZE(RSVP_MOR_P2mpReplySubLsp, 16, 24);
PLACE(RSVP_MOR_P2mpReplySubLsp, rroBlock, 12, 16);
SIZE(RSVP_MOR_DebugSwitch, 16, 16);
SIZE(RSVP_MOR_StatisticsKey, 8, 8);
SIZE(RSVP_MOR_IfConfig, 8, 8);
SIZE(RSVP_MOR_AuthEntryKey, 12, 12);
SIZE(RSVP_MOR_FrrFacilityKey, 24, 24);
SIZE(RSVP_MOR_P2mpStateKey, 56, 56);
SIZE(RSVP_MOR_P2mpCrlspKey, 36, 36);
SIZE(RSVP_MOR_NbrKey, 8, 8);
SIZE(RSVP_MOR_AuthWalkKey, 8, 8);
SIZE(RSVP_MOR_FrrGeneralKey, 12, 12);
SIZE(RSVP_MOR_TunnelKey, 16, 16);
SIZE(RSVP_MOR_IfCounters, 224, 224);
SIZE(RSVP_MOR_GlobalCounters, 284, 284);
SIZE(RSVP_MOR_SessionAttrShort, 3, 3);
SIZE(RSVP_MOR_SessionAttrAffinity, 16, 16);
SIZE(RSVP_MOR_P2mpSession, 12, 12);
SIZE(RSVP_MOR_P2mpSender, 16, 16);
