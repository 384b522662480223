// What nobody tells of an LSP is "-" for people and null for programs, and an empty list for both.
#include "tools/rsvpctl/view/lsp_view.h"

#include "manager/dictionary/document.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/view/detail_lines.h"
#include "tools/rsvpctl/view/views.h"
#include "tools/rsvpctl/view/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::DottedText, manager::Json, manager::Lsp;

constexpr size_t kLspNameWidth = 20;
constexpr size_t kStateWidth = 7; // "unknown"

std::string OrDash(const std::string &text)
{
    return text.empty() ? "-" : manager::HarmlessText(text);
}

Column WordColumn(const char *name, size_t width, std::string Lsp::*word)
{
    const auto text = [word](const void *row) { return OrDash(static_cast<const Lsp *>(row)->*word); };
    return {name, HeadingOf(name), width, false, text, nullptr};
}

template <typename Number>
Column NumberOrDashColumn(const char *name, size_t width, std::optional<Number> Lsp::*number)
{
    const auto value = [number](const void *row) { return static_cast<const Lsp *>(row)->*number; };
    return {name,
            HeadingOf(name),
            width,
            true,
            [value](const void *row) { return value(row) ? std::to_string(*value(row)) : "-"; },
            [value](const void *row) { return uint64_t{value(row).value_or(0)}; }};
}

template <uint32_t manager::LspIdentity::*Part> uint64_t PartOf(const Lsp &lsp)
{
    return lsp.identity.*Part;
}

// A title from a name of the dictionary: "Route sent" for "routeSent".
std::string RouteTitle(const std::string &name)
{
    std::string title;
    for (const char c : name) {
        const bool isUpper = c >= 'A' && c <= 'Z';
        if (title.empty())
            title += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        else
            title += isUpper ? std::string{' ', static_cast<char>(c - 'A' + 'a')} : std::string(1, c);
    }
    return title;
}

std::vector<std::string> DottedTexts(const std::vector<uint32_t> &addresses)
{
    std::vector<std::string> texts;
    texts.reserve(addresses.size());
    for (const uint32_t address : addresses)
        texts.push_back(DottedText(address));
    return texts;
}

std::string HopAndLabel(const std::optional<uint32_t> &hop, const std::optional<uint32_t> &label)
{
    const std::string address = !hop ? "-" : *hop == 0 ? "none" : DottedText(*hop);
    return label ? fmt::format("{}, label {}", address, manager::LabelText(*label)) : address;
}

template <typename Value> Json OrNull(const std::optional<Value> &value)
{
    return value ? Json(*value) : Json();
}

// Programs need not know that an address of 0 is none.
Json AddressOrNull(const std::optional<uint32_t> &address)
{
    return address.value_or(0) == 0 ? Json() : Json(DottedText(*address));
}

Json RateOrNull(const std::optional<float> &rate)
{
    return rate ? manager::FloatToJson(*rate) : Json();
}

template <typename Row> Json RecordsOf(const std::vector<Row> &rows, const manager::Dictionary &dictionary)
{
    const manager::RecordDescription &record = manager::Describe<Row>();
    Json array = Json::array();
    for (const Row &row : rows)
        array.push_back(ToJson(record, &row, dictionary.Of(record)));
    return array;
}

} // namespace

Columns LspColumns()
{
    using manager::LspIdentity;
    Columns columns;
    columns.all = {
        WordColumn("name", kLspNameWidth, &Lsp::name),
        WordColumn("role", kStateWidth, &Lsp::role),
        WordColumn("state", kStateWidth, &Lsp::state),
        AddressColumn<Lsp>("endPoint", PartOf<&LspIdentity::endPoint>),
        NumberColumn<Lsp>("tunnel", 5, PartOf<&LspIdentity::tunnelId>),
        NumberColumn<Lsp>("lsp", 5, PartOf<&LspIdentity::lspId>),
        BandwidthColumn<Lsp>([](const Lsp &lsp) { return lsp.askedRate.value_or(0); }),
        WordColumn("protection", 10, &Lsp::protection),
        NumberOrDashColumn("bypass", 6, &Lsp::bypassTunnel),
        AddressColumn<Lsp>("sender", PartOf<&LspIdentity::sender>),
        NumberOrDashColumn("interface", 5, &Lsp::interface),
        AddressColumn<Lsp>("previousHop", [](const Lsp &lsp) -> uint64_t { return lsp.previousHop.value_or(0); }),
        AddressColumn<Lsp>("nextHop", [](const Lsp &lsp) -> uint64_t { return lsp.nextHop.value_or(0); }),
        NumberOrDashColumn("labelIn", 7, &Lsp::labelIn),
        NumberOrDashColumn("labelOut", 7, &Lsp::labelOut),
        ViewColumn<Lsp>("priorities", 3,
                        [](const Lsp &lsp) -> std::string {
                            const auto &has = lsp.attributes;
                            return has ? fmt::format("{}/{}", has->setupPriority, has->holdingPriority) : "-";
                        }),
        NumberOrDashColumn("upTime", 10, &Lsp::upTime),
        AddressColumn<Lsp>("extendedId", PartOf<&LspIdentity::extendedTunnelId>),
    };
    return columns;
}

std::string LspText(const Lsp &lsp, const manager::Dictionary &dictionary)
{
    const manager::LspIdentity &identity = lsp.identity;
    DetailLines lines(lsp.name.empty() ? fmt::format("LSP {} of tunnel {} to {}", identity.lspId, identity.tunnelId,
                                                     DottedText(identity.endPoint))
                                       : "LSP " + manager::HarmlessText(lsp.name));
    lines.Add("Session", fmt::format("end point {}, tunnel {}, extended tunnel {}", DottedText(identity.endPoint),
                                     identity.tunnelId, DottedText(identity.extendedTunnelId)));
    lines.Add("Sender", fmt::format("{}, LSP {}", DottedText(identity.sender), identity.lspId));
    lines.Add("Role", OrDash(lsp.role));
    lines.Add("State", OrDash(lsp.state) + (lsp.upTime ? fmt::format(", for {} s", *lsp.upTime) : ""));
    lines.Add("Previous hop", HopAndLabel(lsp.previousHop, lsp.labelIn));
    lines.Add("Next hop", HopAndLabel(lsp.nextHop, lsp.labelOut));
    lines.Add("Interface", lsp.interface ? std::to_string(*lsp.interface) : "-");
    lines.AddAttributes(lsp.attributes);
    lines.Add("Bandwidth", fmt::format("asked {}, reserved {}{}", lsp.askedRate ? RateText(*lsp.askedRate) : "-",
                                       lsp.reservedRate ? RateText(*lsp.reservedRate) : "-",
                                       lsp.style ? ", style " + manager::StyleText(*lsp.style) : ""));
    for (const manager::LspRoute &route : lsp.routes)
        lines.Add(RouteTitle(route.name), manager::Joined(DottedTexts(route.addresses), " "));
    lines.AddHops("Recorded before", lsp.recordedBefore);
    lines.AddHops("Recorded after", lsp.recordedAfter);
    if (HopTexts(lsp.routeHops) != HopTexts(lsp.recordedAfter))
        lines.AddHops("Route hops", lsp.routeHops);
    lines.Add("Protection", OrDash(lsp.protection));
    if (lsp.bypassTunnel)
        lines.Add("Bypass", fmt::format("tunnel {}{}", *lsp.bypassTunnel,
                                        lsp.bypassName.empty() ? "" : ", " + manager::HarmlessText(lsp.bypassName)));
    for (const RSVP_MOR_ReplyFrrFacility &row : lsp.facility)
        lines.AddFields("Facility", row, dictionary.Of(manager::Describe<RSVP_MOR_ReplyFrrFacility>()));
    for (const RSVP_MOR_ReplyFrrGeneral &row : lsp.general)
        lines.AddFields("Protection asked", row, dictionary.Of(manager::Describe<RSVP_MOR_ReplyFrrGeneral>()));
    std::vector<std::string> tables;
    for (const manager::Table *table : lsp.tables)
        tables.emplace_back(table->name);
    lines.Add("Known from", manager::Joined(tables, ", "));
    return lines.Text();
}

Json ToJson(const Lsp &lsp, const manager::Dictionary &dictionary)
{
    const auto &has = lsp.attributes;
    Json tables = Json::array();
    for (const manager::Table *table : lsp.tables)
        tables.push_back(table->name);
    Json routes = Json::object();
    for (const manager::LspRoute &route : lsp.routes)
        routes[route.name] = DottedTexts(route.addresses);
    return {{"name", TextOrNull(lsp.name)},
            {"endPoint", DottedText(lsp.identity.endPoint)},
            {"tunnelId", lsp.identity.tunnelId},
            {"extendedTunnelId", DottedText(lsp.identity.extendedTunnelId)},
            {"sender", DottedText(lsp.identity.sender)},
            {"lspId", lsp.identity.lspId},
            {"role", TextOrNull(lsp.role)},
            {"state", TextOrNull(lsp.state)},
            {"upTime", OrNull(lsp.upTime)},
            {"previousHop", AddressOrNull(lsp.previousHop)},
            {"labelIn", OrNull(lsp.labelIn)},
            {"nextHop", AddressOrNull(lsp.nextHop)},
            {"labelOut", OrNull(lsp.labelOut)},
            {"interface", OrNull(lsp.interface)},
            {"setupPriority", has ? Json(has->setupPriority) : Json()},
            {"holdingPriority", has ? Json(has->holdingPriority) : Json()},
            {"attributes", has ? Json(manager::SessionFlagWords(has->flags)) : Json()},
            {"askedRate", RateOrNull(lsp.askedRate)},
            {"reservedRate", RateOrNull(lsp.reservedRate)},
            {"style", lsp.style ? Json(manager::StyleText(*lsp.style)) : Json()},
            {"routes", std::move(routes)},
            {"recordedBefore", RecordsOf(lsp.recordedBefore, dictionary)},
            {"recordedAfter", RecordsOf(lsp.recordedAfter, dictionary)},
            {"routeHops", RecordsOf(lsp.routeHops, dictionary)},
            {"protection", TextOrNull(lsp.protection)},
            {"bypassTunnel", OrNull(lsp.bypassTunnel)},
            {"bypassName", TextOrNull(lsp.bypassName)},
            {"facility", RecordsOf(lsp.facility, dictionary)},
            {"general", RecordsOf(lsp.general, dictionary)},
            {"tables", std::move(tables)}};
}

} // namespace rsvpctl
