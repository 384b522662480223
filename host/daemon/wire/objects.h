// Objects that stand whole inside several values: the parts of an LSP's identity, its traffic and flow
// specifications, and the groups of settings and counters. Offsets count from the start of the object.
#ifndef HOST_DAEMON_WIRE_OBJECTS_H
#define HOST_DAEMON_WIRE_OBJECTS_H

#include "host/daemon/wire/layout_spec.h"

namespace rsvpsimd {

inline constexpr std::array kSession{Ip("tunnelEndpoint", 0), Raw("reserved", 4, 2), U16("tunnelId", 6),
                                     Ip("extendedTunnelId", 8)};
inline constexpr std::array kP2mpSession{U32("p2mpId", 0), U16("reserved", 4), U16("tunnelId", 6),
                                         Ip("extendedTunnelId", 8)};
inline constexpr std::array kHop{Ip("hopAddress", 0), U32("logicalIfHandle", 4)};
inline constexpr std::array kSender{Ip("senderAddress", 0), Raw("reserved", 4, 2), U16("lspId", 6)};
inline constexpr std::array kP2mpSender{Inline(0, kSender), Ip("subGroupOriginator", 8), U16("subGroupReserved", 12),
                                        U16("subGroupId", 14)};
inline constexpr std::array kIfRef{Raw("ifRefHead", 0, 2), U16("ifRefNumber", 2), Raw("ifRefTail", 4, 2)};

inline constexpr std::array kSenderTspec{
    Raw("versionHeader", 0, 2),    U16("overallLength", 2),     Raw("serviceHeader", 4, 2), U16("serviceLength", 6),
    Raw("tspecParamHeader", 8, 2), U16("tspecParamLength", 10), Float("tokenRate", 12),     Float("bucketSize", 16),
    Float("peakRate", 20),         U32("minPolicedUnit", 24),   U32("maxPacketSize", 28)};
inline constexpr std::array kFlowSpec{Inline(0, kSenderTspec), Raw("rspecParamHeader", 32, 2),
                                      U16("rspecParamLength", 34), Float("rspecRate", 36), U32("slackTerm", 40)};

inline constexpr std::array kAdspecParam{Raw("paramHeader", 0, 2), U16("paramLength", 2), U32("paramValue", 4)};
inline constexpr std::array kAdspec{Raw("msgHeader", 0, 2),
                                    U16("msgLength", 2),
                                    Raw("generalHeader", 4, 2),
                                    U16("generalLength", 6),
                                    Object("hopCount", 8, kAdspecParam),
                                    Object("pathBandwidth", 16, kAdspecParam),
                                    Object("minPathLatency", 24, kAdspecParam),
                                    Object("composedMtu", 32, kAdspecParam),
                                    U16("guaranteedLead", 40),
                                    Raw("guaranteedLeadTail", 42, 2),
                                    Raw("guaranteedHeader", 44, 2),
                                    U16("guaranteedLength", 46),
                                    Objects("guaranteedParams", 48, kAdspecParam, 8, 4),
                                    U32("guaranteedWord", 80),
                                    Objects("guaranteedOverrides", 84, kAdspecParam, 8, 4),
                                    U16("loadLead", 116),
                                    Raw("loadLeadTail", 118, 2),
                                    Raw("loadHeader", 120, 2),
                                    U16("loadLength", 122),
                                    U32("loadWord", 124),
                                    Objects("loadOverrides", 128, kAdspecParam, 8, 4)};

inline constexpr std::array kLabelRequest{U8("kind", 0),
                                          Raw("reserved0", 1, 3),
                                          U16("reserved", 4),
                                          U16("l3pid", 6),
                                          WhenKind(U16("minVpi", 8), 2),
                                          WhenKind(U16("minVci", 10), 2),
                                          WhenKind(U16("maxVpi", 12), 2),
                                          WhenKind(U16("maxVci", 14), 2),
                                          WhenKind(U32("minDlci", 8), 3),
                                          WhenKind(U32("maxDlci", 12), 3),
                                          UnlessKind(Raw("rangeBytes", 8, 8), 2, 3)};
inline constexpr std::array kSessionAttr{U8("kind", 0),
                                         WhenKind(U32("affinityForm.excludeAny", 4), 1),
                                         WhenKind(U32("affinityForm.includeAny", 8), 1),
                                         WhenKind(U32("affinityForm.includeAll", 12), 1),
                                         WhenKind(U8("affinityForm.setupPriority", 16), 1),
                                         WhenKind(U8("affinityForm.holdingPriority", 17), 1),
                                         WhenKind(U8("affinityForm.flags", 18), 1),
                                         UnlessKind(U8("shortForm.setupPriority", 4), 1, 1),
                                         UnlessKind(U8("shortForm.holdingPriority", 5), 1, 1),
                                         UnlessKind(U8("shortForm.flags", 6), 1, 1)};

inline constexpr std::array kAuthGroup{U32("authWord", 0), Secret("authKey", 4, 68), U32("authLifeTime", 72),
                                       U16("authNumber", 76), Raw("authEndBytes", 78, 2)};
inline constexpr std::array kGlobalCounters{U32("countsA", 0, 27), U32("countsB", 108, 27), U32("countsC", 216, 17)};
inline constexpr std::array kIfCounters{U32("countsA", 0, 27), U32("countsB", 108, 27), U32("countsC", 216, 2)};

inline constexpr std::array kCrlspKey{U32("keyWord0", 0),   U32("keyWord1", 4),   U32("keyWord2", 8),
                                      U16("keyShort0", 12), U16("keyShort1", 14), Raw("keyTail", 16, 4)};
inline constexpr std::array kCrlspPath{U32("pathWord0", 0),   U32("pathWord1", 4),  U32("pathWord2", 8),
                                       U32("pathWord3", 12),  U32("pathWord4", 16), U16("pathShort", 20),
                                       Raw("pathTail", 22, 2)};
inline constexpr std::array kCrlspTraffic{U32("trafficWord0", 0),  U32("trafficWord1", 4),   Rate("trafficRate0", 8),
                                          U32("trafficWord2", 12), Rate("trafficRate1", 16), U32("trafficWord3", 20),
                                          U32("trafficWord4", 24)};

inline constexpr std::array kSlot{Object("slotSender", 0, kSender), U32("slotWords", 8, 3), U8("slotByte", 20)};
inline constexpr std::array kP2mpSlot{Object("slotSender", 0, kP2mpSender), U32("slotWords", 16, 3),
                                      U8("slotByte", 28)};

} // namespace rsvpsimd

#endif
