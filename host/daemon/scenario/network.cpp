// Routers stand in a ring with shortcuts, so that every link has a way around it. Router 0 is the one whose view this
// is. Every route follows a tree of shortest paths from there, and so the two halves of a route in transit have
// nothing in common but router 0. One interface has failed, if there are enough: what a bypass protects goes on, and
// the rest is down.
#include "host/daemon/scenario/network.h"

#include "host/daemon/scenario/print.h"

#include <fmt/format.h>
#include <set>
#include <stdexcept>

namespace rsvpsimd {

namespace {

constexpr uint64_t kFirstRouter = 0x0A000001; // 10.0.0.1, by which routers are known
constexpr uint64_t kFirstLink = 0x0A400000;   // 10.64.0.0; each link has four addresses
constexpr uint64_t kFirstBypass = 20'001;
constexpr uint64_t kFirstP2mp = 30'001;
constexpr uint64_t kLspId = 1;
constexpr uint64_t kImplicitNull = 3;
constexpr uint64_t kBypassBandwidth = 500'000; // kbit/s
constexpr size_t kMostLeaves = 8;
constexpr size_t kMostP2mpHops = 80;    // of all sub-LSPs, which travel in one message
constexpr size_t kFewestForFailure = 3; // interfaces

enum class Role : uint8_t { Head = 1, Transit = 2, Tail = 3 };

// The same numbers with every library, which the distributions of the standard one do not promise.
class Dice {
public:
    explicit Dice(uint64_t seed) : state_(seed) {}

    uint64_t Below(uint64_t end)
    {
        state_ += 0x9E3779B97F4A7C15;
        uint64_t bits = state_;
        bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
        return (bits ^ bits >> 31) % end;
    }
    size_t Index(size_t end) { return static_cast<size_t>(Below(end)); }
    bool Percent(uint64_t chance) { return Below(100) < chance; }

private:
    uint64_t state_;
};

// One link on the way from router 0, as it is crossed.
struct Crossing {
    size_t link = 0;
    size_t from = 0;
    size_t to = 0;
};
using Route = std::vector<Crossing>;

class Topology {
public:
    Topology(size_t routers, Dice &dice) : links_(), at_(routers)
    {
        for (size_t router = 0; router < routers; ++router)
            Join(router, (router + 1) % routers);
        if (routers < 4)
            return;
        for (size_t i = 0; i < 2; ++i)
            Join(0, 2 + dice.Index(routers - 3));
        for (size_t i = 0; i < routers / 2; ++i) {
            const size_t one = dice.Index(routers);
            Join(one, (one + 1 + dice.Index(routers - 1)) % routers);
        }
    }

    size_t Routers() const { return at_.size(); }
    const std::vector<size_t> &LinksAt(size_t router) const { return at_[router]; }

    size_t Other(size_t link, size_t router) const
    {
        return links_[link].first == router ? links_[link].second : links_[link].first;
    }

    // The address that a router has on a link.
    uint64_t Address(size_t link, size_t router) const
    {
        return kFirstLink + 4 * link + (links_[link].first == router ? 1 : 2);
    }

    // Shortest routes from router 0 to each other one; empty to those that cannot be reached without these links.
    std::vector<Route> Routes(const std::set<size_t> &without = {}) const
    {
        std::vector<Route> routes(Routers());
        std::vector<size_t> reached{0};
        for (size_t i = 0; i < reached.size(); ++i) {
            const size_t from = reached[i];
            for (const size_t link : at_[from]) {
                const size_t to = Other(link, from);
                if (to == 0 || !routes[to].empty() || without.contains(link))
                    continue;
                routes[to] = routes[from];
                routes[to].push_back({link, from, to});
                reached.push_back(to);
            }
        }
        return routes;
    }

private:
    void Join(size_t one, size_t other)
    {
        at_[one].push_back(links_.size());
        at_[other].push_back(links_.size());
        links_.emplace_back(one, other);
    }

    std::vector<std::pair<size_t, size_t>> links_;
    std::vector<std::vector<size_t>> at_; // the links of each router
};

uint64_t AddressOf(size_t router)
{
    return kFirstRouter + router;
}

void Put(Record &record, std::initializer_list<std::pair<std::string_view, uint64_t>> numbers)
{
    for (const auto &[name, number] : numbers)
        record.insert_or_assign(std::string(name), number);
}

Bytes AddressBytes(uint64_t address)
{
    Bytes bytes;
    AppendNet(bytes, address, 4);
    return bytes;
}

Block Address(uint64_t address)
{
    return {.fields = {{"kind", uint64_t{1}}, {"address", address}}};
}

Block Label(uint64_t label)
{
    return {.fields = {{"kind", uint64_t{3}}, {"label", label}}};
}

void PutTspec(Record &record, const std::string &prefix, uint64_t kbits)
{
    const auto rate = static_cast<double>(kbits * 125);
    Put(record, {{prefix + "overallLength", 7},
                 {prefix + "serviceLength", 6},
                 {prefix + "tspecParamLength", 5},
                 {prefix + "minPolicedUnit", 20},
                 {prefix + "maxPacketSize", 1500}});
    record[prefix + "serviceHeader"] = Bytes{1};
    record[prefix + "tspecParamHeader"] = Bytes{0x7F};
    record[prefix + "tokenRate"] = record[prefix + "peakRate"] = rate;
    record[prefix + "bucketSize"] = 4000.0;
}

void PutFlowSpec(Record &record, const std::string &prefix, uint64_t kbits)
{
    PutTspec(record, prefix, kbits);
    Put(record, {{prefix + "overallLength", 10}, {prefix + "serviceLength", 9}, {prefix + "rspecParamLength", 2}});
    record[prefix + "serviceHeader"] = Bytes{2};
    record[prefix + "rspecParamHeader"] = Bytes{0x82};
    record[prefix + "rspecRate"] = static_cast<double>(kbits * 125);
}

void PutAdspec(Record &record, const std::string &prefix, uint64_t hops)
{
    Put(record, {{prefix + "msgLength", 10},
                 {prefix + "generalLength", 8},
                 {prefix + "hopCount.paramLength", 1},
                 {prefix + "hopCount.paramValue", hops},
                 {prefix + "pathBandwidth.paramLength", 1},
                 {prefix + "pathBandwidth.paramValue", 0x4CEE6B28}, // 125000000.0 as a single
                 {prefix + "minPathLatency.paramLength", 1},
                 {prefix + "minPathLatency.paramValue", 0xFFFFFFFF},
                 {prefix + "composedMtu.paramLength", 1},
                 {prefix + "composedMtu.paramValue", 1500}});
    record[prefix + "generalHeader"] = Bytes{1};
    record[prefix + "hopCount.paramHeader"] = Bytes{4};
    record[prefix + "pathBandwidth.paramHeader"] = Bytes{6};
    record[prefix + "minPathLatency.paramHeader"] = Bytes{8};
    record[prefix + "composedMtu.paramHeader"] = Bytes{10};
    record[prefix + "loadHeader"] = Bytes{5};
}

// A tunnel as router 0 has it.
struct Tunnel {
    uint64_t id = 0;
    std::string name = {};
    Role role = Role::Head;
    Route before = {}; // from router 0 back to where the tunnel begins
    Route behind = {}; // on to where it ends
    bool up = true;
    bool wantsProtection = false;
    bool isProtected = false;
    bool usesBypass = false;
    bool byColour = false; // it asks for links of a colour
    uint64_t setup = 7;
    uint64_t holding = 7;
    uint64_t kbits = 0;
    uint64_t upTime = 0;
    uint64_t label = 0; // that this router gave it; those of the routers behind it follow
    uint64_t changes = 0;

    size_t Ingress() const { return before.empty() ? 0 : before.back().to; }
    size_t Egress() const { return behind.empty() ? 0 : behind.back().to; }
};

class Network {
public:
    Network(const NetworkPlan &plan, const TakeRow &take)
        : plan_(plan), take_(take), dice_(plan.seed), topology_(static_cast<size_t>(plan.routers), dice_),
          routes_(topology_.Routes())
    {
        const std::vector<size_t> &links = topology_.LinksAt(0);
        if (links.size() >= kFewestForFailure)
            failed_ = links.back();
        for (const size_t link : links) {
            std::set<size_t> without{link};
            if (failed_)
                without.insert(*failed_);
            bypasses_[link] = topology_.Routes(without)[topology_.Other(link, 0)];
        }
    }

    Counts Make()
    {
        for (const size_t link : topology_.LinksAt(0))
            TakeInterface(link);
        std::vector<Tunnel> tunnels;
        for (uint64_t id = 1; id <= plan_.tunnels; ++id)
            tunnels.push_back(Draw(id));
        for (const auto &[link, route] : bypasses_)
            if (!route.empty())
                tunnels.push_back(DrawBypass(link, route));
        for (const Tunnel &tunnel : tunnels) {
            if (!tunnel.isProtected)
                continue;
            ++protectedOn_[tunnel.behind.front().link];
        }
        for (const Tunnel &tunnel : tunnels)
            Take(tunnel);
        for (uint64_t i = 0; i < plan_.p2mp; ++i)
            TakeP2mp(i);
        const bool inUse = failed_ && protectedOn_.contains(*failed_);
        return {{"upLspNumber", upLsps_},
                {"frrIfNum", static_cast<uint32_t>(protectedOn_.size())},
                {"frrActiveIfNum", inUse ? 1 : 0},
                {"actBypassTunnels", static_cast<uint32_t>(protectedOn_.size())}};
    }

private:
    // Interfaces count from 1.
    uint64_t IndexOf(size_t link) const
    {
        const auto &links = topology_.LinksAt(0);
        return static_cast<uint64_t>(std::ranges::find(links, link) - links.begin()) + 1;
    }
    uint64_t BypassOf(size_t link) const { return kFirstBypass - 1 + IndexOf(link); }
    uint64_t NearAddress(const Crossing &crossing) const { return topology_.Address(crossing.link, crossing.from); }
    uint64_t FarAddress(const Crossing &crossing) const { return topology_.Address(crossing.link, crossing.to); }

    void TakeInterface(size_t link)
    {
        const uint64_t index = IndexOf(link);
        const bool failed = link == failed_;
        const uint64_t upTime = 3600 + dice_.Below(1'000'000);
        Block interface;
        Put(interface.fields,
            {{"ifWord1", index}, {"ifShort2", 30}, {"ifShort3", 50}, {"ifShort4", 500}, {"authLifeTime", 1800}});
        interface.fields["ifBytes1"] = Bytes{1, 1};
        interface.fields["ifBytes2"] = Bytes{0, 2};
        interface.fields["authEndBytes"] = Bytes{0, 32};
        take_("interface", interface);
        Block config;
        Put(config.fields, {{"ifIndex", index}, {"ifConfig", 3}});
        take_("ifconfig", config);
        Block neighbour;
        const uint64_t lost = failed ? 4 : dice_.Below(3);
        Put(neighbour.fields, {{"nbrWord0", topology_.Address(link, topology_.Other(link, 0))},
                               {"nbrWord2", index},
                               {"nbrWord3", failed ? 2 : 1},
                               {"nbrWord4", failed ? 0 : upTime},
                               {"nbrWord5", 0x5F1C9A03},
                               {"nbrWord6", dice_.Below(0x80000000)},
                               {"nbrWord7", lost},
                               {"nbrWord8", upTime / 6},
                               {"nbrWord9", upTime / 6 - lost}});
        neighbour.fields["nbrBytes"] = Bytes{1};
        take_("nbr", neighbour);
    }

    Tunnel Draw(uint64_t id)
    {
        constexpr std::array<uint64_t, 6> kBandwidths{500, 1'000, 2'000, 5'000, 10'000, 50'000};
        Tunnel tunnel{.id = id};
        const uint64_t role = dice_.Below(100);
        const size_t one = 1 + dice_.Index(topology_.Routers() - 1);
        size_t other = 1 + dice_.Index(topology_.Routers() - 1);
        const auto firstLink = [this](size_t router) { return routes_[router].front().link; };
        for (int tries = 0; tries < 8 && firstLink(other) == firstLink(one); ++tries)
            other = 1 + dice_.Index(topology_.Routers() - 1);
        if (role < 45)
            tunnel.behind = routes_[one];
        else if (role < 60 || firstLink(other) == firstLink(one))
            tunnel.before = routes_[one];
        else
            tunnel.before = routes_[one], tunnel.behind = routes_[other];
        tunnel.role = tunnel.before.empty() ? Role::Head : tunnel.behind.empty() ? Role::Tail : Role::Transit;
        tunnel.name = fmt::format("R{}-R{}-{}", tunnel.Ingress() + 1, tunnel.Egress() + 1, id);
        tunnel.wantsProtection = dice_.Percent(60);
        tunnel.byColour = dice_.Percent(20);
        tunnel.setup = 4 + dice_.Below(4);
        tunnel.holding = tunnel.setup - dice_.Below(2);
        tunnel.kbits = kBandwidths[dice_.Index(kBandwidths.size())];
        tunnel.changes = dice_.Below(6);
        tunnel.up = dice_.Percent(93);
        tunnel.isProtected = tunnel.up && tunnel.wantsProtection && !tunnel.behind.empty() &&
                             !bypasses_.at(tunnel.behind.front().link).empty();
        const auto crossesFailed = [this](const Route &route) {
            return failed_ && !route.empty() && route.front().link == *failed_;
        };
        tunnel.usesBypass = tunnel.isProtected && crossesFailed(tunnel.behind);
        // Traffic that came over the failed link comes no more; what protects it there is not to be seen from here.
        if (crossesFailed(tunnel.before) || (crossesFailed(tunnel.behind) && !tunnel.usesBypass))
            tunnel.up = tunnel.isProtected = tunnel.usesBypass = false;
        tunnel.upTime = tunnel.up ? 60 + dice_.Below(10'000'000) : 0;
        tunnel.label = 1'000 + id;
        return tunnel;
    }

    Tunnel DrawBypass(size_t link, const Route &route)
    {
        return {.id = BypassOf(link),
                .name = fmt::format("bypass-{}", IndexOf(link)),
                .before = {},
                .behind = route,
                .setup = 3,
                .holding = 3,
                .kbits = kBypassBandwidth,
                .upTime = 60 + dice_.Below(10'000'000),
                .label = BypassOf(link)};
    }

    // What the routers behind this one recorded: the address of each, and the label that it gave.
    std::vector<Block> Recorded(const Route &route, uint64_t label) const
    {
        std::vector<Block> hops;
        for (const Crossing &crossing : route) {
            hops.push_back(Address(FarAddress(crossing)));
            hops.push_back(Label(&crossing == &route.back() ? kImplicitNull : LabelOn(crossing.link, label)));
        }
        return hops;
    }

    static uint64_t LabelOn(size_t link, uint64_t label) { return 16 + (label * 131 + link * 7919) % 1'000'000; }

    std::vector<Block> RoutersBefore(const Tunnel &tunnel) const
    {
        std::vector<Block> hops;
        for (auto crossing = tunnel.before.rbegin(); crossing != tunnel.before.rend(); ++crossing)
            hops.push_back(Address(FarAddress(*crossing))); // it is crossed the other way
        return hops;
    }

    std::vector<Block> FarEnds(const Route &route) const
    {
        std::vector<Block> entries;
        for (const Crossing &crossing : route)
            entries.push_back({.fields = {{"value", FarAddress(crossing)}}});
        return entries;
    }

    static void PutSession(Block &block, const Tunnel &tunnel)
    {
        Put(block.fields, {{"session.tunnelEndpoint", AddressOf(tunnel.Egress())},
                           {"session.tunnelId", tunnel.id},
                           {"session.extendedTunnelId", AddressOf(tunnel.Ingress())}});
    }

    static void PutSender(Record &record, const std::string &name, const Tunnel &tunnel)
    {
        Put(record, {{name + ".senderAddress", AddressOf(tunnel.Ingress())}, {name + ".lspId", kLspId}});
    }

    // The hop on this side of the tunnel.
    void PutHop(Block &block, const Route &route) const
    {
        if (!route.empty())
            Put(block.fields, {{"hop.hopAddress", FarAddress(route.front())},
                               {"hop.logicalIfHandle", IndexOf(route.front().link)}});
    }

    void Take(const Tunnel &tunnel)
    {
        TakeTunnel(tunnel);
        if (tunnel.isProtected)
            TakeFacility(tunnel);
        TakePath(tunnel);
        if (tunnel.up && !tunnel.behind.empty())
            TakeReservation(tunnel);
        if (tunnel.up && !tunnel.before.empty())
            TakePreviousHop(tunnel);
        TakeLsp(tunnel);
        upLsps_ += tunnel.up ? 1 : 0;
    }

    void TakeTunnel(const Tunnel &tunnel)
    {
        const bool head = tunnel.role == Role::Head;
        Block row;
        Put(row.fields, {{"tunnelWord0", tunnel.id},
                         {"tunnelWord1", 1},
                         {"tunnelWord2", AddressOf(tunnel.Ingress())},
                         {"tunnelWord3", AddressOf(tunnel.Egress())},
                         {"tunnelWord4", head ? tunnel.id : 0},
                         {"tunnelWord5", tunnel.up ? tunnel.id : 0},
                         {"tunnelWord6", head ? tunnel.id : 0},
                         {"tunnelWord7", tunnel.upTime + 3600 * tunnel.changes},
                         {"tunnelWord8", tunnel.upTime},
                         {"tunnelWord9", tunnel.changes},
                         {"tunnelWord10", tunnel.upTime},
                         {"tunnelWord11", 2 * tunnel.changes + (tunnel.up ? 1 : 0)},
                         {"tunnelWord12", tunnel.kbits},
                         {"tunnelShort0", tunnel.setup},
                         {"tunnelShort1", tunnel.holding},
                         {"tunnelByte", tunnel.usesBypass ? 1 : 0},
                         {"tunnelRole", static_cast<uint64_t>(tunnel.role)}});
        row.fields["tunnelTail"] = Bytes{1, static_cast<uint8_t>(tunnel.up ? 1 : 2)};
        take_("tunnel", row);
        if (head) {
            Block resource;
            Put(resource.fields, {{"resourceIndex", tunnel.id},
                                  {"resourceWord1", tunnel.kbits},
                                  {"resourceWord2", tunnel.kbits},
                                  {"resourceWord3", 4000},
                                  {"resourceWord4", 4000},
                                  {"resourceWord5", 2000}});
            take_("resource", resource);
            for (size_t i = 0; i < tunnel.behind.size(); ++i)
                TakeHop("chop", tunnel, i, FarAddress(tunnel.behind[i]));
        }
        if (head && tunnel.wantsProtection) {
            Block general;
            Put(general.fields, {{"frrWord1", tunnel.id},
                                 {"frrWord2", 1},
                                 {"frrWord3", 1},
                                 {"frrWord4", tunnel.setup},
                                 {"frrWord5", tunnel.holding},
                                 {"frrWord9", 32},
                                 {"frrWord10", tunnel.kbits}});
            take_("general", general);
        }
        if (!tunnel.up)
            return;
        std::vector<Block> hops = RoutersBefore(tunnel);
        for (const Crossing &crossing : tunnel.behind)
            hops.push_back(Address(FarAddress(crossing)));
        for (size_t i = 0; i < hops.size(); ++i) {
            TakeHop("arhop", tunnel, i, std::get<uint64_t>(hops[i].fields.at("address")));
            if (!tunnel.wantsProtection)
                continue;
            const bool here = tunnel.isProtected && i == tunnel.before.size();
            Block extended;
            Put(extended.fields, {{"extArHopWord0", tunnel.id}, {"extArHopWord1", i + 1}});
            extended.fields["extArHopBytes"] =
                Bytes{7, static_cast<uint8_t>((here ? 1 : 0) | (here && tunnel.usesBypass ? 2 : 0))};
            take_("exthop", extended);
        }
    }

    void TakeHop(RowKindRef kind, const Tunnel &tunnel, size_t number, uint64_t address)
    {
        Block hop;
        Put(hop.fields, {{"hopListIndex", tunnel.id}, {"hopIndex", number + 1}, {"hopAddrKind", 1}});
        hop.fields["hopAddrBytes"] = AddressBytes(address);
        if (kind == RowKindRef("chop"))
            Put(hop.fields, {{"cHopWord0", 1}, {"cHopWord1", 32}});
        take_(kind, hop);
    }

    void TakeFacility(const Tunnel &tunnel)
    {
        const size_t link = tunnel.behind.front().link;
        Block row;
        Put(row.fields, {{"facilityWord0", IndexOf(link)},
                         {"facilityWord1", BypassOf(link)},
                         {"facilityWord2", tunnel.id},
                         {"facilityWord3", 1},
                         {"facilityWord4", AddressOf(tunnel.Ingress())},
                         {"facilityWord5", AddressOf(tunnel.Egress())},
                         {"facilityWord6", 1},
                         {"facilityWord7", protectedOn_.at(link)},
                         {"facilityWord8", protectedOn_.at(link)},
                         {"facilityWord9", 1},
                         {"facilityWord10", kBypassBandwidth}});
        take_("facility", row);
    }

    void TakePath(const Tunnel &tunnel)
    {
        Block row;
        PutSession(row, tunnel);
        PutHop(row, tunnel.before);
        PutSender(row.fields, "sender", tunnel);
        PutTspec(row.fields, "tspec.", tunnel.kbits);
        PutAdspec(row.fields, "adspec.", tunnel.before.size() + 1);
        const std::string form = tunnel.byColour ? "affinityForm" : "shortForm";
        Put(row.fields, {{"ifRef.ifRefNumber", IndexOf(NextLink(tunnel))},
                         {"labelRequest.kind", 1},
                         {"labelRequest.l3pid", 0x0800},
                         {"sessionAttr.kind", tunnel.byColour ? 1 : 7},
                         {"sessionAttr." + form + ".setupPriority", tunnel.setup},
                         {"sessionAttr." + form + ".holdingPriority", tunnel.holding},
                         {"sessionAttr." + form + ".flags", tunnel.wantsProtection ? 7 : 6}});
        if (tunnel.byColour)
            Put(row.fields, {{"sessionAttr.affinityForm.includeAny", 0x0F}});
        std::vector<Block> recorded = RoutersBefore(tunnel);
        if (!tunnel.before.empty()) {
            row.lists["routeList3"] = FarEnds(tunnel.behind);
            row.lists["routeList3"].insert(row.lists["routeList3"].begin(),
                                           {.fields = {{"value", NearAddress(tunnel.before.front())}}});
        }
        if (!tunnel.behind.empty()) {
            row.lists["routeList4"] = FarEnds(tunnel.behind);
            recorded.push_back(Address(NearAddress(tunnel.behind.front())));
        }
        if (tunnel.role == Role::Head)
            row.lists["routeList5"] = FarEnds(tunnel.behind);
        if (tunnel.isProtected)
            row.lists["routeList6"] = FarEnds(bypasses_.at(tunnel.behind.front().link));
        row.lists["hopList"] = std::move(recorded);
        take_("psb", row);
    }

    // Where it leaves, or, at its tail, came from.
    static size_t NextLink(const Tunnel &tunnel)
    {
        return (tunnel.behind.empty() ? tunnel.before : tunnel.behind).front().link;
    }

    void TakeReservation(const Tunnel &tunnel)
    {
        Block row;
        PutSession(row, tunnel);
        PutHop(row, tunnel.behind);
        PutSender(row.fields, "filter", tunnel);
        PutFlowSpec(row.fields, "flowSpec.", tunnel.kbits);
        Put(row.fields, {{"ifRef.ifRefNumber", IndexOf(NextLink(tunnel))}, {"style", 18}});
        std::vector<Block> recorded = Recorded(tunnel.behind, tunnel.label);
        Block filter;
        PutSender(filter.fields, "filter", tunnel);
        filter.fields["label"] = recorded[1].fields.at("label");
        filter.lists["rro"] = std::move(recorded);
        row.lists["fsList"] = {filter};
        take_("rsb", row);
    }

    void TakePreviousHop(const Tunnel &tunnel)
    {
        Block row;
        PutSession(row, tunnel);
        PutHop(row, tunnel.before);
        Put(row.fields, {{"ifRef.ifRefNumber", IndexOf(tunnel.before.front().link)}, {"style", 18}});
        Block filter;
        PutSender(filter.fields, "filter", tunnel);
        Put(filter.fields, {{"label", tunnel.behind.empty() ? kImplicitNull : tunnel.label}});
        Block flow;
        PutFlowSpec(flow.fields, "flowSpec.", tunnel.kbits);
        flow.lists["fsList"] = {filter};
        row.lists["fdList"] = {flow};
        take_("phsb", row);
    }

    void TakeLsp(const Tunnel &tunnel)
    {
        const uint64_t protection = tunnel.usesBypass ? 2 : tunnel.isProtected ? 1 : 0;
        Block row;
        Put(row.fields, {{"key.keyWord0", AddressOf(tunnel.Egress())},
                         {"key.keyWord1", AddressOf(tunnel.Ingress())},
                         {"key.keyWord2", AddressOf(tunnel.Ingress())},
                         {"key.keyShort0", tunnel.id},
                         {"key.keyShort1", kLspId},
                         {"path.pathWord0", tunnel.before.empty() ? 0 : FarAddress(tunnel.before.front())},
                         {"path.pathWord1", tunnel.behind.empty() ? 0 : FarAddress(tunnel.behind.front())},
                         {"path.pathShort", IndexOf(NextLink(tunnel))},
                         {"tailByte0", tunnel.up ? 1 : 2},
                         {"tailByte1", static_cast<uint64_t>(tunnel.role)},
                         {"tailByte2", protection},
                         {"tailWord0", tunnel.upTime},
                         {"tailWord1", protection != 0 ? BypassOf(NextLink(tunnel)) : 0}});
        row.fields["traffic.trafficRate0"] = row.fields["traffic.trafficRate1"] =
            static_cast<double>(tunnel.kbits * 125);
        if (tunnel.up)
            row.lists["hopList"] =
                tunnel.behind.empty() ? RoutersBefore(tunnel) : Recorded(tunnel.behind, tunnel.label);
        row.texts["name"] = tunnel.name;
        take_("crlsp", row);
    }

    // A tree of sub-LSPs. Those that share a link share its label.
    void TakeP2mp(uint64_t number)
    {
        const uint64_t id = number + 1;
        const uint64_t tunnelId = kFirstP2mp + number;
        const uint64_t kbits = 2'000 * (1 + dice_.Below(5));
        std::set<size_t> leaves;
        const size_t wanted = std::min(2 + dice_.Index(kMostLeaves - 1), topology_.Routers() - 1);
        for (size_t tries = 0, hops = 0; tries < 4 * kMostLeaves && leaves.size() < wanted; ++tries) {
            const size_t leaf = 1 + dice_.Index(topology_.Routers() - 1);
            if (hops + routes_[leaf].size() <= kMostP2mpHops && leaves.insert(leaf).second)
                hops += routes_[leaf].size();
        }
        Block lsp;
        for (const bool asKey : {true, false}) {
            const std::string prefix = asKey ? "" : "key.";
            Put(asKey ? lsp.key : lsp.fields, {{prefix + "keyWord0", id},
                                               {prefix + "keyWord1", AddressOf(0)},
                                               {prefix + "keyWord2", AddressOf(0)},
                                               {prefix + "keyShort0", tunnelId},
                                               {prefix + "keyShort1", kLspId}});
        }
        lsp.fields["traffic.trafficRate0"] = lsp.fields["traffic.trafficRate1"] = static_cast<double>(kbits * 125);
        lsp.texts["name"] = fmt::format("p2mp-{}", id);
        bool up = false;
        uint64_t subId = 0;
        for (const size_t leaf : leaves) {
            const Route &route = routes_[leaf];
            const bool leafUp = route.front().link != failed_;
            up = up || leafUp;
            ++subId;
            Block sub;
            Put(sub.fields, {{"path.pathWord0", AddressOf(leaf)},
                             {"path.pathWord1", FarAddress(route.front())},
                             {"path.pathShort", IndexOf(route.front().link)},
                             {"subShort", subId},
                             {"subByte", leafUp ? 1 : 2}});
            sub.lists["hopList"] = Recorded(route, tunnelId);
            lsp.lists["subLsps"].push_back(std::move(sub));
            TakeP2mpState(id, tunnelId, subId, route, kbits, leafUp);
        }
        Put(lsp.fields, {{"lspWord0", leaves.size()}, {"lspByte0", up ? 1 : 2}});
        take_("p2mpCrlsp", lsp);
    }

    void TakeP2mpState(uint64_t id, uint64_t tunnelId, uint64_t subId, const Route &route, uint64_t kbits, bool up)
    {
        Block path;
        Put(path.key, {{"stateKeyWord0", id},
                       {"stateKeyWord1", AddressOf(0)},
                       {"stateKeyWord2", AddressOf(0)},
                       {"stateKeyHalf0", tunnelId},
                       {"stateKeyHalf1", kLspId},
                       {"stateKeyWord3", AddressOf(0)},
                       {"stateKeyHalf2", subId}});
        Put(path.fields, {{"pathState.session.p2mpId", id},
                          {"pathState.session.tunnelId", tunnelId},
                          {"pathState.session.extendedTunnelId", AddressOf(0)},
                          {"pathState.hop.hopAddress", AddressOf(0)},
                          {"pathState.hop.logicalIfHandle", IndexOf(route.front().link)},
                          {"pathState.ifRef.ifRefNumber", IndexOf(route.front().link)},
                          {"pathState.sessionAttr.kind", 7},
                          {"pathState.sessionAttr.shortForm.setupPriority", 5},
                          {"pathState.sessionAttr.shortForm.holdingPriority", 5},
                          {"pathState.sessionAttr.shortForm.flags", 6}});
        for (const std::string prefix : {"resvState.filter.", "subGroup.sender."})
            Put(path.fields, {{prefix + "senderAddress", AddressOf(0)},
                              {prefix + "lspId", kLspId},
                              {prefix + "subGroupOriginator", AddressOf(0)},
                              {prefix + "subGroupId", subId}});
        PutTspec(path.fields, "pathState.tspec.", kbits);
        PutFlowSpec(path.fields, "resvState.flowSpec.", kbits);
        Block reservation = path;
        path.lists["routeList4"] = FarEnds(route);
        path.lists["hopList"] = {Address(AddressOf(0))};
        take_("p2mpPsb", path);
        if (!up)
            return;
        reservation.lists["hopList"] = Recorded(route, tunnelId);
        take_("p2mpRsb", reservation);
    }

    NetworkPlan plan_;
    const TakeRow &take_;
    Dice dice_;
    Topology topology_;
    std::vector<Route> routes_;
    std::optional<size_t> failed_;           // the link whose other end is lost
    std::map<size_t, Route> bypasses_;       // around each link of router 0; empty if there is none
    std::map<size_t, uint64_t> protectedOn_; // how many tunnels, by link
    uint32_t upLsps_ = 0;
};

} // namespace

Counts MakeNetwork(const NetworkPlan &plan, const TakeRow &take)
{
    return Network(plan, take).Make();
}

void AddNetwork(Device &device, const NetworkPlan &plan)
{
    const Counts counts = MakeNetwork(plan, [&device](RowKindRef kind, const Block &row) {
        if (!device.Rows(kind).Insert(EncodeRow(*kind, row)))
            throw std::invalid_argument(fmt::format("a row of {} is there already", kind->name));
    });
    for (const auto &[name, number] : counts)
        if (!device.GivenCounts().contains(name))
            device.SetCount(name, number);
}

void PrintNetwork(const NetworkPlan &plan, const std::function<void(const std::string &)> &print)
{
    print(
        fmt::format("# A network of {} routers as 10.0.0.1 sees it, with {} tunnels and {} point-to-multipoint LSPs; "
                    "made with seed {}.\n",
                    plan.routers, plan.tunnels, plan.p2mp, plan.seed));
    const Counts counts =
        MakeNetwork(plan, [&print](RowKindRef kind, const Block &row) { print(RowText(*kind, row)); });
    std::string text = "\n[counters]\n";
    for (const auto &[name, number] : counts)
        text += fmt::format("{} = {}\n", name, number);
    print(text);
}

} // namespace rsvpsimd
