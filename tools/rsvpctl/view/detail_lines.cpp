// The detail view of objects that several blocks share. Values have the names of RSVP; a
// value that has none is shown under the name of its field.
#include "tools/rsvpctl/view/detail_lines.h"

#include "manager/record/json.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/view/words.h"

#include <algorithm>
#include <bit>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::DottedText, manager::Json, manager::NetFloat;

constexpr size_t kNameWidth = 16;
constexpr size_t kValueWidth = 96;
constexpr uint32_t kUnknownLatency = 0xffffffff;

// Bytes a second as they were signalled, and bits a second, by which bandwidth is sold.
std::string RateText(const uint8_t (&bytes)[4])
{
    const float rate = NetFloat(bytes);
    return rate == 0 ? "0 B/s" : fmt::format("{} B/s ({})", rate, BandwidthText(rate));
}

template <typename Spec> std::string BucketText(const Spec &spec)
{
    return fmt::format("rate {}, peak {}", RateText(spec.tokenRate), RateText(spec.peakRate));
}

template <typename Spec> std::string SizesText(const Spec &spec)
{
    return fmt::format("bucket {} B, smallest unit {} B, largest packet {} B", NetFloat(spec.bucketSize),
                       spec.minPolicedUnit, spec.maxPacketSize);
}

bool IsThere(const RSVP_MOR_AdspecParam &param)
{
    return param.paramLength != 0 || param.paramValue != 0;
}

std::string ParamsText(std::span<const RSVP_MOR_AdspecParam, 4> params, std::span<const char *const, 4> names)
{
    std::string text;
    for (size_t i = 0; i < params.size(); ++i) {
        if (IsThere(params[i]))
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", names[i], params[i].paramValue);
    }
    return text;
}

// Bytes are hex text in a row; other text, such as a name, is not a number.
bool IsHexText(const Json &value)
{
    return value.is_string() &&
           value.get_ref<const std::string &>().find_first_not_of("0123456789abcdef") == std::string::npos;
}

bool HasNumbers(const Json &value)
{
    if (value.is_array())
        return std::any_of(value.begin(), value.end(), HasNumbers);
    if (IsHexText(value))
        return value.get_ref<const std::string &>().find_first_not_of('0') != std::string::npos;
    return value.is_number() && value != 0;
}

std::string NumbersText(const Json &value)
{
    if (!value.is_array())
        return value.is_string() ? value.get<std::string>() : value.dump();
    std::string text;
    for (const auto &element : value)
        text += (text.empty() ? "" : ",") + element.dump();
    return text;
}

// Fields of the groups inside a record, and of the record itself, as one row: their names differ.
Json Merged(const Json &row, std::span<const std::string_view> groups)
{
    Json merged = Json::object();
    for (const std::string_view group : groups)
        merged.update(row.at(std::string(group)));
    merged.update(row);
    return merged;
}

constexpr const char *const kErrorTerms[4] = {"Ctot", "Dtot", "Csum", "Dsum"};
constexpr const char *const kOverrides[4] = {"override 1:", "override 2:", "override 3:", "override 4:"};

// A service's fragment is left out if the sender did not put it there.
void AddService(DetailLines &lines, const char *name, uint16_t length, const std::string &terms,
                std::span<const RSVP_MOR_AdspecParam, 4> own)
{
    const std::string more = ParamsText(own, kOverrides);
    if (length == 0 && terms.empty() && more.empty())
        return;
    lines.More(fmt::format("{}: {}{}{}", name, terms.empty() && more.empty() ? "no terms of its own" : terms,
                           terms.empty() || more.empty() ? "" : ", ", more));
}

} // namespace

DetailLines::DetailLines(std::string title) : text_(std::move(title))
{
    text_ += '\n';
}

void DetailLines::Add(std::string_view name, std::string_view value)
{
    text_ += fmt::format("  {:<{}} {}\n", name, kNameWidth, value);
}

void DetailLines::AddHop(std::string_view name, const RSVP_MOR_Hop &hop)
{
    if (hop.hopAddress == 0 && hop.logicalIfHandle == 0)
        Add(name, "none");
    else
        Add(name, fmt::format("{}, logical interface {}", DottedText(hop.hopAddress), hop.logicalIfHandle));
}

void DetailLines::AddInterface(const RSVP_MOR_IfRef &reference)
{
    const bool plain = reference.ifRefHead[0] == 0 && reference.ifRefHead[1] == 0 && reference.ifRefTail[0] == 0 &&
                       reference.ifRefTail[1] == 0;
    Add("Interface", plain ? fmt::format("{}", reference.ifRefNumber)
                           : fmt::format("{}, head {:02x}, tail {:02x}", reference.ifRefNumber,
                                         fmt::join(reference.ifRefHead, ""), fmt::join(reference.ifRefTail, "")));
}

void DetailLines::AddTspec(const RSVP_MOR_SenderTspec &tspec)
{
    Add("Sender Tspec", BucketText(tspec));
    More(SizesText(tspec));
}

void DetailLines::AddFlowSpec(const RSVP_MOR_FlowSpec &flowSpec)
{
    Add("Flow spec", BucketText(flowSpec));
    More(SizesText(flowSpec));
    if (flowSpec.rspecParamLength != 0 || NetFloat(flowSpec.rspecRate) != 0)
        More(fmt::format("guaranteed {}, slack {} us", RateText(flowSpec.rspecRate), flowSpec.slackTerm));
}

void DetailLines::AddAdspec(const RSVP_MOR_Adspec &adspec)
{
    if (adspec.msgLength == 0 && adspec.generalLength == 0) {
        Add("Adspec", "none");
        return;
    }
    const auto bandwidth = std::bit_cast<float>(adspec.pathBandwidth.paramValue);
    const uint32_t latency = adspec.minPathLatency.paramValue;
    Add("Adspec",
        fmt::format("hops {}, path bandwidth {}, least latency {}, MTU {}", adspec.hopCount.paramValue,
                    BandwidthText(bandwidth), latency == kUnknownLatency ? "unknown" : fmt::format("{} us", latency),
                    adspec.composedMtu.paramValue));
    AddService(*this, "guaranteed service", adspec.guaranteedLength, ParamsText(adspec.guaranteedParams, kErrorTerms),
               adspec.guaranteedOverrides);
    AddService(*this, "controlled load", adspec.loadLength, "", adspec.loadOverrides);
}

void DetailLines::AddSessionAttribute(const RSVP_MOR_SessionAttr &attribute)
{
    const bool affinities = attribute.kind == RSVP_MOR_SESSION_ATTR_AFFINITY;
    const RSVP_MOR_SessionAttrAffinity &full = attribute.affinityForm;
    const RSVP_MOR_SessionAttrShort &brief = attribute.shortForm;
    const uint8_t flags = affinities ? full.flags : brief.flags;
    Add("Priorities", fmt::format("setup {}, holding {}", affinities ? full.setupPriority : brief.setupPriority,
                                  affinities ? full.holdingPriority : brief.holdingPriority));
    Add("Attributes", flags == 0 ? "none" : fmt::format("{} ({:#04x})", SessionFlagsText(flags), flags));
    if (affinities)
        Add("Affinities", fmt::format("exclude any {:#010x}, include any {:#010x}, include all {:#010x}",
                                      full.excludeAny, full.includeAny, full.includeAll));
}

void DetailLines::AddLabelRequest(const RSVP_MOR_LabelRequest &request)
{
    std::string text = request.l3pid == 0x0800 ? "IPv4" : fmt::format("protocol {:#06x}", request.l3pid);
    if (request.kind == RSVP_MOR_LABEL_REQUEST_ATM)
        text += fmt::format(", ATM VPI {} to {}, VCI {} to {}", request.minVpi, request.maxVpi, request.minVci,
                            request.maxVci);
    else if (request.kind == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY)
        text += fmt::format(", frame relay DLCI {} to {}", request.minDlci, request.maxDlci);
    Add("Label request", text);
}

void DetailLines::AddHops(std::string_view name, const RSVP_MOR_HopList &list)
{
    std::string line;
    const auto flush = [&] {
        if (!line.empty())
            Add(std::exchange(name, ""), line);
        line.clear();
    };
    for (const RSVP_MOR_HopEntry &hop : std::span(list.entries, list.entries == nullptr ? 0 : list.count)) {
        if (hop.kind == RSVP_MOR_HOP_LABEL) {
            line += fmt::format("{}label {}", line.empty() ? "" : "  ", LabelText(hop.label));
            flush();
            continue;
        }
        flush();
        line = hop.kind == RSVP_MOR_HOP_IPV4 ? DottedText(hop.address) : fmt::format("hop of kind {}", hop.kind);
    }
    flush();
}

void DetailLines::AddRoute(std::string_view name, const RSVP_MOR_RouteList &list)
{
    std::string line;
    for (const RSVP_MOR_RouteEntry &hop : std::span(list.entries, list.entries == nullptr ? 0 : list.count)) {
        if (line.size() > kValueWidth) {
            Add(std::exchange(name, ""), line);
            line.clear();
        }
        line += fmt::format("{}{}", line.empty() ? "" : " ", DottedText(hop.value));
    }
    if (!line.empty())
        Add(name, line);
}

void DetailLines::AddOthers(const manager::RecordDescription &description, const void *record,
                            std::span<const std::string_view> shown, std::span<const std::string_view> groups)
{
    std::string_view name = "Other numbers";
    std::string line;
    const auto add = [&](const std::string &text) {
        if (!line.empty() && line.size() + text.size() > kValueWidth) {
            Add(std::exchange(name, ""), line);
            line.clear();
        }
        line += (line.empty() ? "" : " ") + text;
    };
    const Json row = Merged(ToJson(description, record), groups);
    for (const auto &[field, value] : row.items()) {
        if (std::find(shown.begin(), shown.end(), field) == shown.end() && HasNumbers(value))
            add(field + "=" + NumbersText(value));
    }
    if (!line.empty())
        Add(name, line);
}

} // namespace rsvpctl
