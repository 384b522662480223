// The tables, one description each. Which fields of a row the daemon takes as the key of the next one stands here
// only where the record itself says it; else a dictionary does.
#include "manager/table/tables.h"

#include "manager/record/describe.h"
#include "manager/table/calls.h"

namespace manager {

// Keys that no record of the library has in the form in which users know them. Reserved bytes of a session and a
// sender travel, so the keys of state blocks keep them: a walk hands a key back as it came.
struct InterfaceIndex {
    uint32_t ifIndex;
};
struct HopIndex {
    uint32_t hopListIndex;
    uint32_t hopIndex;
};
struct ResourceIndex {
    uint32_t resourceIndex;
};
struct FacilityIndex {
    uint32_t facilityWord0;
    uint32_t facilityWord1;
    uint32_t facilityWord2;
    uint32_t facilityWord3;
    uint32_t facilityWord4;
    uint32_t facilityWord5;
};
struct PsbKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Sender sender;
};
struct RsbKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Hop hop;
    RSVP_MOR_Sender filter;
};
struct PhsbKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Hop hop;
};

DESCRIBE(InterfaceIndex, NUMBER(ifIndex))
DESCRIBE(HopIndex, NUMBER(hopListIndex), NUMBER(hopIndex))
DESCRIBE(ResourceIndex, NUMBER(resourceIndex))
DESCRIBE(FacilityIndex, NUMBER(facilityWord0), NUMBER(facilityWord1), NUMBER(facilityWord2), NUMBER(facilityWord3),
         NUMBER(facilityWord4), NUMBER(facilityWord5))
DESCRIBE(PsbKey, RECORD(session), RECORD(sender))
DESCRIBE(RsbKey, RECORD(session), RECORD(hop), RECORD(filter))
DESCRIBE(PhsbKey, RECORD(session), RECORD(hop))

namespace {

void StoreNet(uint8_t (&bytes)[4], uint32_t number)
{
    for (size_t i = 0; i < sizeof(bytes); ++i)
        bytes[i] = static_cast<uint8_t>(number >> (24 - 8 * i));
}

// The library leaves the operation to its caller here, and takes the last two parts of the key as bytes that nobody
// swaps: the row's numbers in network order.
template <uint32_t Operation> uint32_t ReadFacility(int32_t, const void *key, void *row)
{
    RSVP_MOR_FrrFacilityKey wire{};
    if (key != nullptr) {
        const auto index = Load<FacilityIndex>(key);
        wire = {index.facilityWord0, index.facilityWord1, index.facilityWord2, index.facilityWord3, {}, {}};
        StoreNet(wire.facilityKey4, index.facilityWord4);
        StoreNet(wire.facilityKey5, index.facilityWord5);
    }
    return RSVP_MOR_GetFrrFacilityDBTbl(Operation, key == nullptr ? nullptr : &wire,
                                        static_cast<RSVP_MOR_ReplyFrrFacility *>(row));
}

template <uint32_t Operation> constexpr RowRead FacilityRead()
{
    return {.function = "RSVP_MOR_GetFrrFacilityDBTbl",
            .keyed = true,
            .call = ReadFacility<Operation>,
            .numbers = {Operation}};
}

using AskFunction = decltype(Table::ask);

constexpr AskFunction kAskP2mpPathState = [](int32_t fd, uint32_t itemType, uint32_t operation, const void *key,
                                             void *row) {
    return RSVP_MOR_GetP2mpPsbInfo(fd, itemType, operation, static_cast<const RSVP_MOR_P2mpStateKey *>(key),
                                   static_cast<RSVP_MOR_P2mpPsbInfo *>(row));
};
constexpr AskFunction kAskP2mpReservationState = [](int32_t fd, uint32_t, uint32_t operation, const void *key,
                                                    void *row) {
    return RSVP_MOR_GetP2mpRsbInfo(fd, operation, static_cast<const RSVP_MOR_P2mpStateKey *>(key),
                                   static_cast<RSVP_MOR_P2mpRsbInfo *>(row));
};
constexpr AskFunction kAskP2mpCrLsp = [](int32_t fd, uint32_t, uint32_t operation, const void *key, void *row) {
    return RSVP_MOR_GetP2mpCrlsp(fd, operation, static_cast<const RSVP_MOR_P2mpCrlspKey *>(key),
                                 static_cast<RSVP_MOR_P2mpCrlspInfo *>(row));
};

// The key of a get-first is of the caller's own making; zeros do.
template <AskFunction Ask, uint32_t Operation> constexpr RowRead AskedRead(const char *function)
{
    constexpr bool kTakesItem = Ask == kAskP2mpPathState;
    return {.function = function,
            .held = true,
            .keyed = true,
            .call =
                [](int32_t fd, const void *key, void *row) {
                    static constexpr std::array<std::byte, sizeof(RSVP_MOR_P2mpStateKey)> kZeros{};
                    static_assert(sizeof(kZeros) >= sizeof(RSVP_MOR_P2mpCrlspKey));
                    return Ask(fd, kP2mpPathStateItem, Operation, key == nullptr ? kZeros.data() : key, row);
                },
            .numbers = {kTakesItem ? kP2mpPathStateItem : Operation, kTakesItem ? Operation : 0}};
}

} // namespace

// clang-format off
TABLE(kInterfaces, "interfaces", RSVP_MOR_IfInfo, InterfaceIndex,
      .first = READ(RSVP_MOR_GetFirstIfInfo),
      .next = READ(RSVP_MOR_GetNextIfInfo),
      .get = READ(RSVP_MOR_GetIfInfo))

TABLE(kInterfaceConfig, "interface-config", RSVP_MOR_IfConfig, InterfaceIndex,
      .first = READ(RSVP_GetFirstIfConfig),
      .next = READ(RSVP_GetNextIfConfig),
      .get = READ(RSVP_GetIfConfig),
      .ownKey = KeyOf(PART(ifIndex)))

TABLE(kNeighbours, "neighbours", RSVP_MOR_ReplyNbr, RSVP_MOR_NbrKey,
      .first = READ(RSVP_MOR_GetFirstNbr),
      .next = READ(RSVP_MOR_GetNextNbr))

TABLE(kAuthentication, "auth", RSVP_MOR_ReplyAuth, RSVP_MOR_AuthWalkKey,
      .first = READ(RSVP_MOR_GetFirstAuth),
      .next = READ(RSVP_MOR_GetNextAuth))

TABLE(kResources, "resources", RSVP_MOR_ReplyResource, ResourceIndex,
      .first = READ(RSVP_GetFirstResource),
      .next = READ(RSVP_GetNextResource),
      .get = READ(RSVP_GetResource),
      .ownKey = KeyOf(PART(resourceIndex)))

TABLE(kTunnels, "tunnels", RSVP_MOR_ReplyTunnel, RSVP_MOR_TunnelKey,
      .first = READ(RSVP_GetFirstTunnel),
      .next = READ(RSVP_GetNextTunnel),
      .get = READ(RSVP_GetTunnel))

TABLE(kIngressTunnels, "ingress tunnels", RSVP_MOR_ReplyTunnel, RSVP_MOR_TunnelKey,
      .first = READ(RSVP_GetFirstIngressTunnel),
      .next = READ(RSVP_GetNextIngressTunnel))

TABLE(kFrrFacility, "frr facility", RSVP_MOR_ReplyFrrFacility, FacilityIndex,
      .first = FacilityRead<kGetFirst>(),
      .next = FacilityRead<kGetNext>(),
      .get = FacilityRead<kGetRow>())

TABLE(kFrrGeneral, "frr general", RSVP_MOR_ReplyFrrGeneral, RSVP_MOR_FrrGeneralKey,
      .first = READ(RSVP_MOR_GetFirstFrrGeneralTbl),
      .next = READ(RSVP_MOR_GetNextFrrGeneralTbl),
      .get = READ(RSVP_MOR_GetFrrGeneralTbl))

TABLE(kComputedHops, "hops computed", RSVP_MOR_ReplyCHop, HopIndex,
      .first = READ(RSVP_GetFirstCHop),
      .next = READ(RSVP_GetNextCHop),
      .get = READ(RSVP_GetCHop),
      .ownKey = KeyOf(PART(hopListIndex), PART(hopIndex)))

TABLE(kActualHops, "hops actual", RSVP_MOR_ReplyArHop, HopIndex,
      .first = READ(RSVP_GetFirstArHop),
      .next = READ(RSVP_GetNextArHop),
      .get = READ(RSVP_GetArHop),
      .ownKey = KeyOf(PART(hopListIndex), PART(hopIndex)))

TABLE(kExtendedHops, "hops extended", RSVP_MOR_ReplyExtArHop, HopIndex,
      .first = READ(RSVP_MOR_GetFirstExtArHop),
      .next = READ(RSVP_MOR_GetNextExtArHop),
      .get = READ(RSVP_MOR_GetExtArHop))

TABLE(kPathState, "psb", RSVP_MOR_ReplyPsb, PsbKey,
      .first = READ(RSVP_MOR_GetFirstPsbInfo),
      .next = READ(RSVP_MOR_GetNextPsbInfo),
      .ownKey = KeyOf(PART(session), PART(sender)),
      .release = RELEASE(RSVP_MOR_FreeReplyPsb))

TABLE(kReservationState, "rsb", RSVP_MOR_ReplyRsb, RsbKey,
      .first = READ(RSVP_MOR_GetFirstRsbInfo),
      .next = READ(RSVP_MOR_GetNextRsbInfo),
      .ownKey = KeyOf(PART(session), PART(hop), PART(filter)),
      .release = RELEASE(RSVP_MOR_FreeReplyRsb))

TABLE(kPreviousHopState, "phsb", RSVP_MOR_ReplyPhsb, PhsbKey,
      .first = READ(RSVP_MOR_GetFirstPhsbInfo),
      .next = READ(RSVP_MOR_GetNextPhsbInfo),
      .ownKey = KeyOf(PART(session), PART(hop)),
      .release = RELEASE(RSVP_MOR_FreeReplyPhsb))

TABLE(kCrLsps, "crlsp", RSVP_MOR_ReplyCrlsp, RSVP_MOR_CrlspKey,
      .first = READ(RSVP_MOR_GetFirstCrlsp),
      .next = READ(RSVP_MOR_GetNextCrlsp),
      .ownKey = KeyOf(PART(key)),
      .release = RELEASE(RSVP_MOR_FreeReplyCrlsp))

SINGLE(kGlobalInfo, "global", RSVP_MOR_GlobalInfo, RSVP_MOR_GetGlobalInfo)
SINGLE(kDebugSwitches, "debug", RSVP_MOR_DebugInfo, RSVP_MOR_GetRsvpDebug)

TABLE(kP2mpPathState, "p2mp psb", RSVP_MOR_P2mpPsbInfo, RSVP_MOR_P2mpStateKey,
      .first = AskedRead<kAskP2mpPathState, kGetFirst>("RSVP_MOR_GetP2mpPsbInfo"),
      .next = AskedRead<kAskP2mpPathState, kGetNext>("RSVP_MOR_GetP2mpPsbInfo"),
      .get = AskedRead<kAskP2mpPathState, kGetRow>("RSVP_MOR_GetP2mpPsbInfo"),
      .release = RELEASE(RSVP_MOR_FreeP2mpPsbInfo),
      .ask = kAskP2mpPathState)

TABLE(kP2mpReservationState, "p2mp rsb", RSVP_MOR_P2mpRsbInfo, RSVP_MOR_P2mpStateKey,
      .first = AskedRead<kAskP2mpReservationState, kGetFirst>("RSVP_MOR_GetP2mpRsbInfo"),
      .next = AskedRead<kAskP2mpReservationState, kGetNext>("RSVP_MOR_GetP2mpRsbInfo"),
      .get = AskedRead<kAskP2mpReservationState, kGetRow>("RSVP_MOR_GetP2mpRsbInfo"),
      .release = RELEASE(RSVP_MOR_FreeP2mpRsbInfo),
      .ask = kAskP2mpReservationState)

TABLE(kP2mpCrLsps, "p2mp crlsp", RSVP_MOR_P2mpCrlspInfo, RSVP_MOR_P2mpCrlspKey,
      .first = AskedRead<kAskP2mpCrLsp, kGetFirst>("RSVP_MOR_GetP2mpCrlsp"),
      .next = AskedRead<kAskP2mpCrLsp, kGetNext>("RSVP_MOR_GetP2mpCrlsp"),
      .get = AskedRead<kAskP2mpCrLsp, kGetRow>("RSVP_MOR_GetP2mpCrlsp"),
      .release = RELEASE(RSVP_MOR_FreeP2mpCrlspInfo),
      .ask = kAskP2mpCrLsp)
// clang-format on

#define MANAGER_POINTER(symbol) &(symbol),
std::span<const Table *const> AllTables()
{
    static constexpr const Table *kAll[] = {MANAGER_TABLES(MANAGER_POINTER)};
    return kAll;
}

std::span<const Table *const> AllSingleRecords()
{
    static constexpr const Table *kAll[] = {MANAGER_SINGLE_RECORDS(MANAGER_POINTER)};
    return kAll;
}
#undef MANAGER_POINTER

std::span<const TableShape> AllTableShapes()
{
    static const std::vector<TableShape> shapes = [] {
        std::vector<TableShape> all;
        for (const Table *table : AllTables())
            all.push_back({table->name, &table->row(), &table->key()});
        return all;
    }();
    return shapes;
}

} // namespace manager
