// The list of tables. Reply items have the numbers by which readers tell them apart; where a reader ignores the
// number, the reply uses that of the request. A misspelt name does not compile.
#ifndef HOST_DAEMON_DEVICE_ROW_KINDS_H
#define HOST_DAEMON_DEVICE_ROW_KINDS_H

#include "host/daemon/device/row_kind.h"

namespace rsvpsimd {

namespace rows {

inline constexpr std::array kRro{CountedList("rro", 7, "hopList")};
inline constexpr std::array kFilterSpecs{EachList("fsList", 13, "filterSpec")};
inline constexpr std::array kSubLspHops{NeverEmpty(CountedList("hopList", 33, "hopList"))};

inline constexpr std::array kPsbLists{
    CountedList("routeList3", 3, "routeList16"), CountedList("routeList4", 4, "routeList16"),
    CountedList("routeList5", 5, "routeList16"), CountedList("routeList6", 6, "routeList32"),
    CountedList("hopList", 7, "hopList")};
inline constexpr std::array kRsbLists{EachList("fsList", 13, "filterSpec", kRro)};
inline constexpr std::array kPhsbLists{EachList("fdList", 14, "flowDescriptor", kFilterSpecs)};
inline constexpr std::array kCrlspLists{CountedList("hopList", 7, "hopList"), TextItem("name", 17)};
inline constexpr std::array kP2mpPsbLists{
    CountedList("routeList4", 4, "routeList16"), CountedList("routeList5", 5, "routeList16"),
    CountedList("routeList6", 6, "routeList32"), CountedList("hopList", 7, "hopList")};
inline constexpr std::array kP2mpRsbLists{CountedList("hopList", 7, "hopList")};
inline constexpr std::array kP2mpCrlspLists{EachList("subLsps", 32, "p2mpSubLsp", kSubLspHops), TextItem("name", 34)};

inline constexpr std::array kAuthParts{Part{0, "auth"}};
inline constexpr std::array kCrlspParts{Part{1, "crlsp"}};
inline constexpr std::array kNbrParts{Part{3, "nbr"}};
inline constexpr std::array kPhsbParts{Part{11, "phsb"}};
inline constexpr std::array kRsbParts{Part{12, "rsb"}};
inline constexpr std::array kPsbParts{Part{15, "psb"}};
inline constexpr std::array kIfInfoParts{Part{7, "ifInfo"}};
inline constexpr std::array kP2mpCrlspParts{Part{31, "p2mpCrlsp"}};
inline constexpr std::array kP2mpRsbParts{Part{35, "p2mpPathState", "pathState"},
                                          Part{36, "p2mpResvState", "resvState"},
                                          Part{37, "p2mpSubGroup", "subGroup"}};
inline constexpr std::array kP2mpPsbParts{
    Part{35, "p2mpPathState", "pathState"}, Part{36, "p2mpResvState", "resvState"},
    Part{37, "p2mpSubGroup", "subGroup"}, Part{38, "p2mpSecondSender"}, Part{39, "p2mpSlots"}};
inline constexpr std::array kTunnelParts{Part{101, "tunnel"}};
inline constexpr std::array kResourceParts{Part{103, "resource"}};
inline constexpr std::array kArHopParts{Part{104, "arHop"}};
inline constexpr std::array kCHopParts{Part{105, "cHop"}};
inline constexpr std::array kGeneralParts{Part{106, "general"}};
inline constexpr std::array kExtArHopParts{Part{107, "extArHop"}};
inline constexpr std::array kFacilityParts{Part{108, "facility"}};
inline constexpr std::array kIfConfigParts{Part{112, "ifConfig"}};

inline constexpr std::array<std::string_view, 2> kAuthKey{"authEntryWord0", "authEntryWord1"};
inline constexpr std::array<std::string_view, 1> kCrlspKey{"key"};
inline constexpr std::array<std::string_view, 2> kNbrKey{"nbrWord0", "nbrWord1"};
inline constexpr std::array<std::string_view, 2> kPhsbKey{"session", "hop"};
inline constexpr std::array<std::string_view, 3> kRsbKey{"session", "hop", "filter"};
inline constexpr std::array<std::string_view, 1> kIfInfoKey{"ifWord1"};
inline constexpr std::array<std::string_view, 2> kPsbKey{"session", "sender"};
inline constexpr std::array<std::string_view, 4> kTunnelKey{"tunnelWord0", "tunnelWord1", "tunnelWord2",
                                                            "tunnelWord3"};
inline constexpr std::array<std::string_view, 1> kResourceKey{"resourceIndex"};
inline constexpr std::array<std::string_view, 2> kHopKey{"hopListIndex", "hopIndex"};
inline constexpr std::array<std::string_view, 3> kGeneralKey{"frrWord0", "frrWord1", "frrWord2"};
inline constexpr std::array<std::string_view, 2> kExtArHopKey{"extArHopWord0", "extArHopWord1"};
inline constexpr std::array<std::string_view, 6> kFacilityKey{"facilityWord0", "facilityWord1", "facilityWord2",
                                                              "facilityWord3", "facilityWord4", "facilityWord5"};
inline constexpr std::array<std::string_view, 1> kIfConfigKey{"ifIndex"};

} // namespace rows

inline constexpr std::array kRowKinds{
    RowKind{"auth", 0, "authWalkKey", rows::kAuthKey, "authEntryWord0", FirstKey::Empty, rows::kAuthParts},
    RowKind{"crlsp", 1, "crlspKey", rows::kCrlspKey, "key.keyWord0", FirstKey::Empty, rows::kCrlspParts,
            rows::kCrlspLists},
    RowKind{"nbr", 3, "nbrKey", rows::kNbrKey, "nbrWord0", FirstKey::Empty, rows::kNbrParts},
    RowKind{"phsb", 4, "phsbKey", rows::kPhsbKey, "session.tunnelEndpoint", FirstKey::Empty, rows::kPhsbParts,
            rows::kPhsbLists},
    RowKind{"rsb", 5, "rsbKey", rows::kRsbKey, "session.tunnelEndpoint", FirstKey::Empty, rows::kRsbParts,
            rows::kRsbLists},
    RowKind{"interface", 7, "ifKey", rows::kIfInfoKey, "ifWord1", FirstKey::Empty, rows::kIfInfoParts},
    RowKind{"psb", 8, "psbKey", rows::kPsbKey, "session.tunnelEndpoint", FirstKey::Empty, rows::kPsbParts,
            rows::kPsbLists},
    RowKind{"p2mpCrlsp",
            9,
            "p2mpCrlspKey",
            {},
            "key.keyWord0",
            FirstKey::Given,
            rows::kP2mpCrlspParts,
            rows::kP2mpCrlspLists},
    RowKind{"p2mpRsb",
            10,
            "p2mpStateKey",
            {},
            "session.p2mpId",
            FirstKey::Given,
            rows::kP2mpRsbParts,
            rows::kP2mpRsbLists},
    RowKind{"p2mpPsb",
            11,
            "p2mpStateKey",
            {},
            "session.p2mpId",
            FirstKey::Given,
            rows::kP2mpPsbParts,
            rows::kP2mpPsbLists},
    RowKind{
        "tunnel", 101, "tunnelKey", rows::kTunnelKey, "tunnelWord0", FirstKey::Zero, rows::kTunnelParts, {}, true},
    RowKind{"resource", 103, "resourceKey", rows::kResourceKey, "resourceIndex", FirstKey::Empty,
            rows::kResourceParts},
    RowKind{"arhop", 104, "hopKey", rows::kHopKey, "hopListIndex", FirstKey::Zero, rows::kArHopParts},
    RowKind{"chop", 105, "hopKey", rows::kHopKey, "hopListIndex", FirstKey::Zero, rows::kCHopParts},
    RowKind{"general", 106, "generalKey", rows::kGeneralKey, "frrWord0", FirstKey::Zero, rows::kGeneralParts},
    RowKind{"exthop", 107, "hopKey", rows::kExtArHopKey, "extArHopWord0", FirstKey::Zero, rows::kExtArHopParts},
    RowKind{"facility", 108, "facilityKey", rows::kFacilityKey, "facilityWord0", FirstKey::Empty,
            rows::kFacilityParts},
    RowKind{"ifconfig", 112, "ifKey", rows::kIfConfigKey, "ifIndex", FirstKey::Zero, rows::kIfConfigParts},
};

// True if the row has all fields of its key, they fit into the key, and the numbered field comes first.
constexpr bool KeyIsInRow(const RowKind &kind)
{
    const auto numbered = FindExtent(kind.RowLayout().Spec().fields, kind.numbered);
    if (!numbered || numbered->size != 4)
        return false;
    size_t size = 0;
    for (const std::string_view name : kind.keyFields) {
        const auto field = FindExtent(kind.RowLayout().Spec().fields, name);
        if (!field || (size == 0 && field->offset != numbered->offset))
            return false;
        size += field->size;
    }
    return size <= kind.keyLayout.Spec().size;
}

static_assert(std::ranges::all_of(kRowKinds, KeyIsInRow), "a row lacks a field of its key");
static_assert(std::ranges::all_of(kRowKinds,
                                  [](const RowKind &kind) {
                                      return std::ranges::count(kRowKinds, kind.name, &RowKind::name) == 1 &&
                                             std::ranges::count(kRowKinds, kind.requestItem, &RowKind::requestItem) ==
                                                 1;
                                  }),
              "two kinds of rows have the same name or request item");

// A kind named in the program's own code or tables; the compiler looks the name up.
class RowKindRef {
public:
    consteval RowKindRef(const char *name) : kind_(&Named(kRowKinds, name)) {}
    explicit constexpr RowKindRef(const RowKind &kind) : kind_(&kind) {}
    bool operator==(const RowKindRef &) const = default;

    constexpr const RowKind &operator*() const { return *kind_; }
    constexpr const RowKind *operator->() const { return kind_; }

private:
    const RowKind *kind_;
};

std::span<const RowKind> AllRowKinds();
const RowKind *FindRowKind(std::string_view name); // upper and lower case are alike
const RowKind *FindRowKind(uint16_t requestItem);

} // namespace rsvpsimd

#endif
