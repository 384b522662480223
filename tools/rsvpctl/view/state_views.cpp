// Path, reservation and previous hop state for people. Columns are as wide as their widest value, an address or a
// number, and what may be longer comes last.
#include "manager/record/text.h"
#include "tools/rsvpctl/view/detail_lines.h"
#include "tools/rsvpctl/view/views.h"
#include "tools/rsvpctl/view/words.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

using manager::Describe, manager::DottedText, manager::NetFloat;

constexpr auto kSessionColumns = "{:<15}  {:>6}  {:<15}";

std::string SessionHeader()
{
    return fmt::format(kSessionColumns, "END POINT", "TUNNEL", "EXTENDED ID");
}

std::string SessionCells(const RSVP_MOR_Session &session)
{
    return fmt::format(kSessionColumns, AddressText(session.tunnelEndpoint), session.tunnelId,
                       AddressText(session.extendedTunnelId));
}

std::string SessionText(const RSVP_MOR_Session &session)
{
    return fmt::format("end point {}, tunnel {}, extended tunnel {}", DottedText(session.tunnelEndpoint),
                       session.tunnelId, DottedText(session.extendedTunnelId));
}

std::string SenderText(const RSVP_MOR_Sender &sender)
{
    return fmt::format("{}, LSP {}", DottedText(sender.senderAddress), sender.lspId);
}

bool IsThere(const RSVP_MOR_Sender &sender)
{
    return sender.senderAddress != 0 || sender.lspId != 0;
}

bool IsThere(const RSVP_MOR_PsbSlot &slot)
{
    return IsThere(slot.slotSender) || slot.slotByte != 0 || slot.slotWords[0] != 0 || slot.slotWords[1] != 0 ||
           slot.slotWords[2] != 0;
}

void AddFilters(DetailLines &lines, const RSVP_MOR_ReplyFSInfo *filter)
{
    for (; filter != nullptr; filter = filter->next) {
        lines.Add("Filter", fmt::format("{}, label {}", SenderText(filter->filter), LabelText(filter->label)));
        lines.AddHops("  RRO", filter->rro);
    }
}

std::string LabelsText(const RSVP_MOR_ReplyFSInfo *filter)
{
    std::string text;
    for (; filter != nullptr; filter = filter->next)
        text += fmt::format("{}{}", text.empty() ? "" : ",", filter->label);
    return text.empty() ? "-" : text;
}

std::string PsbHeader()
{
    return fmt::format("{}  {:<15}  {:>5}  {:<15}  {:<4}  {}", SessionHeader(), "SENDER", "LSP", "PREVIOUS HOP",
                       "PRIO", "BANDWIDTH");
}

std::string PsbBrief(const RSVP_MOR_ReplyPsb &block)
{
    const RSVP_MOR_SessionAttr &attribute = block.sessionAttr;
    const bool full = attribute.kind == RSVP_MOR_SESSION_ATTR_AFFINITY;
    return fmt::format(
        "{}  {:<15}  {:>5}  {:<15}  {:<4}  {}\n", SessionCells(block.session),
        AddressText(block.sender.senderAddress), block.sender.lspId, AddressText(block.hop.hopAddress),
        fmt::format("{}/{}", full ? attribute.affinityForm.setupPriority : attribute.shortForm.setupPriority,
                    full ? attribute.affinityForm.holdingPriority : attribute.shortForm.holdingPriority),
        BandwidthText(NetFloat(block.tspec.tokenRate)));
}

std::string PsbDetail(const RSVP_MOR_ReplyPsb &block)
{
    DetailLines lines(fmt::format("Path state of tunnel {} to {}, LSP {}", block.session.tunnelId,
                                  DottedText(block.session.tunnelEndpoint), block.sender.lspId));
    lines.Add("Session", SessionText(block.session));
    lines.Add("Sender", SenderText(block.sender));
    if (IsThere(block.secondSender))
        lines.Add("Second sender", SenderText(block.secondSender));
    lines.AddHop("Previous hop", block.hop);
    lines.AddInterface(block.ifRef);
    lines.AddLabelRequest(block.labelRequest);
    lines.AddSessionAttribute(block.sessionAttr);
    lines.AddTspec(block.tspec);
    lines.AddAdspec(block.adspec);
    lines.AddRoute("ERO received", block.routeList3);
    lines.AddRoute("ERO sent", block.routeList4);
    lines.AddRoute("Computed route", block.routeList5);
    lines.AddRoute("Bypass route", block.routeList6);
    lines.AddHops("RRO", block.hopList);
    for (const RSVP_MOR_PsbSlot &slot : block.slots) {
        if (IsThere(slot))
            lines.Add("Sender slot",
                      fmt::format("{}, numbers {} {} {}, byte {}", SenderText(slot.slotSender), slot.slotWords[0],
                                  slot.slotWords[1], slot.slotWords[2], slot.slotByte));
    }
    lines.AddOthers(Describe<RSVP_MOR_ReplyPsb>(), &block, {});
    return lines.Text();
}

std::string RsbHeader()
{
    return fmt::format("{}  {:<15}  {:>5}  {:<15}  {:<5}  {:<10}  {}", SessionHeader(), "SENDER", "LSP", "NEXT HOP",
                       "STYLE", "BANDWIDTH", "LABEL");
}

std::string RsbBrief(const RSVP_MOR_ReplyRsb &block)
{
    return fmt::format("{}  {:<15}  {:>5}  {:<15}  {:<5}  {:<10}  {}\n", SessionCells(block.session),
                       AddressText(block.filter.senderAddress), block.filter.lspId, AddressText(block.hop.hopAddress),
                       StyleText(block.style), BandwidthText(NetFloat(block.flowSpec.tokenRate)),
                       LabelsText(block.fsList));
}

constexpr std::string_view kStyleField[] = {"style"};

std::string RsbDetail(const RSVP_MOR_ReplyRsb &block)
{
    DetailLines lines(fmt::format("Reservation state of tunnel {} to {}, LSP {}", block.session.tunnelId,
                                  DottedText(block.session.tunnelEndpoint), block.filter.lspId));
    lines.Add("Session", SessionText(block.session));
    lines.Add("Sender", SenderText(block.filter));
    lines.AddHop("Next hop", block.hop);
    lines.AddInterface(block.ifRef);
    lines.Add("Style", fmt::format("{} ({})", StyleText(block.style), block.style));
    lines.AddFlowSpec(block.flowSpec);
    AddFilters(lines, block.fsList);
    lines.AddOthers(Describe<RSVP_MOR_ReplyRsb>(), &block, kStyleField);
    return lines.Text();
}

std::string PhsbHeader()
{
    return fmt::format("{}  {:<15}  {:<5}  {:<10}  {}", SessionHeader(), "PREVIOUS HOP", "STYLE", "BANDWIDTH",
                       "LABEL");
}

// A block may have many flow descriptors: the line shows the first one's bandwidth and the labels of all.
std::string PhsbBrief(const RSVP_MOR_ReplyPhsb &block)
{
    std::string labels;
    for (const RSVP_MOR_ReplyFDInfo *flow = block.fdList; flow != nullptr; flow = flow->next)
        labels += (labels.empty() ? "" : ";") + LabelsText(flow->fsList);
    return fmt::format("{}  {:<15}  {:<5}  {:<10}  {}\n", SessionCells(block.session),
                       AddressText(block.hop.hopAddress), StyleText(block.style),
                       block.fdList == nullptr ? "-" : BandwidthText(NetFloat(block.fdList->flowSpec.tokenRate)),
                       labels.empty() ? "-" : labels);
}

std::string PhsbDetail(const RSVP_MOR_ReplyPhsb &block)
{
    DetailLines lines(fmt::format("Previous hop state of tunnel {} to {}", block.session.tunnelId,
                                  DottedText(block.session.tunnelEndpoint)));
    lines.Add("Session", SessionText(block.session));
    lines.AddHop("Previous hop", block.hop);
    lines.AddInterface(block.ifRef);
    lines.Add("Style", fmt::format("{} ({})", StyleText(block.style), block.style));
    for (const RSVP_MOR_ReplyFDInfo *flow = block.fdList; flow != nullptr; flow = flow->next) {
        lines.AddFlowSpec(flow->flowSpec);
        AddFilters(lines, flow->fsList);
    }
    lines.AddOthers(Describe<RSVP_MOR_ReplyPhsb>(), &block, kStyleField);
    return lines.Text();
}

} // namespace

const RowView kPsbView{PsbHeader, ShowRow<RSVP_MOR_ReplyPsb, PsbBrief>, ShowRow<RSVP_MOR_ReplyPsb, PsbDetail>};
const RowView kRsbView{RsbHeader, ShowRow<RSVP_MOR_ReplyRsb, RsbBrief>, ShowRow<RSVP_MOR_ReplyRsb, RsbDetail>};
const RowView kPhsbView{PhsbHeader, ShowRow<RSVP_MOR_ReplyPhsb, PhsbBrief>, ShowRow<RSVP_MOR_ReplyPhsb, PhsbDetail>};

} // namespace rsvpctl
