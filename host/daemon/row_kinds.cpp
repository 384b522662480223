// The list of tables. Reply items carry the numbers by which readers tell them apart; where a reader does not
// look at the number, the reply's item has that of the request.
#include "row_kinds.h"

#include <algorithm>
#include <array>
#include <strings.h>

namespace rsvpsimd {

namespace {

constexpr std::array kRro{ListKind{"rro", 7, Shape::Counted, "hopList"}};
constexpr std::array kFilterSpecs{ListKind{"fsList", 13, Shape::Each, "filterSpec"}};
constexpr std::array kSubLspHops{ListKind{"hopList", 33, Shape::Counted, "hopList"}};

constexpr std::array kPsbLists{ListKind{"routeList3", 3, Shape::Counted, "routeList16"},
                               ListKind{"routeList4", 4, Shape::Counted, "routeList16"},
                               ListKind{"routeList5", 5, Shape::Counted, "routeList16"},
                               ListKind{"routeList6", 6, Shape::Counted, "routeList32"},
                               ListKind{"hopList", 7, Shape::Counted, "hopList"}};
constexpr std::array kRsbLists{ListKind{"fsList", 13, Shape::Each, "filterSpec", kRro}};
constexpr std::array kPhsbLists{ListKind{"fdList", 14, Shape::Each, "flowDescriptor", kFilterSpecs}};
constexpr std::array kCrlspLists{ListKind{"hopList", 7, Shape::Counted, "hopList"},
                                 ListKind{"name", 17, Shape::Text}};
constexpr std::array kP2mpPsbLists{ListKind{"routeList4", 4, Shape::Counted, "routeList16"},
                                   ListKind{"routeList5", 5, Shape::Counted, "routeList16"},
                                   ListKind{"routeList6", 6, Shape::Counted, "routeList32"},
                                   ListKind{"hopList", 7, Shape::Counted, "hopList"}};
constexpr std::array kP2mpRsbLists{ListKind{"hopList", 7, Shape::Counted, "hopList"}};
constexpr std::array kP2mpCrlspLists{ListKind{"subLsps", 32, Shape::Each, "p2mpSubLsp", kSubLspHops},
                                     ListKind{"name", 34, Shape::Text}};

constexpr std::array kAuthParts{Part{0, "auth"}};
constexpr std::array kCrlspParts{Part{1, "crlsp"}};
constexpr std::array kNbrParts{Part{3, "nbr"}};
constexpr std::array kPhsbParts{Part{11, "phsb"}};
constexpr std::array kRsbParts{Part{12, "rsb"}};
constexpr std::array kPsbParts{Part{15, "psb"}};
constexpr std::array kIfInfoParts{Part{7, "ifInfo"}};
constexpr std::array kP2mpCrlspParts{Part{31, "p2mpCrlsp"}};
constexpr std::array kP2mpRsbParts{Part{35, "p2mpPathState", "pathState"}, Part{36, "p2mpResvState", "resvState"},
                                   Part{37, "p2mpSubGroup", "subGroup"}};
constexpr std::array kP2mpPsbParts{Part{35, "p2mpPathState", "pathState"}, Part{36, "p2mpResvState", "resvState"},
                                   Part{37, "p2mpSubGroup", "subGroup"}, Part{38, "p2mpSecondSender"},
                                   Part{39, "p2mpSlots"}};
constexpr std::array kTunnelParts{Part{101, "tunnel"}};
constexpr std::array kResourceParts{Part{103, "resource"}};
constexpr std::array kArHopParts{Part{104, "arHop"}};
constexpr std::array kCHopParts{Part{105, "cHop"}};
constexpr std::array kGeneralParts{Part{106, "general"}};
constexpr std::array kExtArHopParts{Part{107, "extArHop"}};
constexpr std::array kFacilityParts{Part{108, "facility"}};
constexpr std::array kIfConfigParts{Part{112, "ifConfig"}};

constexpr std::array<std::string_view, 2> kAuthKey{"authEntryWord0", "authEntryWord1"};
constexpr std::array<std::string_view, 1> kCrlspKey{"key"};
constexpr std::array<std::string_view, 2> kNbrKey{"nbrWord0", "nbrWord1"};
constexpr std::array<std::string_view, 2> kPhsbKey{"session", "hop"};
constexpr std::array<std::string_view, 3> kRsbKey{"session", "hop", "filter"};
constexpr std::array<std::string_view, 1> kIfInfoKey{"ifWord1"};
constexpr std::array<std::string_view, 2> kPsbKey{"session", "sender"};
constexpr std::array<std::string_view, 4> kTunnelKey{"tunnelWord0", "tunnelWord1", "tunnelWord2", "tunnelWord3"};
constexpr std::array<std::string_view, 1> kResourceKey{"resourceIndex"};
constexpr std::array<std::string_view, 2> kHopKey{"hopListIndex", "hopIndex"};
constexpr std::array<std::string_view, 3> kGeneralKey{"frrWord0", "frrWord1", "frrWord2"};
constexpr std::array<std::string_view, 2> kExtArHopKey{"extArHopWord0", "extArHopWord1"};
constexpr std::array<std::string_view, 6> kFacilityKey{"facilityWord0", "facilityWord1", "facilityWord2",
                                                       "facilityWord3", "facilityWord4", "facilityWord5"};
constexpr std::array<std::string_view, 1> kIfConfigKey{"ifIndex"};

constexpr bool kEmpty = false;
constexpr bool kZeros = true;

constexpr std::array kKinds{
    RowKind{"auth", 0, "authWalkKey", kAuthKey, "authEntryWord0", kEmpty, false, kAuthParts},
    RowKind{"crlsp", 1, "crlspKey", kCrlspKey, "key.keyWord0", kEmpty, false, kCrlspParts, kCrlspLists},
    RowKind{"nbr", 3, "nbrKey", kNbrKey, "nbrWord0", kEmpty, false, kNbrParts},
    RowKind{"phsb", 4, "phsbKey", kPhsbKey, "session.tunnelEndpoint", kEmpty, false, kPhsbParts, kPhsbLists},
    RowKind{"rsb", 5, "rsbKey", kRsbKey, "session.tunnelEndpoint", kEmpty, false, kRsbParts, kRsbLists},
    RowKind{"interface", 7, "ifKey", kIfInfoKey, "ifWord1", kEmpty, false, kIfInfoParts},
    RowKind{"psb", 8, "psbKey", kPsbKey, "session.tunnelEndpoint", kEmpty, false, kPsbParts, kPsbLists},
    RowKind{"p2mpCrlsp", 9, "p2mpCrlspKey", {}, "key.keyWord0", kZeros, false, kP2mpCrlspParts, kP2mpCrlspLists},
    RowKind{"p2mpRsb", 10, "p2mpStateKey", {}, "session.p2mpId", kZeros, false, kP2mpRsbParts, kP2mpRsbLists},
    RowKind{"p2mpPsb", 11, "p2mpStateKey", {}, "session.p2mpId", kZeros, false, kP2mpPsbParts, kP2mpPsbLists},
    RowKind{"tunnel", 101, "tunnelKey", kTunnelKey, "tunnelWord0", kZeros, true, kTunnelParts},
    RowKind{"resource", 103, "resourceKey", kResourceKey, "resourceIndex", kEmpty, false, kResourceParts},
    RowKind{"arhop", 104, "hopKey", kHopKey, "hopListIndex", kZeros, false, kArHopParts},
    RowKind{"chop", 105, "hopKey", kHopKey, "hopListIndex", kZeros, false, kCHopParts},
    RowKind{"general", 106, "generalKey", kGeneralKey, "frrWord0", kZeros, false, kGeneralParts},
    RowKind{"exthop", 107, "hopKey", kExtArHopKey, "extArHopWord0", kZeros, false, kExtArHopParts},
    RowKind{"facility", 108, "facilityKey", kFacilityKey, "facilityWord0", kEmpty, false, kFacilityParts},
    RowKind{"ifconfig", 112, "ifKey", kIfConfigKey, "ifIndex", kZeros, false, kIfConfigParts},
};

} // namespace

std::span<const RowKind> AllRowKinds()
{
    return kKinds;
}

const RowKind *FindRowKind(std::string_view name)
{
    const auto *found = std::find_if(kKinds.begin(), kKinds.end(), [&](const RowKind &kind) {
        return kind.name.size() == name.size() && strncasecmp(kind.name.data(), name.data(), name.size()) == 0;
    });
    return found == kKinds.end() ? nullptr : found;
}

const RowKind *FindRowKind(std::uint16_t requestItem)
{
    const auto *found = std::find_if(kKinds.begin(), kKinds.end(),
                                     [&](const RowKind &kind) { return kind.requestItem == requestItem; });
    return found == kKinds.end() ? nullptr : found;
}

} // namespace rsvpsimd
