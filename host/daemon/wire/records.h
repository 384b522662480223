// The values of fixed-record reads and of the rows of tables that have no lists: global and interface
// information, neighbours, authentication state, fast reroute, tunnels, hops, resources.
#ifndef HOST_DAEMON_WIRE_RECORDS_H
#define HOST_DAEMON_WIRE_RECORDS_H

#include "host/daemon/wire/objects.h"

namespace rsvpsimd {

namespace records {

inline constexpr std::array kCount{U32("count", 0)};
inline constexpr std::array kDebugInfo{Object("session1", 0, kSession), Object("session2", 12, kSession),
                                       U32("debugFlags", 24)};
inline constexpr std::array kGlobalInfo{Inline(0, kAuthGroup),
                                        Raw("settingBytes", 80, 4),
                                        U32("settingWord1", 84),
                                        U16("settingShort", 88),
                                        Raw("settingBytes2", 90, 2),
                                        U32("settingWord2", 92),
                                        Object("counters1", 96, kGlobalCounters),
                                        U32("statWord1", 380),
                                        U32("statWord2", 384),
                                        U32("statWord3", 388),
                                        U32("statWord4", 392),
                                        Object("counters2", 396, kGlobalCounters)};
inline constexpr std::array kIfInfo{Object("counters1", 0, kIfCounters),
                                    Inline(224, kAuthGroup),
                                    U16("ifShort1", 304),
                                    Raw("ifBytes1", 306, 2),
                                    U16("ifShort2", 308),
                                    U16("ifShort3", 310),
                                    U16("ifShort4", 312),
                                    Raw("ifBytes2", 314, 2),
                                    U32("ifWord1", 316),
                                    U32("ifWord2", 320),
                                    U32("ifWord3", 324),
                                    U16("ifShort5", 328),
                                    Raw("ifBytes3", 330, 2),
                                    Object("counters2", 332, kIfCounters)};
inline constexpr std::array kIfConfig{U32("ifIndex", 0), U16("ifConfig", 4)};
inline constexpr std::array kNbr{U32("nbrWord0", 0),     U32("nbrWord1", 4),  U32("nbrWord2", 8),
                                 U32("nbrWord3", 12),    U32("nbrWord4", 16), U32("nbrWord5", 20),
                                 U32("nbrWord6", 24),    U32("nbrWord7", 28), U16("nbrShort", 32),
                                 Raw("nbrBytes", 34, 6), U32("nbrWord8", 40), U32("nbrWord9", 44)};
inline constexpr std::array kAuth{Holding(Raw("authEntryBytes", 0, 80), kAuthGroup),
                                  Number("authEntryLong0", 80, 8),
                                  Number("authEntryLong1", 88, 8),
                                  U32("authEntryWord0", 96),
                                  U32("authEntryWord1", 100),
                                  U32("authEntryWord2", 104),
                                  U32("authEntryWord3", 108),
                                  U32("authEntryWord4", 112),
                                  U16("authEntryShort", 116),
                                  Raw("authEntryTail", 118, 10)};
inline constexpr std::array kFacility{U32("facilityWord0", 0),  U32("facilityWord1", 4),  U32("facilityWord2", 8),
                                      U32("facilityWord3", 12), U32("facilityWord4", 16), U32("facilityWord5", 20),
                                      U32("facilityWord6", 24), U32("facilityWord7", 28), U32("facilityWord8", 32),
                                      U32("facilityWord9", 36), U32("facilityWord10", 40)};
inline constexpr std::array kGeneral{U32("frrWord0", 0),  U32("frrWord1", 4),  U32("frrWord2", 8),
                                     U32("frrWord3", 12), U32("frrWord4", 16), U32("frrWord5", 20),
                                     U32("frrWord6", 24), U32("frrWord7", 28), U32("frrWord8", 32),
                                     U32("frrWord9", 36), U32("frrWord10", 40)};
inline constexpr std::array kExtArHop{U32("extArHopWord0", 0), U32("extArHopWord1", 4), Raw("extArHopBytes", 8, 4)};
inline constexpr std::array kTunnel{U32("tunnelWord0", 0),   U32("tunnelWord1", 4),   U32("tunnelWord2", 8),
                                    U32("tunnelWord3", 12),  U32("tunnelWord4", 16),  U32("tunnelWord5", 20),
                                    U32("tunnelWord6", 24),  U32("tunnelWord7", 28),  U32("tunnelWord8", 32),
                                    U32("tunnelWord9", 36),  U32("tunnelWord10", 40), U32("tunnelWord11", 44),
                                    U32("tunnelWord12", 48), U16("tunnelShort0", 52), U8("tunnelByte", 54),
                                    U8("tunnelRole", 55),    U16("tunnelShort1", 56), Raw("tunnelTail", 58, 2)};
inline constexpr std::array kArHop{U16("hopAddrKind", 0), Raw("hopAddrBytes", 2, 18), U32("hopListIndex", 20),
                                   U32("hopIndex", 24)};
inline constexpr std::array kCHop{Inline(0, kArHop), U32("cHopWord0", 28), U32("cHopWord1", 32)};
inline constexpr std::array kResource{U32("resourceIndex", 0),  U32("resourceWord1", 4),  U32("resourceWord2", 8),
                                      U32("resourceWord3", 12), U32("resourceWord4", 16), U32("resourceWord5", 20)};

} // namespace records

inline constexpr std::array kRecordLayouts{
    LayoutSpec{"count", 4, records::kCount},
    LayoutSpec{"debugInfo", 28, records::kDebugInfo},
    LayoutSpec{"globalInfo", 680, records::kGlobalInfo},
    LayoutSpec{"ifInfo", 556, records::kIfInfo},
    LayoutSpec{"ifConfig", 8, records::kIfConfig},
    LayoutSpec{"nbr", 48, records::kNbr},
    LayoutSpec{"auth", 128, records::kAuth},
    LayoutSpec{"facility", 44, records::kFacility},
    LayoutSpec{"general", 44, records::kGeneral},
    LayoutSpec{"extArHop", 12, records::kExtArHop},
    LayoutSpec{"tunnel", 60, records::kTunnel},
    LayoutSpec{"arHop", 28, records::kArHop},
    LayoutSpec{"cHop", 36, records::kCHop},
    LayoutSpec{"resource", 24, records::kResource},
};

} // namespace rsvpsimd

#endif
