// The values of state blocks and the entries of the lists that hang from them: path, reservation and previous
// hop state, CR-LSP records, and their point-to-multipoint forms.
#ifndef HOST_DAEMON_WIRE_BLOCKS_H
#define HOST_DAEMON_WIRE_BLOCKS_H

#include "host/daemon/wire/objects.h"

namespace rsvpsimd {

namespace blocks {

inline constexpr std::array kHopEntry{U8("kind", 0),
                                      Raw("reserved0", 1, 3),
                                      WhenKind(Ip("address", 4), 1),
                                      UnlessKind(Raw("address", 4, 4), 1, 1),
                                      WhenKind(U32("label", 8), 3),
                                      UnlessKind(Raw("label", 8, 4), 3, 3),
                                      Raw("reserved1", 12, 24)};
inline constexpr std::array kRouteEntry{Raw("reserved0", 0, 4), U32("value", 4), Raw("reserved1", 8, 4)};
inline constexpr std::array kFilterSpec{Object("filter", 0, kSender), U32("label", 8)};
inline constexpr std::array kFlowDescriptor{Object("flowSpec", 0, kFlowSpec)};

inline constexpr std::array kPsb{Object("session", 0, kSession),
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
inline constexpr std::array kRsb{Object("session", 0, kSession),
                                 Object("hop", 12, kHop),
                                 Object("filter", 20, kSender),
                                 Object("ifRef", 28, kIfRef),
                                 Object("flowSpec", 36, kFlowSpec),
                                 U32("style", 80),
                                 U32("wordsA", 84, 3),
                                 U32("wordsB", 96, 5),
                                 U16("halfB", 116),
                                 Raw("flagBytes", 118, 3)};
inline constexpr std::array kPhsb{
    Object("session", 0, kSession), Object("hop", 12, kHop), Object("ifRef", 20, kIfRef), U32("style", 28),
    U32("wordsA", 32, 3),           U32("wordsB", 44, 2),    U16("halvesB", 52, 2)};
inline constexpr std::array kCrlsp{Object("key", 0, kCrlspKey),
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

inline constexpr std::array kP2mpPathState{Object("session", 0, kP2mpSession),
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
inline constexpr std::array kP2mpResvState{U32("resvWord0", 0),
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
inline constexpr std::array kP2mpSubGroup{Object("sender", 0, kP2mpSender), U8("subGroupByte", 16),
                                          U16("subGroupHalf0", 18), U16("subGroupHalf1", 20)};
inline constexpr std::array kP2mpSecondSender{Object("secondSender", 0, kP2mpSender), U32("wordsC", 16, 5),
                                              U16("halfC", 36)};
inline constexpr std::array kP2mpSlots{Objects("slots", 0, kP2mpSlot, 32, 2)};
inline constexpr std::array kP2mpCrlsp{Object("key", 0, kCrlspKey), Object("traffic", 20, kCrlspTraffic),
                                       U32("lspWord0", 48),         U16("lspShort", 52),
                                       U32("lspWord1", 56),         U32("lspWord2", 60),
                                       U32("lspWord3", 64),         U32("lspWord4", 68),
                                       U32("lspWord5", 72),         U32("lspWord6", 76),
                                       U8("lspByte0", 80),          U8("lspByte1", 81),
                                       U8("lspByte2", 82),          U8("lspByte3", 83)};
inline constexpr std::array kP2mpSubLsp{
    Object("path", 0, kCrlspPath), U16("subShort", 24), U32("subWord0", 28), U32("subWord1", 32),
    U32("subWord2", 36),           U32("subWord3", 40), U8("subByte", 44)};

} // namespace blocks

// The sizes of the P2MP state values are those of what is read of them: nothing is sent behind the last
// field, so that a reader who goes further is seen.
inline constexpr std::array kBlockLayouts{
    LayoutSpec{"hopEntry", 36, blocks::kHopEntry},
    LayoutSpec{"routeEntry", 12, blocks::kRouteEntry},
    LayoutSpec{"filterSpec", 12, blocks::kFilterSpec},
    LayoutSpec{"flowDescriptor", 44, blocks::kFlowDescriptor},
    LayoutSpec{"psb", 440, blocks::kPsb},
    LayoutSpec{"rsb", 124, blocks::kRsb},
    LayoutSpec{"phsb", 56, blocks::kPhsb},
    LayoutSpec{"crlsp", 128, blocks::kCrlsp},
    LayoutSpec{"p2mpPathState", 268, blocks::kP2mpPathState},
    LayoutSpec{"p2mpResvState", 105, blocks::kP2mpResvState},
    LayoutSpec{"p2mpSubGroup", 22, blocks::kP2mpSubGroup},
    LayoutSpec{"p2mpSecondSender", 38, blocks::kP2mpSecondSender},
    LayoutSpec{"p2mpSlots", 61, blocks::kP2mpSlots},
    LayoutSpec{"p2mpCrlsp", 84, blocks::kP2mpCrlsp},
    LayoutSpec{"p2mpSubLsp", 48, blocks::kP2mpSubLsp},
};

} // namespace rsvpsimd

#endif
