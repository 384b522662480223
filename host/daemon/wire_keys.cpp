// The keys that reads send: which row is meant, or which row the caller stands on. A key is a copy of fields
// of the row, but for the point-to-multipoint reads, whose keys are of the caller's own making.
#include "wire_objects.h"

namespace rsvpsimd {

namespace {

constexpr std::array kIfKey{U32("ifIndex", 0)};
constexpr std::array kNbrKey{U32("nbrKey0", 0), U32("nbrKey1", 4)};
constexpr std::array kAuthWalkKey{U32("authEntryKey0", 0), U32("authEntryKey1", 4)};
constexpr std::array kFacilityKey{U32("facilityKey0", 0),  U32("facilityKey1", 4),     U32("facilityKey2", 8),
                                  U32("facilityKey3", 12), Raw("facilityKey4", 16, 4), Raw("facilityKey5", 20, 4)};
constexpr std::array kGeneralKey{U32("frrKey0", 0), U32("frrKey1", 4), U32("frrKey2", 8)};
constexpr std::array kHopKey{U32("hopListIndex", 0), U32("hopIndex", 4)};
constexpr std::array kTunnelKey{U32("tunnelIndex", 0), U32("tunnelInstance", 4), U32("ingressLsrId", 8),
                                U32("egressLsrId", 12)};
constexpr std::array kResourceKey{U32("resourceIndex", 0)};
constexpr std::array kPsbKey{Object("session", 0, kSession), Object("sender", 12, kSender)};
constexpr std::array kRsbKey{Object("session", 0, kSession), Object("hop", 12, kHop), Object("filter", 20, kSender)};
constexpr std::array kPhsbKey{Object("session", 0, kSession), Object("hop", 12, kHop)};
constexpr std::array kP2mpStateKey{
    U32("stateKeyWord0", 0),  U32("stateKeyWord1", 4),  U32("stateKeyWord2", 8),  Raw("stateKeyBytes0", 12, 4),
    U16("stateKeyHalf0", 16), U16("stateKeyHalf1", 18), U32("stateKeyWord3", 20), U32("stateKeyWord4", 24),
    U16("stateKeyHalf2", 28), U16("stateKeyHalf3", 30), U16("stateKeyHalf4", 32), Raw("stateKeyBytes1", 34, 2),
    U32("stateKeyWord5", 36), U32("stateKeyWord6", 40), U32("stateKeyWord7", 44), U32("stateKeyWord8", 48),
    U32("stateKeyWord9", 52)};
constexpr std::array kP2mpCrlspKey{U32("keyWord0", 0),   U32("keyWord1", 4),   U32("keyWord2", 8),
                                   U16("keyShort0", 12), U16("keyShort1", 14), U16("keyShort2", 16),
                                   U16("keyShort3", 18), U32("keyWord3", 20),  U32("keyWord4", 24),
                                   U32("keyWord5", 28),  U32("keyWord6", 32)};

constexpr std::array kTables{
    TableOfRows{"ifKey", 4, kIfKey},
    TableOfRows{"nbrKey", 8, kNbrKey},
    TableOfRows{"authWalkKey", 8, kAuthWalkKey},
    TableOfRows{"facilityKey", 24, kFacilityKey},
    TableOfRows{"generalKey", 12, kGeneralKey},
    TableOfRows{"hopKey", 12, kHopKey},
    TableOfRows{"tunnelKey", 16, kTunnelKey},
    TableOfRows{"resourceKey", 4, kResourceKey},
    TableOfRows{"psbKey", 20, kPsbKey},
    TableOfRows{"rsbKey", 28, kRsbKey},
    TableOfRows{"phsbKey", 20, kPhsbKey},
    TableOfRows{"crlspKey", 20, kCrlspKey},
    TableOfRows{"p2mpStateKey", 56, kP2mpStateKey},
    TableOfRows{"p2mpCrlspKey", 36, kP2mpCrlspKey},
};

} // namespace

std::span<const TableOfRows> KeyTables()
{
    return kTables;
}

} // namespace rsvpsimd
