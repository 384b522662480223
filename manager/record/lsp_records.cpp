// The records of LSP state and the objects that they share, field by field in the order of the header.
#include "manager/record/describe.h"

namespace manager {

// The library converts the address of an address hop and the label of a label hop, and leaves the other one as it
// came.
DESCRIBE(RSVP_MOR_HopEntry, NUMBER(kind), Quiet(BYTES(reserved0)),
         IfTag(ADDRESS(address), offsetof(Row, kind), RSVP_MOR_HOP_IPV4),
         UnlessTag(NET_ADDRESS(address), offsetof(Row, kind), RSVP_MOR_HOP_IPV4),
         IfTag(NUMBER(label), offsetof(Row, kind), RSVP_MOR_HOP_LABEL),
         UnlessTag(NET_NUMBER(label), offsetof(Row, kind), RSVP_MOR_HOP_LABEL), Quiet(BYTES(reserved1)))

DESCRIBE(RSVP_MOR_RouteEntry, Quiet(BYTES(reserved0)), NUMBER(value), Quiet(BYTES(reserved1)))

DESCRIBE(RSVP_MOR_Session, ADDRESS(tunnelEndpoint), Quiet(BYTES(reserved)), NUMBER(tunnelId),
         ADDRESS(extendedTunnelId))

DESCRIBE(RSVP_MOR_Hop, ADDRESS(hopAddress), NUMBER(logicalIfHandle))

DESCRIBE(RSVP_MOR_Sender, ADDRESS(senderAddress), Quiet(BYTES(reserved)), NUMBER(lspId))

DESCRIBE(RSVP_MOR_IfRef, BYTES(ifRefHead), NUMBER(ifRefNumber), BYTES(ifRefTail))

DESCRIBE(RSVP_MOR_SenderTspec, BYTES(versionHeader), Measured(NUMBER(overallLength), "words"), BYTES(serviceHeader),
         Measured(NUMBER(serviceLength), "words"), BYTES(tspecParamHeader),
         Measured(NUMBER(tspecParamLength), "words"), Measured(RATE(tokenRate), "B/s"),
         Measured(RATE(bucketSize), "B"), Measured(RATE(peakRate), "B/s"), Measured(NUMBER(minPolicedUnit), "B"),
         Measured(NUMBER(maxPacketSize), "B"))

DESCRIBE(RSVP_MOR_FlowSpec, BYTES(versionHeader), Measured(NUMBER(overallLength), "words"), BYTES(serviceHeader),
         Measured(NUMBER(serviceLength), "words"), BYTES(tspecParamHeader),
         Measured(NUMBER(tspecParamLength), "words"), Measured(RATE(tokenRate), "B/s"),
         Measured(RATE(bucketSize), "B"), Measured(RATE(peakRate), "B/s"), Measured(NUMBER(minPolicedUnit), "B"),
         Measured(NUMBER(maxPacketSize), "B"), BYTES(rspecParamHeader), Measured(NUMBER(rspecParamLength), "words"),
         Measured(RATE(rspecRate), "B/s"), Measured(NUMBER(slackTerm), "us"))

DESCRIBE(RSVP_MOR_AdspecParam, BYTES(paramHeader), Measured(NUMBER(paramLength), "words"), NUMBER(paramValue))

DESCRIBE(RSVP_MOR_Adspec, BYTES(msgHeader), Measured(NUMBER(msgLength), "words"), BYTES(generalHeader),
         Measured(NUMBER(generalLength), "words"), RECORD(hopCount), RECORD(pathBandwidth), RECORD(minPathLatency),
         RECORD(composedMtu), NUMBER(guaranteedLead), BYTES(guaranteedLeadTail), BYTES(guaranteedHeader),
         Measured(NUMBER(guaranteedLength), "words"), RECORD(guaranteedParams), NUMBER(guaranteedWord),
         RECORD(guaranteedOverrides), NUMBER(loadLead), BYTES(loadLeadTail), BYTES(loadHeader),
         Measured(NUMBER(loadLength), "words"), NUMBER(loadWord), RECORD(loadOverrides))

DESCRIBE(RSVP_MOR_LabelRequest, NUMBER(kind), Quiet(BYTES(reserved0)), Quiet(NUMBER(reserved)), NUMBER(l3pid),
         IfTag(NUMBER(minVpi), offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_ATM),
         IfTag(NUMBER(minVci), offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_ATM),
         IfTag(NUMBER(maxVpi), offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_ATM),
         IfTag(NUMBER(maxVci), offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_ATM),
         IfTag(NUMBER(minDlci), offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_FRAME_RELAY),
         IfTag(NUMBER(maxDlci), offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_FRAME_RELAY))

DESCRIBE(RSVP_MOR_SessionAttrAffinity, NUMBER(excludeAny), NUMBER(includeAny), NUMBER(includeAll),
         NUMBER(setupPriority), NUMBER(holdingPriority), NUMBER(flags))

DESCRIBE(RSVP_MOR_SessionAttrShort, NUMBER(setupPriority), NUMBER(holdingPriority), NUMBER(flags))

DESCRIBE(RSVP_MOR_SessionAttr, NUMBER(kind),
         IfTag(RECORD(affinityForm), offsetof(Row, kind), RSVP_MOR_SESSION_ATTR_AFFINITY),
         UnlessTag(RECORD(shortForm), offsetof(Row, kind), RSVP_MOR_SESSION_ATTR_AFFINITY))

DESCRIBE(RSVP_MOR_ReplyFSInfo, RECORD(filter), LIST(rro), NUMBER(label))

DESCRIBE(RSVP_MOR_PsbSlot, RECORD(slotSender), NUMBER(slotWords), NUMBER(slotByte))

DESCRIBE(RSVP_MOR_ReplyPsb, RECORD(session), RECORD(hop), RECORD(ifRef), RECORD(sender), RECORD(tspec),
         RECORD(adspec), RECORD(labelRequest), BYTES(leadBytes), RECORD(sessionAttr), NUMBER(wordsA), NUMBER(wordsB),
         LIST(routeList3), LIST(routeList4), LIST(routeList6), LIST(hopList), RECORD(secondSender), LIST(routeList5),
         NUMBER(wordsC), NUMBER(halfC), RECORD(slots), NUMBER(wordsD), NUMBER(halvesD), BYTES(flagBytes))

DESCRIBE(RSVP_MOR_ReplyRsb, RECORD(session), RECORD(hop), RECORD(filter), RECORD(ifRef), RECORD(flowSpec),
         NUMBER(style), CHAIN(fsList), NUMBER(wordsA), NUMBER(wordsB), NUMBER(halfB), BYTES(flagBytes))

DESCRIBE(RSVP_MOR_ReplyFDInfo, RECORD(flowSpec), CHAIN(fsList))

DESCRIBE(RSVP_MOR_ReplyPhsb, RECORD(session), RECORD(hop), RECORD(ifRef), NUMBER(style), CHAIN(fdList),
         NUMBER(wordsA), NUMBER(wordsB), NUMBER(halvesB))

DESCRIBE(RSVP_MOR_CrlspKey, NUMBER(keyWord0), NUMBER(keyWord1), NUMBER(keyWord2), NUMBER(keyShort0),
         NUMBER(keyShort1), BYTES(keyTail))

DESCRIBE(RSVP_MOR_CrlspPath, NUMBER(pathWord0), NUMBER(pathWord1), NUMBER(pathWord2), NUMBER(pathWord3),
         NUMBER(pathWord4), NUMBER(pathShort), BYTES(pathTail))

DESCRIBE(RSVP_MOR_CrlspTraffic, NUMBER(trafficWord0), NUMBER(trafficWord1), FLOAT(trafficRate0), NUMBER(trafficWord2),
         FLOAT(trafficRate1), NUMBER(trafficWord3), NUMBER(trafficWord4))

DESCRIBE(RSVP_MOR_ReplyCrlsp, RECORD(key), RECORD(path), RECORD(traffic), LIST(hopList), NUMBER(tailWord0),
         NUMBER(tailWord1), NUMBER(tailShort), NUMBER(tailWord2), NUMBER(tailWord3), NUMBER(tailWord4),
         NUMBER(tailWord5), NUMBER(tailWord6), NUMBER(tailWord7), NUMBER(tailWord8), NUMBER(tailWord9),
         NUMBER(tailWord10), NUMBER(tailByte0), NUMBER(tailByte1), NUMBER(tailByte2), NUMBER(tailByte3),
         NUMBER(tailByte4), TEXT(name))

} // namespace manager
