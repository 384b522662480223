// The detail view of objects that several blocks share, in the words of RSVP.
#include "tools/rsvpctl/view/detail_lines.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/view/words.h"

#include <bit>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <span>

namespace rsvpctl {
namespace {

using manager::BandwidthText, manager::DottedText, manager::NetFloat;

constexpr size_t kNameWidth = 16;
constexpr size_t kValueWidth = 96;

bool IsThere(const RSVP_MOR_AdspecParam &param)
{
    return param.paramLength != 0 || param.paramValue != 0;
}

// A parameter by its name, or by its number if no service defines it.
std::string ParameterText(const RSVP_MOR_AdspecParam &parameter)
{
    const auto known = manager::ParameterOf(parameter);
    if (!known)
        return fmt::format("parameter {} {}", parameter.paramHeader[0], parameter.paramValue);
    if (known->isSingle)
        return fmt::format("{} {}", known->name,
                           BandwidthText(double{std::bit_cast<float>(parameter.paramValue)} * 8));
    return fmt::format("{} {}", known->name, parameter.paramValue);
}

} // namespace

std::string RateText(float rate)
{
    return rate == 0 ? "0 B/s" : fmt::format("{} B/s ({})", rate, BandwidthText(double{rate} * 8));
}

DetailLines::DetailLines(std::string title) : text_(std::move(title))
{
    text_ += '\n';
}

void DetailLines::Add(std::string_view name, std::string_view value)
{
    text_ += fmt::format("  {:<{}} {}\n", name, kNameWidth, value);
}

void DetailLines::AddSession(const RSVP_MOR_Session &session)
{
    Add("Session",
        fmt::format("end point {}, tunnel {}, extended tunnel {}", DottedText(Shown(session.tunnelEndpoint)),
                    Shown(session.tunnelId), DottedText(Shown(session.extendedTunnelId))));
}

void DetailLines::AddSession(const RSVP_MOR_P2mpSession &session)
{
    Add("Session", fmt::format("P2MP {}, tunnel {}, extended tunnel {}", Shown(session.p2mpId),
                               Shown(session.tunnelId), DottedText(Shown(session.extendedTunnelId))));
}

void DetailLines::AddSender(std::string_view name, const RSVP_MOR_Sender &sender)
{
    Add(name, fmt::format("{}, LSP {}", DottedText(Shown(sender.senderAddress)), Shown(sender.lspId)));
}

void DetailLines::AddSender(std::string_view name, const RSVP_MOR_P2mpSender &sender)
{
    Add(name,
        fmt::format("{}, LSP {}, sub-group {} of {}", DottedText(Shown(sender.senderAddress)), Shown(sender.lspId),
                    Shown(sender.subGroupId), DottedText(Shown(sender.subGroupOriginator))));
}

void DetailLines::AddHop(std::string_view name, const RSVP_MOR_Hop &hop)
{
    Shown(hop);
    if (hop.hopAddress == 0 && hop.logicalIfHandle == 0)
        Add(name, "none");
    else
        Add(name, fmt::format("{}, logical interface {}", DottedText(hop.hopAddress), hop.logicalIfHandle));
}

// The number is a reference of the daemon's, and need not be the index of an interface.
void DetailLines::AddInterface(const RSVP_MOR_IfRef &reference)
{
    Shown(reference);
    const bool plain = reference.ifRefHead[0] == 0 && reference.ifRefHead[1] == 0 && reference.ifRefTail[0] == 0 &&
                       reference.ifRefTail[1] == 0;
    Add("Interface ref.", plain
                              ? fmt::format("{}", reference.ifRefNumber)
                              : fmt::format("{}, head {:02x}, tail {:02x}", reference.ifRefNumber,
                                            fmt::join(reference.ifRefHead, ""), fmt::join(reference.ifRefTail, "")));
}

template <typename Spec> void DetailLines::AddBucket(std::string_view name, const Spec &spec)
{
    Add(name, fmt::format("rate {}, peak {}", RateText(NetFloat(Shown(spec.tokenRate))),
                          RateText(NetFloat(Shown(spec.peakRate)))));
    More(fmt::format("bucket {} B, smallest unit {} B, largest packet {} B", NetFloat(Shown(spec.bucketSize)),
                     Shown(spec.minPolicedUnit), Shown(spec.maxPacketSize)));
}

void DetailLines::AddTspec(const RSVP_MOR_SenderTspec &tspec)
{
    AddBucket("Sender Tspec", tspec);
}

void DetailLines::AddFlowSpec(const RSVP_MOR_FlowSpec &flowSpec)
{
    AddBucket("Flow spec", flowSpec);
    if (flowSpec.rspecParamLength != 0 || NetFloat(flowSpec.rspecRate) != 0)
        More(fmt::format("guaranteed {}, slack {} us", RateText(NetFloat(Shown(flowSpec.rspecRate))),
                         Shown(flowSpec.slackTerm)));
}

std::string DetailLines::ParametersText(std::span<const RSVP_MOR_AdspecParam> parameters)
{
    std::string text;
    for (const RSVP_MOR_AdspecParam &parameter : parameters) {
        if (IsThere(parameter)) {
            text += (text.empty() ? "" : ", ") + ParameterText(parameter);
            Shown(parameter.paramValue);
        }
    }
    return text;
}

void DetailLines::AddAdspec(const RSVP_MOR_Adspec &adspec)
{
    if (adspec.msgLength == 0 && adspec.generalLength == 0) {
        Add("Adspec", "none");
        return;
    }
    const auto bandwidth = std::bit_cast<float>(Shown(adspec.pathBandwidth.paramValue));
    const uint32_t latency = Shown(adspec.minPathLatency.paramValue);
    Add("Adspec", fmt::format("hops {}, path bandwidth {}, least latency {}, MTU {}",
                              Shown(adspec.hopCount.paramValue), BandwidthText(double{bandwidth} * 8),
                              latency == manager::kUnknownLatency ? "unknown" : fmt::format("{} us", latency),
                              Shown(adspec.composedMtu.paramValue)));
    // A service's fragment is left out if the sender did not put it there.
    const std::string terms = ParametersText(adspec.guaranteedParams);
    const std::string ofGuaranteed = ParametersText(adspec.guaranteedOverrides);
    const std::string ofLoad = ParametersText(adspec.loadOverrides);
    const char *const noTerms = "no terms of its own";
    if (adspec.guaranteedLength != 0 || !terms.empty() || !ofGuaranteed.empty())
        More(fmt::format("guaranteed service: {}{}{}", terms.empty() && ofGuaranteed.empty() ? noTerms : terms,
                         terms.empty() || ofGuaranteed.empty() ? "" : ", ", ofGuaranteed));
    if (adspec.loadLength != 0 || !ofLoad.empty())
        More(fmt::format("controlled load: {}", ofLoad.empty() ? noTerms : ofLoad));
}

void DetailLines::AddAttributes(const std::optional<manager::SessionAttributes> &attributes)
{
    if (!attributes) {
        Add("Priorities", "-");
        return;
    }
    Add("Priorities", fmt::format("setup {}, holding {}", attributes->setupPriority, attributes->holdingPriority));
    Add("Attributes", attributes->flags == 0
                          ? "none"
                          : fmt::format("{}", fmt::join(manager::SessionFlagWords(attributes->flags), ", ")));
}

void DetailLines::AddSessionAttribute(const RSVP_MOR_SessionAttr &attribute)
{
    const auto attributes = manager::AttributesOf(attribute);
    AddAttributes(attributes);
    if (!attributes)
        return;
    const RSVP_MOR_SessionAttrAffinity &full = Shown(attribute.affinityForm);
    Shown(attribute.shortForm);
    if (attribute.kind == RSVP_MOR_SESSION_ATTR_AFFINITY)
        Add("Affinities", fmt::format("exclude any {:#010x}, include any {:#010x}, include all {:#010x}",
                                      full.excludeAny, full.includeAny, full.includeAll));
}

void DetailLines::AddLabelRequest(const RSVP_MOR_LabelRequest &request)
{
    std::string text = manager::ProtocolText(Shown(request.l3pid));
    if (request.kind == RSVP_MOR_LABEL_REQUEST_ATM)
        text += fmt::format(", ATM VPI {} to {}, VCI {} to {}", manager::VpiOf(request.minVpi),
                            manager::VpiOf(request.maxVpi), request.minVci, request.maxVci);
    else if (request.kind == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY)
        text += fmt::format(", frame relay DLCI {} to {}", manager::DlciOf(request.minDlci),
                            manager::DlciOf(request.maxDlci));
    Add("Label request", text);
}

void DetailLines::AddStyle(const uint32_t &style)
{
    Add("Style", fmt::format("{} ({})", manager::StyleText(style), Shown(style)));
}

void DetailLines::AddHops(std::string_view name, std::span<const RSVP_MOR_HopEntry> hops)
{
    for (const std::string &hop : HopTexts(hops))
        Add(std::exchange(name, ""), hop);
}

void DetailLines::AddFields(std::string_view name, const manager::RecordDescription &description, const void *record,
                            const manager::RecordMeanings &meanings)
{
    Lines others;
    AddRecord(description, record, meanings, "", shown_, others);
    std::string line;
    const auto flush = [&] {
        if (!line.empty())
            Add(std::exchange(name, ""), line);
        line.clear();
    };
    for (auto &[path, value] : others) {
        std::replace(value.begin(), value.end(), '\n', ' ');
        std::erase(value, '\t');
        const std::string text = fmt::format("{}={}", path, value);
        if (!line.empty() && line.size() + text.size() > kValueWidth)
            flush();
        line += (line.empty() ? "" : "  ") + text;
    }
    flush();
}

} // namespace rsvpctl
