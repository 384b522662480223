// The records of point-to-multipoint state, field by field in the order of the header.
#include "manager/record/describe.h"

namespace manager {

DESCRIBE(RSVP_MOR_P2mpSession, NUMBER(p2mpId), Quiet(NUMBER(reserved)), NUMBER(tunnelId), ADDRESS(extendedTunnelId))

DESCRIBE(RSVP_MOR_P2mpSender, ADDRESS(senderAddress), Quiet(BYTES(reserved)), NUMBER(lspId),
         ADDRESS(subGroupOriginator), Quiet(NUMBER(subGroupReserved)), NUMBER(subGroupId))

DESCRIBE(RSVP_MOR_P2mpPathState, RECORD(session), RECORD(ifRef), NUMBER(stateHalf1), RECORD(hop), NUMBER(stateWord2),
         NUMBER(stateWord0), NUMBER(stateWord4), RECORD(tspec), BYTES(leadBytes), RECORD(sessionAttr), RECORD(adspec),
         NUMBER(stateWord3), NUMBER(stateHalf0), NUMBER(stateWord1))

DESCRIBE(RSVP_MOR_P2mpResvState, NUMBER(resvWord0), RECORD(filter), RECORD(flowSpec), NUMBER(resvWord1),
         NUMBER(resvWord2), NUMBER(resvByte0), NUMBER(resvHalf), NUMBER(resvWord3), NUMBER(resvWord4),
         NUMBER(resvWord5), NUMBER(resvWord6), NUMBER(resvWord7), NUMBER(resvByte1))

DESCRIBE(RSVP_MOR_P2mpSubGroup, RECORD(sender), NUMBER(subGroupByte), NUMBER(subGroupHalf0), NUMBER(subGroupHalf1))

DESCRIBE(RSVP_MOR_P2mpStateKey, NUMBER(stateKeyWord0), NUMBER(stateKeyWord1), NUMBER(stateKeyWord2),
         BYTES(stateKeyBytes0), NUMBER(stateKeyHalf0), NUMBER(stateKeyHalf1), NUMBER(stateKeyWord3),
         NUMBER(stateKeyWord4), NUMBER(stateKeyHalf2), NUMBER(stateKeyHalf3), NUMBER(stateKeyHalf4),
         BYTES(stateKeyBytes1), NUMBER(stateKeyWord5), NUMBER(stateKeyWord6), NUMBER(stateKeyWord7),
         NUMBER(stateKeyWord8), NUMBER(stateKeyWord9))

DESCRIBE(RSVP_MOR_P2mpPsbSlot, RECORD(slotSender), NUMBER(slotWords), NUMBER(slotByte))

DESCRIBE(RSVP_MOR_P2mpPsbInfo, RECORD(pathState), RECORD(resvState), RECORD(subGroup), RECORD(secondSender),
         NUMBER(wordsC), NUMBER(halfC), LIST(routeList5), RECORD(slots), LIST(routeList6), LIST(hopList),
         LIST(routeList4))

DESCRIBE(RSVP_MOR_P2mpRsbInfo, RECORD(pathState), RECORD(resvState), RECORD(subGroup), LIST(hopList))

DESCRIBE(RSVP_MOR_P2mpCrlspKey, NUMBER(keyWord0), NUMBER(keyWord1), NUMBER(keyWord2), NUMBER(keyShort0),
         NUMBER(keyShort1), NUMBER(keyShort2), NUMBER(keyShort3), NUMBER(keyWord3), NUMBER(keyWord4),
         NUMBER(keyWord5), NUMBER(keyWord6))

DESCRIBE(RSVP_MOR_P2mpRro, RECORD(path), NUMBER(subShort), NUMBER(subWord0), NUMBER(subWord1), NUMBER(subWord2),
         NUMBER(subWord3), NUMBER(subByte), LIST(hopList))

DESCRIBE(RSVP_MOR_P2mpCrlspInfo, RECORD(key), RECORD(traffic), CHAIN(rroHead), NUMBER(lspShort), NUMBER(lspWord0),
         NUMBER(lspWord1), NUMBER(lspWord2), NUMBER(lspWord3), NUMBER(lspWord4), NUMBER(lspWord5), NUMBER(lspWord6),
         NUMBER(lspByte0), NUMBER(lspByte1), NUMBER(lspByte2), NUMBER(lspByte3), TEXT(name))

} // namespace manager
