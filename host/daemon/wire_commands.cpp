// The values that commands carry. Mind the four-byte settings: some fill all four bytes, others have their
// number of one byte or two at the front and zeros behind it.
#include "wire_objects.h"

namespace rsvpsimd {

namespace {

constexpr std::array kPeerKey{Ip("peer", 0)};
constexpr std::array kAuthKeySetting{Secret("authKey", 0, 68)};
constexpr std::array kLifeTime{U32("lifeTime", 0)};
constexpr std::array kWindowSize{U8("windowSize", 0)};
constexpr std::array kInterval{U16("interval", 0)};
constexpr std::array kHelloInterval{U8("interval", 0)};
constexpr std::array kHelloLost{U8("lost", 0)};
constexpr std::array kMultiplier{U8("multiplier", 0)};
constexpr std::array kIncrement{U8("increment", 0)};
constexpr std::array kDscp{U32("dscp", 0)};
constexpr std::array kReduction{U16("pair", 0, 2)};
constexpr std::array kDebugSwitch{Object("session", 0, kSession), U32("debugType", 12)};
constexpr std::array kAuthEntryKey{U32("authId1", 0), U32("authId2", 4), U16("authId3", 8), U16("authId4", 10)};
constexpr std::array kStatisticsKey{U32("statsId1", 0), U16("statsId2", 4)};

constexpr std::array kTables{
    TableOfRows{"none", 0, {}},
    TableOfRows{"peerKey", 4, kPeerKey},
    TableOfRows{"authKeySetting", 68, kAuthKeySetting},
    TableOfRows{"lifeTime", 4, kLifeTime},
    TableOfRows{"windowSize", 4, kWindowSize},
    TableOfRows{"interval", 4, kInterval},
    TableOfRows{"helloInterval", 4, kHelloInterval},
    TableOfRows{"helloLost", 4, kHelloLost},
    TableOfRows{"keepMultiplier", 4, kMultiplier},
    TableOfRows{"increment", 4, kIncrement},
    TableOfRows{"dscp", 4, kDscp},
    TableOfRows{"reduction", 4, kReduction},
    TableOfRows{"debugSwitch", 16, kDebugSwitch},
    TableOfRows{"authEntryKey", 12, kAuthEntryKey},
    TableOfRows{"statisticsKey", 8, kStatisticsKey},
};

} // namespace

std::span<const TableOfRows> CommandTables()
{
    return kTables;
}

} // namespace rsvpsimd
