// The values of state blocks and the entries of the lists that hang from them: path, reservation and previous
// hop state, CR-LSP records, and their point-to-multipoint forms.
#include "wire_objects.h"

namespace rsvpsimd {

namespace {

constexpr std::array kHopEntry{U8("kind", 0),
                               Raw("reserved0", 1, 3),
                               WhenKind(Ip("address", 4), 1),
                               UnlessKind(Raw("address", 4, 4), 1, 1),
                               WhenKind(U32("label", 8), 3),
                               UnlessKind(Raw("label", 8, 4), 3, 3),
                               Raw("reserved1", 12, 24)};
constexpr std::array kRouteEntry{Raw("reserved0", 0, 4), U32("value", 4), Raw("reserved1", 8, 4)};
constexpr std::array kFilterSpec{Object("filter", 0, kSender), U32("label", 8)};
constexpr std::array kFlowDescriptor{Object("flowSpec", 0, kFlowSpec)};

constexpr std::array kPsb{Object("session", 0, kSession),
                          Object("hop", 12, kHop),
                          Object("ifRef", 20, kIfRef),
                          Object("sender", 28, kSender),
                          Object("tspec", 36, kSenderTspec),
                          Object("adspec", 68, kAdspec),
                          Object("labelRequest", 228, kLabelRequest),
                          Raw("leadBytes", 244, 2),
                          Object("sessionAttr", 248, kSessionAttr),
                          U32("wordsA", 268, 3),
                          U32("wordsB", 280, 3),
                          Object("secondSender", 292, kSender),
                          U32("wordsC", 300, 5),
                          U16("halfC", 320),
                          Objects("slots", 324, kSlot, 24, 2),
                          U32("wordsD", 372, 13),
                          U16("halvesD", 424, 3),
                          Raw("flagBytes", 430, 8)};
constexpr std::array kRsb{Object("session", 0, kSession),
                          Object("hop", 12, kHop),
                          Object("filter", 20, kSender),
                          Object("ifRef", 28, kIfRef),
                          Object("flowSpec", 36, kFlowSpec),
                          U32("style", 80),
                          U32("wordsA", 84, 3),
                          U32("wordsB", 96, 5),
                          U16("halfB", 116),
                          Raw("flagBytes", 118, 3)};
constexpr std::array kPhsb{
    Object("session", 0, kSession), Object("hop", 12, kHop), Object("ifRef", 20, kIfRef), U32("style", 28),
    U32("wordsA", 32, 3),           U32("wordsB", 44, 2),    U16("halvesB", 52, 2)};
constexpr std::array kCrlsp{Object("key", 0, kCrlspKey),
                            Object("path", 20, kCrlspPath),
                            Object("traffic", 44, kCrlspTraffic),
                            U32("tailWord0", 72),
                            U32("tailWord1", 76),
                            U16("tailShort", 80),
                            U32("tailWord2", 84),
                            U32("tailWord3", 88),
                            U32("tailWord4", 92),
                            U32("tailWord5", 96),
                            U32("tailWord6", 100),
                            U32("tailWord7", 104),
                            U32("tailWord8", 108),
                            U32("tailWord9", 112),
                            U32("tailWord10", 116),
                            U8("tailByte0", 120),
                            U8("tailByte1", 121),
                            U8("tailByte2", 122),
                            U8("tailByte3", 123),
                            U8("tailByte4", 124)};

constexpr std::array kP2mpPathState{Object("session", 0, kP2mpSession),
                                    Object("hop", 12, kHop),
                                    Object("ifRef", 20, kIfRef),
                                    Object("tspec", 28, kSenderTspec),
                                    Object("adspec", 60, kAdspec),
                                    Object("sessionAttr", 220, kSessionAttr),
                                    Raw("leadBytes", 240, 2),
                                    U32("stateWord0", 244),
                                    U32("stateWord1", 248),
                                    U32("stateWord2", 252),
                                    U32("stateWord3", 256),
                                    U32("stateWord4", 260),
                                    U16("stateHalf0", 264),
                                    U16("stateHalf1", 266)};
constexpr std::array kP2mpResvState{U32("resvWord0", 0),
                                    Object("filter", 4, kP2mpSender),
                                    Object("flowSpec", 20, kFlowSpec),
                                    U32("resvWord1", 64),
                                    U32("resvWord2", 68),
                                    U8("resvByte0", 72),
                                    U16("resvHalf", 74),
                                    U32("resvWord3", 80),
                                    U32("resvWord4", 84),
                                    U32("resvWord5", 92),
                                    U32("resvWord6", 96),
                                    U32("resvWord7", 100),
                                    U8("resvByte1", 104)};
constexpr std::array kP2mpSubGroup{Object("sender", 0, kP2mpSender), U8("subGroupByte", 16), U16("subGroupHalf0", 18),
                                   U16("subGroupHalf1", 20)};
constexpr std::array kP2mpSecondSender{Object("secondSender", 0, kP2mpSender), U32("wordsC", 16, 5),
                                       U16("halfC", 36)};
constexpr std::array kP2mpSlots{Objects("slots", 0, kP2mpSlot, 32, 2)};
constexpr std::array kP2mpCrlsp{Object("key", 0, kCrlspKey), Object("traffic", 20, kCrlspTraffic),
                                U32("lspWord0", 48),         U16("lspShort", 52),
                                U32("lspWord1", 56),         U32("lspWord2", 60),
                                U32("lspWord3", 64),         U32("lspWord4", 68),
                                U32("lspWord5", 72),         U32("lspWord6", 76),
                                U8("lspByte0", 80),          U8("lspByte1", 81),
                                U8("lspByte2", 82),          U8("lspByte3", 83)};
constexpr std::array kP2mpSubLsp{
    Object("path", 0, kCrlspPath), U16("subShort", 24), U32("subWord0", 28), U32("subWord1", 32),
    U32("subWord2", 36),           U32("subWord3", 40), U8("subByte", 44)};

// The sizes of the P2MP state values are those of what is read of them: nothing is sent behind the last
// field, so that a reader who goes further is seen.
constexpr std::array kTables{
    TableOfRows{"hopEntry", 36, kHopEntry},
    TableOfRows{"routeEntry", 12, kRouteEntry},
    TableOfRows{"filterSpec", 12, kFilterSpec},
    TableOfRows{"flowDescriptor", 44, kFlowDescriptor},
    TableOfRows{"psb", 440, kPsb},
    TableOfRows{"rsb", 124, kRsb},
    TableOfRows{"phsb", 56, kPhsb},
    TableOfRows{"crlsp", 128, kCrlsp},
    TableOfRows{"p2mpPathState", 268, kP2mpPathState},
    TableOfRows{"p2mpResvState", 105, kP2mpResvState},
    TableOfRows{"p2mpSubGroup", 22, kP2mpSubGroup},
    TableOfRows{"p2mpSecondSender", 38, kP2mpSecondSender},
    TableOfRows{"p2mpSlots", 61, kP2mpSlots},
    TableOfRows{"p2mpCrlsp", 84, kP2mpCrlsp},
    TableOfRows{"p2mpSubLsp", 48, kP2mpSubLsp},
};

} // namespace

std::span<const TableOfRows> BlockTables()
{
    return kTables;
}

std::span<const ListLayout> WireLists()
{
    static const std::array lists{
        ListLayout{"hopList", 2, "hopEntry"},
        ListLayout{"routeList16", 2, "routeEntry"},
        ListLayout{"routeList32", 4, "routeEntry"},
    };
    return lists;
}

} // namespace rsvpsimd
