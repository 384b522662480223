// The join. What of a row concerns an LSP is copied into it, so that no row is kept. An LSP is found by its identity,
// or by the index that it has in the tables of RFC 3812 and RFC 6445, which is all of the identity but the extended
// tunnel identifier.
#include "manager/lsp/lsp.h"

#include "manager/record/text.h"
#include "manager/table/session.h"
#include "manager/table/tables.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace manager {
namespace {

/** Finds what a dictionary has a name for in one kind of row. */
template <typename Row> struct NamedIn {
    const Dictionary &dictionary;

    NamedValue operator()(std::string_view name) const
    {
        const RecordDescription &record = Describe<Row>();
        return {record, dictionary.Of(record), name};
    }
};

struct CrLspWords {
    NamedIn<RSVP_MOR_ReplyCrlsp> named;
    NamedValue endPoint = named("endPoint");
    NamedValue extendedTunnelId = named("extendedTunnelId");
    NamedValue sender = named("sender");
    NamedValue tunnelId = named("tunnelId");
    NamedValue lspId = named("lspId");
    NamedValue role = named("role");
    NamedValue state = named("state");
    NamedValue protection = named("protection");
    NamedValue upTime = named("upTime");
    NamedValue interface = named("interface");
    NamedValue bypassTunnel = named("bypassTunnel");
    NamedValue previousHop = named("previousHop");
    NamedValue nextHop = named("nextHop");

    bool HasKey() const { return endPoint && extendedTunnelId && sender && tunnelId && lspId; }
};

struct TunnelWords {
    NamedIn<RSVP_MOR_ReplyTunnel> named;
    NamedValue egress = named("egress");
    NamedValue ingress = named("ingress");
    NamedValue tunnel = named("index");
    NamedValue instance = named("instance");
    NamedValue role = named("role");
    NamedValue state = named("operStatus");

    bool HasKey() const { return egress && ingress && tunnel && instance; }
};

struct FacilityWords {
    NamedIn<RSVP_MOR_ReplyFrrFacility> named;
    NamedValue egress = named("egress");
    NamedValue ingress = named("ingress");
    NamedValue tunnel = named("tunnel");
    NamedValue instance = named("instance");
    NamedValue protectingTunnel = named("protectingTunnel");

    bool HasKey() const { return egress && ingress && tunnel && instance; }
};

struct GeneralWords {
    NamedIn<RSVP_MOR_ReplyFrrGeneral> named;
    NamedValue tunnel = named("tunnel");
    NamedValue instance = named("instance");

    bool HasKey() const { return tunnel && instance; }
};

uint32_t WordIn(const NamedValue &value, const void *row)
{
    return static_cast<uint32_t>(value.NumberIn(row));
}

void SetFrom(const NamedValue &value, const void *row, std::optional<uint32_t> &part)
{
    if (value)
        part = WordIn(value, row);
}

template <typename Value> void SetOnce(std::optional<Value> &part, Value value)
{
    if (!part)
        part = value;
}

uint64_t Pair(uint32_t high, uint32_t low)
{
    return uint64_t{high} << 32 | low;
}

struct HashOfIdentity {
    size_t operator()(const LspIdentity &one) const
    {
        constexpr uint64_t kOdd = 0x9e3779b97f4a7c15; // spreads numbers that lie close to each other
        uint64_t hash = one.extendedTunnelId;
        for (const uint64_t part : {Pair(one.endPoint, one.sender), Pair(one.tunnelId, one.lspId)})
            hash = ((hash ^ part) * kOdd) ^ (hash >> 29);
        return static_cast<size_t>(hash ^ (hash >> 32));
    }
};

std::vector<RSVP_MOR_HopEntry> HopsOf(const RSVP_MOR_HopList &list)
{
    return {list.entries, list.entries + (list.entries == nullptr ? 0 : list.count)};
}

// Whoever has a next hop carries the LSP on. Path state from the network always has the previous hop, so what has
// none is the node's own (RFC 2205). What has no next hop may be the end, or wait for its reservation.
std::string_view RoleFromHops(const Lsp &lsp)
{
    if (lsp.previousHop.value_or(0) != 0 && lsp.nextHop.value_or(0) != 0)
        return kTransit;
    return lsp.previousHop == 0U && lsp.nextHop.value_or(0) != 0 ? kHead : std::string_view();
}

class Join {
public:
    Join(const Dictionary &dictionary, const std::function<void(uint64_t rows)> &afterRow)
        : dictionary_(dictionary), afterRow_(afterRow)
    {
    }

    Lsps Read()
    {
        if (crLsp_.HasKey())
            Read<RSVP_MOR_ReplyCrlsp>(kCrLsps);
        Read<RSVP_MOR_ReplyPsb>(kPathState);
        Read<RSVP_MOR_ReplyRsb>(kReservationState);
        Read<RSVP_MOR_ReplyPhsb>(kPreviousHopState);
        if (tunnel_.HasKey())
            Read<RSVP_MOR_ReplyTunnel>(kTunnels);
        if (facility_.HasKey())
            Read<RSVP_MOR_ReplyFrrFacility>(kFrrFacility);
        AddRoles();
        AddBypassNames();
        if (general_.HasKey())
            Read<RSVP_MOR_ReplyFrrGeneral>(kFrrGeneral);
        AddGeneral();
        return {std::move(lsps_), std::move(ends_)};
    }

private:
    // A row goes to the function that takes its type. Where no session can be had, or the time is over, no other
    // table is tried.
    template <typename Row> void Read(const Table &table)
    {
        if (isLost_)
            return;
        table_ = &table;
        ForgetExchange();
        const Session session(table.first.held);
        TableEnd end{&table, {WalkEnd::Broken, 0, RSVP_MOR_ERR_LIPC, "RSVP_MOR_LIPCOpen", ""}, {}};
        if (!session.IsMissing())
            end.result = Walk(table, dictionary_, session.Fd(), nullptr, [&](void *row) {
                Take(*static_cast<const Row *>(row));
                afterRow_(++rows_);
                return true;
            });
        end.exchange = LastExchange();
        const bool noSession =
            end.result.end == WalkEnd::Broken && FaultOf(end.result.status, end.exchange) == Fault::NoSession;
        isLost_ = noSession || end.exchange.givenUp != GivenUp::No;
        ends_.push_back(std::move(end));
    }

    void Take(const RSVP_MOR_ReplyCrlsp &row)
    {
        Lsp &lsp = Of({WordIn(crLsp_.endPoint, &row), WordIn(crLsp_.extendedTunnelId, &row),
                       WordIn(crLsp_.sender, &row), WordIn(crLsp_.tunnelId, &row), WordIn(crLsp_.lspId, &row)});
        lsp.name = row.name == nullptr ? "" : row.name;
        lsp.role = crLsp_.role.TextIn(&row);
        lsp.state = crLsp_.state.TextIn(&row);
        lsp.protection = crLsp_.protection.TextIn(&row);
        if (crLsp_.protection)
            lsp.isProtected = crLsp_.protection.NumberIn(&row) != 0;
        if (crLsp_.upTime)
            lsp.upTime = crLsp_.upTime.NumberIn(&row);
        SetFrom(crLsp_.interface, &row, lsp.interface);
        SetFrom(crLsp_.previousHop, &row, lsp.previousHop);
        SetFrom(crLsp_.nextHop, &row, lsp.nextHop);
        if (crLsp_.bypassTunnel.NumberIn(&row) != 0)
            lsp.bypassTunnel = WordIn(crLsp_.bypassTunnel, &row);
        lsp.routeHops = HopsOf(row.hopList);
    }

    void Take(const RSVP_MOR_ReplyPsb &row)
    {
        Lsp &lsp = Of(row.session, row.sender);
        SetOnce(lsp.previousHop, row.hop.hopAddress);
        lsp.attributes = AttributesOf(row.sessionAttr);
        lsp.askedRate = NetFloat(row.tspec.tokenRate);
        lsp.recordedBefore = HopsOf(row.hopList);
        const RecordMeanings &meanings = dictionary_.Of(Describe<RSVP_MOR_ReplyPsb>());
        const auto addRoute = [&](const char *field, const RSVP_MOR_RouteList &list) {
            LspRoute route{meanings.Inside(field).name, {}};
            for (const RSVP_MOR_RouteEntry &hop : std::span(list.entries, list.entries == nullptr ? 0 : list.count))
                route.addresses.push_back(hop.value);
            if (!route.name.empty() && !route.addresses.empty())
                lsp.routes.push_back(std::move(route));
        };
        addRoute("routeList3", row.routeList3);
        addRoute("routeList4", row.routeList4);
        addRoute("routeList5", row.routeList5);
        addRoute("routeList6", row.routeList6);
    }

    void Take(const RSVP_MOR_ReplyRsb &row)
    {
        const auto take = [&](const RSVP_MOR_Sender &filter, const RSVP_MOR_ReplyFSInfo *spec) {
            Lsp &lsp = Of(row.session, filter);
            SetOnce(lsp.nextHop, row.hop.hopAddress);
            lsp.reservedRate = NetFloat(row.flowSpec.tokenRate);
            lsp.style = row.style;
            if (spec == nullptr)
                return;
            lsp.labelOut = spec->label;
            lsp.recordedAfter = HopsOf(spec->rro);
        };
        for (const RSVP_MOR_ReplyFSInfo *spec = row.fsList; spec != nullptr; spec = spec->next)
            take(spec->filter, spec);
        if (row.fsList == nullptr)
            take(row.filter, nullptr);
    }

    // A block without flow descriptors names no sender.
    void Take(const RSVP_MOR_ReplyPhsb &row)
    {
        for (const RSVP_MOR_ReplyFDInfo *flow = row.fdList; flow != nullptr; flow = flow->next) {
            for (const RSVP_MOR_ReplyFSInfo *spec = flow->fsList; spec != nullptr; spec = spec->next) {
                Lsp &lsp = Of(row.session, spec->filter);
                SetOnce(lsp.previousHop, row.hop.hopAddress);
                SetOnce(lsp.reservedRate, NetFloat(flow->flowSpec.tokenRate));
                SetOnce(lsp.style, row.style);
                lsp.labelIn = spec->label;
            }
        }
    }

    void Take(const RSVP_MOR_ReplyTunnel &row)
    {
        ForEachAt(IndexOf(tunnel_, row), [&](Lsp &lsp) {
            if (lsp.role.empty())
                lsp.role = tunnel_.role.TextIn(&row);
            if (lsp.state.empty())
                lsp.state = tunnel_.state.TextIn(&row);
        });
    }

    void Take(const RSVP_MOR_ReplyFrrFacility &row)
    {
        ForEachAt(IndexOf(facility_, row), [&](Lsp &lsp) {
            SetOnce(lsp.isProtected, true);
            if (facility_.protectingTunnel)
                SetOnce(lsp.bypassTunnel, WordIn(facility_.protectingTunnel, &row));
            lsp.facility.push_back(row);
        });
    }

    void Take(const RSVP_MOR_ReplyFrrGeneral &row)
    {
        generalRows_.emplace(Pair(WordIn(general_.tunnel, &row), WordIn(general_.instance, &row)), row);
    }

    Lsp &Of(const LspIdentity &identity)
    {
        const auto [place, isNew] = byIdentity_.emplace(identity, lsps_.size());
        if (isNew) {
            lsps_.emplace_back().identity = identity;
            LspIdentity index = identity;
            index.extendedTunnelId = 0;
            byIndex_[index].push_back(place->second);
        }
        return Marked(lsps_[place->second]);
    }

    Lsp &Of(const RSVP_MOR_Session &session, const RSVP_MOR_Sender &sender)
    {
        return Of(
            {session.tunnelEndpoint, session.extendedTunnelId, sender.senderAddress, session.tunnelId, sender.lspId});
    }

    // Notes that the table which is read now holds a part of the LSP.
    Lsp &Marked(Lsp &lsp) const
    {
        if (lsp.tables.empty() || lsp.tables.back() != table_)
            lsp.tables.push_back(table_);
        return lsp;
    }

    template <typename Words, typename Row> static LspIdentity IndexOf(const Words &words, const Row &row)
    {
        return {WordIn(words.egress, &row), 0, WordIn(words.ingress, &row), WordIn(words.tunnel, &row),
                WordIn(words.instance, &row)};
    }

    template <typename Use> void ForEachAt(const LspIdentity &index, const Use &use)
    {
        const auto found = byIndex_.find(index);
        if (found == byIndex_.end())
            return;
        for (const size_t at : found->second)
            use(Marked(lsps_[at]));
    }

    void AddRoles()
    {
        for (Lsp &lsp : lsps_) {
            if (lsp.role.empty())
                lsp.role = RoleFromHops(lsp);
        }
    }

    // A bypass begins where the LSP that it protects is repaired, so its name is that of a tunnel which begins here;
    // two tunnels of a number have none.
    void AddBypassNames()
    {
        std::unordered_map<uint32_t, std::string_view> names;
        for (const Lsp &lsp : lsps_) {
            if (lsp.role != kHead)
                continue;
            const auto [place, isNew] = names.emplace(lsp.identity.tunnelId, lsp.name);
            if (!isNew && place->second != lsp.name)
                place->second = {};
        }
        for (Lsp &lsp : lsps_) {
            const auto found = lsp.bypassTunnel ? names.find(*lsp.bypassTunnel) : names.end();
            if (found != names.end())
                lsp.bypassName = found->second;
        }
    }

    // The rows are about the tunnels that begin here, and so they name no ingress.
    void AddGeneral()
    {
        for (Lsp &lsp : lsps_) {
            if (lsp.role != kHead)
                continue;
            const auto [first, last] = generalRows_.equal_range(Pair(lsp.identity.tunnelId, lsp.identity.lspId));
            for (auto row = first; row != last; ++row)
                Marked(lsp).general.push_back(row->second);
        }
    }

    const Dictionary &dictionary_;
    const std::function<void(uint64_t rows)> &afterRow_;
    const CrLspWords crLsp_{{dictionary_}};
    const TunnelWords tunnel_{{dictionary_}};
    const FacilityWords facility_{{dictionary_}};
    const GeneralWords general_{{dictionary_}};
    const Table *table_ = nullptr; // that is read now
    bool isLost_ = false;
    uint64_t rows_ = 0;
    std::vector<TableEnd> ends_;
    std::vector<Lsp> lsps_;
    std::unordered_map<LspIdentity, size_t, HashOfIdentity> byIdentity_;
    std::unordered_map<LspIdentity, std::vector<size_t>, HashOfIdentity> byIndex_;
    std::unordered_multimap<uint64_t, RSVP_MOR_ReplyFrrGeneral> generalRows_; // by tunnel and instance
};

} // namespace

LspWords::LspWords(const Dictionary &dictionary)
{
    const CrLspWords crLsp{{dictionary}};
    const TunnelWords tunnel{{dictionary}};
    const auto has = [](bool isJoined, const NamedValue &value, std::string_view word) {
        return isJoined && value.HasWord(word);
    };
    const auto either = [&](const NamedValue &ofCrLsp, const NamedValue &ofTunnel, std::string_view word) {
        return has(crLsp.HasKey(), ofCrLsp, word) || has(tunnel.HasKey(), ofTunnel, word);
    };
    crLsps = crLsp.HasKey();
    interface = crLsps && crLsp.interface;
    protection = (crLsps && crLsp.protection) || FacilityWords{{dictionary}}.HasKey();
    up = either(crLsp.state, tunnel.state, "up");
    down = either(crLsp.state, tunnel.state, "down");
    tail = either(crLsp.role, tunnel.role, kTail);
}

Lsps ReadLsps(const Dictionary &dictionary, const std::function<void(uint64_t rows)> &afterRow)
{
    return Join(dictionary, afterRow).Read();
}

} // namespace manager
