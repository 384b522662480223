// `show` of the tables: one description each, which says how the rows are reached and which fields of a row the
// daemon takes as the key of the next one. That choice is the daemon's, so it is written down here and nowhere else.
#include "command_line.h"
#include "record_fields.h"
#include "walk.h"

namespace rsvpctl {

// Keys that no record of the library has in the form in which users know them.
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

DESCRIBE(InterfaceIndex, NUMBER(ifIndex))
DESCRIBE(HopIndex, NUMBER(hopListIndex), NUMBER(hopIndex))
DESCRIBE(ResourceIndex, NUMBER(resourceIndex))
DESCRIBE(FacilityIndex, NUMBER(facilityWord0), NUMBER(facilityWord1), NUMBER(facilityWord2), NUMBER(facilityWord3),
         NUMBER(facilityWord4), NUMBER(facilityWord5))

namespace {

constexpr Table<RSVP_MOR_IfInfo, InterfaceIndex> kInterfaces{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstIfInfo",
    .first = RSVP_MOR_GetFirstIfInfo,
    .nextFunction = "RSVP_MOR_GetNextIfInfo",
    .next = [](int32_t fd, const InterfaceIndex &key,
               RSVP_MOR_IfInfo *row) { return RSVP_MOR_GetNextIfInfo(fd, key.ifIndex, row); },
    .keyOf = [](const RSVP_MOR_IfInfo &row) { return InterfaceIndex{row.ifWord1}; },
    .getFunction = "RSVP_MOR_GetIfInfo",
    .get = [](int32_t fd, const InterfaceIndex &key,
              RSVP_MOR_IfInfo *row) { return RSVP_MOR_GetIfInfo(fd, key.ifIndex, row); },
    .keyColumns = {"ifWord1", ""},
};

constexpr Table<RSVP_MOR_IfConfig, InterfaceIndex> kInterfaceConfig{
    .held = false,
    .firstFunction = "RSVP_GetFirstIfConfig",
    .first = [](int32_t, RSVP_MOR_IfConfig *row) { return RSVP_GetFirstIfConfig(row); },
    .nextFunction = "RSVP_GetNextIfConfig",
    .next = [](int32_t, const InterfaceIndex &key,
               RSVP_MOR_IfConfig *row) { return RSVP_GetNextIfConfig(key.ifIndex, row); },
    .keyOf = [](const RSVP_MOR_IfConfig &row) { return InterfaceIndex{row.ifIndex}; },
    .getFunction = "RSVP_GetIfConfig",
    .get = [](int32_t, const InterfaceIndex &key,
              RSVP_MOR_IfConfig *row) { return RSVP_GetIfConfig(key.ifIndex, row); },
};

constexpr Table<RSVP_MOR_ReplyNbr, RSVP_MOR_NbrKey> kNeighbours{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstNbr",
    .first = RSVP_MOR_GetFirstNbr,
    .nextFunction = "RSVP_MOR_GetNextNbr",
    .next = [](int32_t fd, const RSVP_MOR_NbrKey &key,
               RSVP_MOR_ReplyNbr *row) { return RSVP_MOR_GetNextNbr(fd, &key, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyNbr &row) {
            return RSVP_MOR_NbrKey{row.nbrWord0, row.nbrWord1};
        },
};

constexpr Table<RSVP_MOR_ReplyAuth, RSVP_MOR_AuthWalkKey> kAuthentication{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstAuth",
    .first = RSVP_MOR_GetFirstAuth,
    .nextFunction = "RSVP_MOR_GetNextAuth",
    .next = [](int32_t fd, const RSVP_MOR_AuthWalkKey &key,
               RSVP_MOR_ReplyAuth *row) { return RSVP_MOR_GetNextAuth(fd, &key, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyAuth &row) {
            return RSVP_MOR_AuthWalkKey{row.authEntryWord0, row.authEntryWord1};
        },
    .keyColumns = {"authEntryWord0", "authEntryWord1"},
};

// The library leaves the operation to its caller here. The last two parts of the key are bytes that nobody swaps: the
// row's numbers in network order.
uint32_t ReadFacility(uint32_t operation, const FacilityIndex &index, RSVP_MOR_ReplyFrrFacility *row)
{
    RSVP_MOR_FrrFacilityKey key{
        index.facilityWord0, index.facilityWord1, index.facilityWord2, index.facilityWord3, {}, {}};
    const auto bytes4 = WordBytes(index.facilityWord4);
    const auto bytes5 = WordBytes(index.facilityWord5);
    std::copy(bytes4.begin(), bytes4.end(), key.facilityKey4);
    std::copy(bytes5.begin(), bytes5.end(), key.facilityKey5);
    return RSVP_MOR_GetFrrFacilityDBTbl(operation, &key, row);
}

constexpr Table<RSVP_MOR_ReplyFrrFacility, FacilityIndex> kFacility{
    .held = false,
    .firstFunction = "RSVP_MOR_GetFrrFacilityDBTbl",
    .first = [](int32_t,
                RSVP_MOR_ReplyFrrFacility *row) { return RSVP_MOR_GetFrrFacilityDBTbl(kGetFirst, nullptr, row); },
    .nextFunction = "RSVP_MOR_GetFrrFacilityDBTbl",
    .next = [](int32_t, const FacilityIndex &key,
               RSVP_MOR_ReplyFrrFacility *row) { return ReadFacility(kGetNext, key, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyFrrFacility &row) {
            return FacilityIndex{row.facilityWord0, row.facilityWord1, row.facilityWord2,
                                 row.facilityWord3, row.facilityWord4, row.facilityWord5};
        },
    .getFunction = "RSVP_MOR_GetFrrFacilityDBTbl",
    .get = [](int32_t, const FacilityIndex &key,
              RSVP_MOR_ReplyFrrFacility *row) { return ReadFacility(kGetRow, key, row); },
};

constexpr Table<RSVP_MOR_ReplyFrrGeneral, RSVP_MOR_FrrGeneralKey> kGeneral{
    .held = false,
    .firstFunction = "RSVP_MOR_GetFirstFrrGeneralTbl",
    .first = [](int32_t, RSVP_MOR_ReplyFrrGeneral *row) { return RSVP_MOR_GetFirstFrrGeneralTbl(row); },
    .nextFunction = "RSVP_MOR_GetNextFrrGeneralTbl",
    .next = [](int32_t, const RSVP_MOR_FrrGeneralKey &key,
               RSVP_MOR_ReplyFrrGeneral *row) { return RSVP_MOR_GetNextFrrGeneralTbl(&key, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyFrrGeneral &row) {
            return RSVP_MOR_FrrGeneralKey{row.frrWord0, row.frrWord1, row.frrWord2};
        },
    .getFunction = "RSVP_MOR_GetFrrGeneralTbl",
    .get = [](int32_t, const RSVP_MOR_FrrGeneralKey &key,
              RSVP_MOR_ReplyFrrGeneral *row) { return RSVP_MOR_GetFrrGeneralTbl(&key, row); },
};

// A computed or actual hop carries its own key: it goes into the record that the answer then replaces.
template <typename Hop> uint32_t ReadHop(uint32_t (*read)(Hop *), const HopIndex &key, Hop *row)
{
    row->hopListIndex = key.hopListIndex;
    row->hopIndex = key.hopIndex;
    return read(row);
}

constexpr Table<RSVP_MOR_ReplyCHop, HopIndex> kComputedHops{
    .held = false,
    .firstFunction = "RSVP_GetFirstCHop",
    .first = [](int32_t, RSVP_MOR_ReplyCHop *row) { return RSVP_GetFirstCHop(row); },
    .nextFunction = "RSVP_GetNextCHop",
    .next = [](int32_t, const HopIndex &key, RSVP_MOR_ReplyCHop *row) { return ReadHop(RSVP_GetNextCHop, key, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyCHop &row) {
            return HopIndex{row.hopListIndex, row.hopIndex};
        },
    .getFunction = "RSVP_GetCHop",
    .get = [](int32_t, const HopIndex &key, RSVP_MOR_ReplyCHop *row) { return ReadHop(RSVP_GetCHop, key, row); },
    .keyColumns = {"hopListIndex", "hopIndex"},
};

constexpr Table<RSVP_MOR_ReplyArHop, HopIndex> kActualHops{
    .held = false,
    .firstFunction = "RSVP_GetFirstArHop",
    .first = [](int32_t, RSVP_MOR_ReplyArHop *row) { return RSVP_GetFirstArHop(row); },
    .nextFunction = "RSVP_GetNextArHop",
    .next = [](int32_t, const HopIndex &key,
               RSVP_MOR_ReplyArHop *row) { return ReadHop(RSVP_GetNextArHop, key, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyArHop &row) {
            return HopIndex{row.hopListIndex, row.hopIndex};
        },
    .getFunction = "RSVP_GetArHop",
    .get = [](int32_t, const HopIndex &key, RSVP_MOR_ReplyArHop *row) { return ReadHop(RSVP_GetArHop, key, row); },
    .keyColumns = {"hopListIndex", "hopIndex"},
};

constexpr Table<RSVP_MOR_ReplyExtArHop, HopIndex> kExtendedHops{
    .held = false,
    .firstFunction = "RSVP_MOR_GetFirstExtArHop",
    .first = [](int32_t, RSVP_MOR_ReplyExtArHop *row) { return RSVP_MOR_GetFirstExtArHop(row); },
    .nextFunction = "RSVP_MOR_GetNextExtArHop",
    .next = [](int32_t, const HopIndex &key,
               RSVP_MOR_ReplyExtArHop *row) { return RSVP_MOR_GetNextExtArHop(key.hopListIndex, key.hopIndex, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyExtArHop &row) {
            return HopIndex{row.extArHopWord0, row.extArHopWord1};
        },
    .getFunction = "RSVP_MOR_GetExtArHop",
    .get = [](int32_t, const HopIndex &key,
              RSVP_MOR_ReplyExtArHop *row) { return RSVP_MOR_GetExtArHop(key.hopListIndex, key.hopIndex, row); },
};

RSVP_MOR_TunnelKey KeyOfTunnel(const RSVP_MOR_ReplyTunnel &row)
{
    return {row.tunnelWord0, row.tunnelWord1, row.tunnelWord2, row.tunnelWord3};
}

uint32_t ReadTunnel(int32_t, const RSVP_MOR_TunnelKey &key, RSVP_MOR_ReplyTunnel *row)
{
    return RSVP_GetTunnel(&key, row);
}

constexpr Table<RSVP_MOR_ReplyTunnel, RSVP_MOR_TunnelKey> kTunnels{
    .held = false,
    .firstFunction = "RSVP_GetFirstTunnel",
    .first = [](int32_t, RSVP_MOR_ReplyTunnel *row) { return RSVP_GetFirstTunnel(row); },
    .nextFunction = "RSVP_GetNextTunnel",
    .next = [](int32_t, const RSVP_MOR_TunnelKey &key,
               RSVP_MOR_ReplyTunnel *row) { return RSVP_GetNextTunnel(&key, row); },
    .keyOf = KeyOfTunnel,
    .getFunction = "RSVP_GetTunnel",
    .get = ReadTunnel,
};

constexpr Table<RSVP_MOR_ReplyTunnel, RSVP_MOR_TunnelKey> kIngressTunnels{
    .held = false,
    .firstFunction = "RSVP_GetFirstIngressTunnel",
    .first = [](int32_t, RSVP_MOR_ReplyTunnel *row) { return RSVP_GetFirstIngressTunnel(row); },
    .nextFunction = "RSVP_GetNextIngressTunnel",
    .next = [](int32_t, const RSVP_MOR_TunnelKey &key,
               RSVP_MOR_ReplyTunnel *row) { return RSVP_GetNextIngressTunnel(&key, row); },
    .keyOf = KeyOfTunnel,
};

uint32_t ReadResource(uint32_t (*read)(RSVP_MOR_ReplyResource *), const ResourceIndex &key,
                      RSVP_MOR_ReplyResource *row)
{
    row->resourceIndex = key.resourceIndex;
    return read(row);
}

constexpr Table<RSVP_MOR_ReplyResource, ResourceIndex> kResources{
    .held = false,
    .firstFunction = "RSVP_GetFirstResource",
    .first = [](int32_t, RSVP_MOR_ReplyResource *row) { return RSVP_GetFirstResource(row); },
    .nextFunction = "RSVP_GetNextResource",
    .next = [](int32_t, const ResourceIndex &key,
               RSVP_MOR_ReplyResource *row) { return ReadResource(RSVP_GetNextResource, key, row); },
    .keyOf = [](const RSVP_MOR_ReplyResource &row) { return ResourceIndex{row.resourceIndex}; },
    .getFunction = "RSVP_GetResource",
    .get = [](int32_t, const ResourceIndex &key,
              RSVP_MOR_ReplyResource *row) { return ReadResource(RSVP_GetResource, key, row); },
};

} // namespace

void AddTableCommands(CommandLine &line, CLI::App &show)
{
    AddTable(line, show, "interfaces", "Settings and counters of interfaces", kInterfaces);
    AddTable(line, show, "interface-config", "The configuration row of interfaces", kInterfaceConfig);
    AddTable(line, show, "neighbours", "Neighbours", kNeighbours);
    AddTable(line, show, "auth", "Authentication entries", kAuthentication);
    AddTable(line, show, "resources", "Tunnel resources", kResources);

    Command &command = AddTable(line, show, "tunnels", "Tunnels", kTunnels);
    const CLI::Option *ingress = command.parser->add_flag("--ingress")
                                     ->description("Only tunnels that begin here; not with a key")
                                     ->excludes(command.parser->get_option("--key"));
    const CLI::Option *after = command.parser->get_option("--after");
    command.run = [all = command.run, ingress, after](Output &out) {
        return ingress->count() == 0 ? all(out) : ShowTable(out, "show tunnels", kIngressTunnels, TextValue(after));
    };

    CLI::App &frr = line.AddGroup(show, "frr", "Fast reroute tables",
                                  "  rsvpctl show frr facility\n  rsvpctl show frr general --key 1,1,1");
    AddTable(line, frr, "facility", "The fast reroute facility table", kFacility);
    AddTable(line, frr, "general", "The fast reroute general table", kGeneral);

    CLI::App &hops = line.AddGroup(
        show, "hops", "Hops of tunnels",
        "  rsvpctl show hops computed\n  rsvpctl show hops actual --key 1,2\n  rsvpctl show hops extended");
    AddTable(line, hops, "computed", "Computed hops", kComputedHops);
    AddTable(line, hops, "actual", "Actual route hops", kActualHops);
    AddTable(line, hops, "extended", "Fast reroute state of actual route hops", kExtendedHops);
}

} // namespace rsvpctl
