// The values that commands carry. Mind the four-byte settings: some fill all four bytes, others have their
// number of one byte or two at the front and zeros behind it.
#ifndef HOST_DAEMON_WIRE_COMMAND_VALUES_H
#define HOST_DAEMON_WIRE_COMMAND_VALUES_H

#include "host/daemon/wire/objects.h"

namespace rsvpsimd {

// Debug switches of these two types, compared as whole numbers, apply to one session. The value of any other type
// has 0 in its place.
inline constexpr uint8_t kDebugFirstSession = 16;
inline constexpr uint8_t kDebugSecondSession = 64;

namespace commands {

constexpr FieldSpec OfOneSession(FieldSpec field)
{
    return WhenEither(field, "debugType", kDebugFirstSession, kDebugSecondSession);
}

inline constexpr std::array kPeerKey{Ip("peer", 0)};
inline constexpr std::array kAuthKeySetting{Secret("authKey", 0, 68)};
inline constexpr std::array kLifeTime{U32("lifeTime", 0)};
inline constexpr std::array kWindowSize{U8("windowSize", 0)};
inline constexpr std::array kInterval{U16("interval", 0)};
inline constexpr std::array kHelloInterval{U8("interval", 0)};
inline constexpr std::array kHelloLost{U8("lost", 0)};
inline constexpr std::array kMultiplier{U8("multiplier", 0)};
inline constexpr std::array kIncrement{U8("increment", 0)};
inline constexpr std::array kDscp{U32("dscp", 0)};
inline constexpr std::array kReduction{U16("pair", 0, 2)};
inline constexpr std::array kDebugSwitch{OfOneSession(Ip("session.tunnelEndpoint", 0)),
                                         OfOneSession(U16("session.tunnelId", 6)),
                                         OfOneSession(Ip("session.extendedTunnelId", 8)), U32("debugType", 12)};
inline constexpr std::array kAuthEntryKey{U32("authId1", 0), U32("authId2", 4), U16("authId3", 8),
                                          U16("authId4", 10)};
inline constexpr std::array kStatisticsKey{U32("statsId1", 0), U16("statsId2", 4)};

} // namespace commands

inline constexpr std::array kCommandLayouts{
    LayoutSpec{"none", 0, {}},
    LayoutSpec{"peerKey", 4, commands::kPeerKey},
    LayoutSpec{"authKeySetting", 68, commands::kAuthKeySetting},
    LayoutSpec{"lifeTime", 4, commands::kLifeTime},
    LayoutSpec{"windowSize", 4, commands::kWindowSize},
    LayoutSpec{"interval", 4, commands::kInterval},
    LayoutSpec{"helloInterval", 4, commands::kHelloInterval},
    LayoutSpec{"helloLost", 4, commands::kHelloLost},
    LayoutSpec{"keepMultiplier", 4, commands::kMultiplier},
    LayoutSpec{"increment", 4, commands::kIncrement},
    LayoutSpec{"dscp", 4, commands::kDscp},
    LayoutSpec{"reduction", 4, commands::kReduction},
    LayoutSpec{"debugSwitch", 16, commands::kDebugSwitch},
    LayoutSpec{"authEntryKey", 12, commands::kAuthEntryKey},
    LayoutSpec{"statisticsKey", 8, commands::kStatisticsKey},
};

} // namespace rsvpsimd

#endif
