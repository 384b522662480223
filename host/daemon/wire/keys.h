// The keys that reads send: which row is meant, or which row the caller stands on. A key is a copy of fields
// of the row, but for the point-to-multipoint reads, whose keys are of the caller's own making.
#ifndef HOST_DAEMON_WIRE_KEYS_H
#define HOST_DAEMON_WIRE_KEYS_H

#include "host/daemon/wire/objects.h"

namespace rsvpsimd {

namespace keys {

inline constexpr std::array kIfKey{U32("ifIndex", 0)};
inline constexpr std::array kNbrKey{U32("nbrKey0", 0), U32("nbrKey1", 4)};
inline constexpr std::array kAuthWalkKey{U32("authEntryKey0", 0), U32("authEntryKey1", 4)};
inline constexpr std::array kFacilityKey{U32("facilityKey0", 0),     U32("facilityKey1", 4),
                                         U32("facilityKey2", 8),     U32("facilityKey3", 12),
                                         Raw("facilityKey4", 16, 4), Raw("facilityKey5", 20, 4)};
inline constexpr std::array kGeneralKey{U32("frrKey0", 0), U32("frrKey1", 4), U32("frrKey2", 8)};
inline constexpr std::array kHopKey{U32("hopListIndex", 0), U32("hopIndex", 4)};
inline constexpr std::array kTunnelKey{U32("tunnelIndex", 0), U32("tunnelInstance", 4), U32("ingressLsrId", 8),
                                       U32("egressLsrId", 12)};
inline constexpr std::array kResourceKey{U32("resourceIndex", 0)};
inline constexpr std::array kPsbKey{Object("session", 0, kSession), Object("sender", 12, kSender)};
inline constexpr std::array kRsbKey{Object("session", 0, kSession), Object("hop", 12, kHop),
                                    Object("filter", 20, kSender)};
inline constexpr std::array kPhsbKey{Object("session", 0, kSession), Object("hop", 12, kHop)};
inline constexpr std::array kP2mpStateKey{
    U32("stateKeyWord0", 0),  U32("stateKeyWord1", 4),  U32("stateKeyWord2", 8),  Raw("stateKeyBytes0", 12, 4),
    U16("stateKeyHalf0", 16), U16("stateKeyHalf1", 18), U32("stateKeyWord3", 20), U32("stateKeyWord4", 24),
    U16("stateKeyHalf2", 28), U16("stateKeyHalf3", 30), U16("stateKeyHalf4", 32), Raw("stateKeyBytes1", 34, 2),
    U32("stateKeyWord5", 36), U32("stateKeyWord6", 40), U32("stateKeyWord7", 44), U32("stateKeyWord8", 48),
    U32("stateKeyWord9", 52)};
inline constexpr std::array kP2mpCrlspKey{U32("keyWord0", 0),   U32("keyWord1", 4),   U32("keyWord2", 8),
                                          U16("keyShort0", 12), U16("keyShort1", 14), U16("keyShort2", 16),
                                          U16("keyShort3", 18), U32("keyWord3", 20),  U32("keyWord4", 24),
                                          U32("keyWord5", 28),  U32("keyWord6", 32)};

} // namespace keys

inline constexpr std::array kKeyLayouts{
    LayoutSpec{"ifKey", 4, keys::kIfKey},
    LayoutSpec{"nbrKey", 8, keys::kNbrKey},
    LayoutSpec{"authWalkKey", 8, keys::kAuthWalkKey},
    LayoutSpec{"facilityKey", 24, keys::kFacilityKey},
    LayoutSpec{"generalKey", 12, keys::kGeneralKey},
    LayoutSpec{"hopKey", 12, keys::kHopKey},
    LayoutSpec{"tunnelKey", 16, keys::kTunnelKey},
    LayoutSpec{"resourceKey", 4, keys::kResourceKey},
    LayoutSpec{"psbKey", 20, keys::kPsbKey},
    LayoutSpec{"rsbKey", 28, keys::kRsbKey},
    LayoutSpec{"phsbKey", 20, keys::kPhsbKey},
    LayoutSpec{"crlspKey", 20, kCrlspKey},
    LayoutSpec{"p2mpStateKey", 56, keys::kP2mpStateKey},
    LayoutSpec{"p2mpCrlspKey", 36, keys::kP2mpCrlspKey},
};

} // namespace rsvpsimd

#endif
