// The records and keys of configuration, status queries and table rows, field by field in the order of the headers.
#include "manager/record/describe.h"

namespace manager {

DESCRIBE(RSVP_MOR_AuthEntryKey, NUMBER(authId1), NUMBER(authId2), NUMBER(authId3), NUMBER(authId4))

DESCRIBE(RSVP_MOR_DebugSwitch, RECORD(session), NUMBER(debugType))

DESCRIBE(RSVP_MOR_DebugInfo, RECORD(session1), RECORD(session2), NUMBER(debugFlags))

DESCRIBE(RSVP_MOR_StatisticsKey, NUMBER(statsId1), NUMBER(statsId2))

DESCRIBE(RSVP_MOR_GlobalCounters, NUMBER(countsA), NUMBER(countsB), NUMBER(countsC))

DESCRIBE(RSVP_MOR_GlobalInfo, NUMBER(authWord), SECRET(authKey), NUMBER(authLifeTime), NUMBER(authNumber),
         BYTES(authEndBytes), BYTES(settingBytes), NUMBER(settingWord1), NUMBER(settingShort), BYTES(settingBytes2),
         NUMBER(settingWord2), RECORD(counters1), NUMBER(statWord1), NUMBER(statWord2), NUMBER(statWord3),
         NUMBER(statWord4), RECORD(counters2))

DESCRIBE(RSVP_MOR_IfCounters, NUMBER(countsA), NUMBER(countsB), NUMBER(countsC))

DESCRIBE(RSVP_MOR_IfInfo, RECORD(counters1), NUMBER(authWord), SECRET(authKey), NUMBER(authLifeTime),
         NUMBER(authNumber), BYTES(authEndBytes), NUMBER(ifShort1), BYTES(ifBytes1), NUMBER(ifShort2),
         NUMBER(ifShort3), NUMBER(ifShort4), BYTES(ifBytes2), NUMBER(ifWord1), NUMBER(ifWord2), NUMBER(ifWord3),
         NUMBER(ifShort5), BYTES(ifBytes3), RECORD(counters2))

DESCRIBE(RSVP_MOR_IfConfig, NUMBER(ifIndex), NUMBER(ifConfig))

DESCRIBE(RSVP_MOR_NbrKey, NUMBER(nbrKey0), NUMBER(nbrKey1))

DESCRIBE(RSVP_MOR_ReplyNbr, NUMBER(nbrWord0), NUMBER(nbrWord1), NUMBER(nbrWord2), NUMBER(nbrWord3), NUMBER(nbrWord4),
         NUMBER(nbrWord5), NUMBER(nbrWord6), NUMBER(nbrWord7), NUMBER(nbrShort), BYTES(nbrBytes), NUMBER(nbrWord8),
         NUMBER(nbrWord9))

DESCRIBE(RSVP_MOR_AuthWalkKey, NUMBER(authEntryKey0), NUMBER(authEntryKey1))

DESCRIBE(RSVP_MOR_ReplyAuth, SECRET(authEntryBytes), NUMBER(authEntryLong0), NUMBER(authEntryLong1),
         NUMBER(authEntryWord0), NUMBER(authEntryWord1), NUMBER(authEntryWord2), NUMBER(authEntryWord3),
         NUMBER(authEntryWord4), NUMBER(authEntryShort), BYTES(authEntryTail))

DESCRIBE(RSVP_MOR_FrrFacilityKey, NUMBER(facilityKey0), NUMBER(facilityKey1), NUMBER(facilityKey2),
         NUMBER(facilityKey3), BYTES(facilityKey4), BYTES(facilityKey5))

DESCRIBE(RSVP_MOR_ReplyFrrFacility, NUMBER(facilityWord0), NUMBER(facilityWord1), NUMBER(facilityWord2),
         NUMBER(facilityWord3), NUMBER(facilityWord4), NUMBER(facilityWord5), NUMBER(facilityWord6),
         NUMBER(facilityWord7), NUMBER(facilityWord8), NUMBER(facilityWord9), NUMBER(facilityWord10))

DESCRIBE(RSVP_MOR_FrrGeneralKey, NUMBER(frrKey0), NUMBER(frrKey1), NUMBER(frrKey2))

DESCRIBE(RSVP_MOR_ReplyFrrGeneral, NUMBER(frrWord0), NUMBER(frrWord1), NUMBER(frrWord2), NUMBER(frrWord3),
         NUMBER(frrWord4), NUMBER(frrWord5), NUMBER(frrWord6), NUMBER(frrWord7), NUMBER(frrWord8), NUMBER(frrWord9),
         NUMBER(frrWord10))

DESCRIBE(RSVP_MOR_ReplyExtArHop, NUMBER(extArHopWord0), NUMBER(extArHopWord1), BYTES(extArHopBytes))

DESCRIBE(RSVP_MOR_TunnelKey, NUMBER(tunnelIndex), NUMBER(tunnelInstance), ADDRESS(ingressLsrId), ADDRESS(egressLsrId))

DESCRIBE(RSVP_MOR_ReplyTunnel, NUMBER(tunnelWord0), NUMBER(tunnelWord1), NUMBER(tunnelWord2), NUMBER(tunnelWord3),
         NUMBER(tunnelWord4), NUMBER(tunnelWord5), NUMBER(tunnelWord6), NUMBER(tunnelWord7), NUMBER(tunnelWord8),
         NUMBER(tunnelWord9), NUMBER(tunnelWord10), NUMBER(tunnelWord11), NUMBER(tunnelWord12), NUMBER(tunnelShort0),
         NUMBER(tunnelByte), NUMBER(tunnelRole), NUMBER(tunnelShort1), BYTES(tunnelTail))

DESCRIBE(RSVP_MOR_ReplyCHop, NUMBER(hopAddrKind), BYTES(hopAddrBytes), NUMBER(hopListIndex), NUMBER(hopIndex),
         NUMBER(cHopWord0), NUMBER(cHopWord1))

DESCRIBE(RSVP_MOR_ReplyArHop, NUMBER(hopAddrKind), BYTES(hopAddrBytes), NUMBER(hopListIndex), NUMBER(hopIndex))

DESCRIBE(RSVP_MOR_ReplyResource, NUMBER(resourceIndex), NUMBER(resourceWord1), NUMBER(resourceWord2),
         NUMBER(resourceWord3), NUMBER(resourceWord4), NUMBER(resourceWord5))

} // namespace manager
