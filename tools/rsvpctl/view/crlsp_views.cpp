// CR-LSPs and point-to-multipoint state for people. What the numbered words of a CR-LSP hold is the daemon's choice:
// end point, extended tunnel and sender in the key, the neighbouring hops in the path group.
#include "manager/record/text.h"
#include "tools/rsvpctl/view/detail_lines.h"
#include "tools/rsvpctl/view/views.h"
#include "tools/rsvpctl/view/words.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

using manager::Describe, manager::DottedText, manager::PrintableText;

constexpr auto kCrlspColumns = "{:<15}  {:>6}  {:>5}  {:<15}  {:<15}  {:<15}  {:<10}  {}";

std::string NameText(const char *name)
{
    return name == nullptr ? "-" : PrintableText(name);
}

std::string CrlspHeader()
{
    return fmt::format(kCrlspColumns, "END POINT", "TUNNEL", "LSP", "SENDER", "PREVIOUS HOP", "NEXT HOP", "BANDWIDTH",
                       "NAME");
}

std::string CrlspBrief(const RSVP_MOR_ReplyCrlsp &record)
{
    return fmt::format(kCrlspColumns, AddressText(record.key.keyWord0), record.key.keyShort0, record.key.keyShort1,
                       AddressText(record.key.keyWord2), AddressText(record.path.pathWord0),
                       AddressText(record.path.pathWord1), BandwidthText(record.traffic.trafficRate0),
                       NameText(record.name)) +
           "\n";
}

void AddTraffic(DetailLines &lines, const RSVP_MOR_CrlspTraffic &traffic)
{
    lines.Add("Traffic", fmt::format("rate {} B/s ({}), peak {} B/s ({})", traffic.trafficRate0,
                                     BandwidthText(traffic.trafficRate0), traffic.trafficRate1,
                                     BandwidthText(traffic.trafficRate1)));
}

// What the views show in words, and the name, which is not a number.
constexpr std::string_view kInWords[] = {"keyWord0",     "keyWord1",     "keyWord2",  "keyShort0", "keyShort1",
                                         "trafficRate0", "trafficRate1", "pathWord0", "pathWord1", "name"};

constexpr std::string_view kCrlspGroups[] = {"key", "path", "traffic"};
constexpr std::string_view kP2mpCrlspGroups[] = {"key", "traffic"};
constexpr std::string_view kStateGroups[] = {"pathState", "resvState", "subGroup"};

std::string CrlspDetail(const RSVP_MOR_ReplyCrlsp &record)
{
    DetailLines lines(fmt::format("CR-LSP {}, tunnel {} to {}, LSP {}", NameText(record.name), record.key.keyShort0,
                                  DottedText(record.key.keyWord0), record.key.keyShort1));
    lines.Add("Session", fmt::format("end point {}, tunnel {}, extended tunnel {}", DottedText(record.key.keyWord0),
                                     record.key.keyShort0, DottedText(record.key.keyWord1)));
    lines.Add("Sender", fmt::format("{}, LSP {}", DottedText(record.key.keyWord2), record.key.keyShort1));
    lines.Add("Previous hop", AddressText(record.path.pathWord0));
    lines.Add("Next hop", AddressText(record.path.pathWord1));
    AddTraffic(lines, record.traffic);
    lines.AddHops("Route", record.hopList);
    lines.AddOthers(Describe<RSVP_MOR_ReplyCrlsp>(), &record, kInWords, kCrlspGroups);
    return lines.Text();
}

std::string P2mpSenderText(const RSVP_MOR_P2mpSender &sender)
{
    return fmt::format("{}, LSP {}, sub-group {} of {}", DottedText(sender.senderAddress), sender.lspId,
                       sender.subGroupId, DottedText(sender.subGroupOriginator));
}

bool IsThere(const RSVP_MOR_P2mpSender &sender)
{
    return sender.senderAddress != 0 || sender.lspId != 0 || sender.subGroupId != 0;
}

void AddPathSide(DetailLines &lines, const RSVP_MOR_P2mpPathState &path, const RSVP_MOR_P2mpSubGroup &subGroup)
{
    lines.Add("Session", fmt::format("P2MP {}, tunnel {}, extended tunnel {}", path.session.p2mpId,
                                     path.session.tunnelId, DottedText(path.session.extendedTunnelId)));
    lines.Add("Sender", P2mpSenderText(subGroup.sender));
    lines.AddHop("Previous hop", path.hop);
    lines.AddInterface(path.ifRef);
    lines.AddSessionAttribute(path.sessionAttr);
    lines.AddTspec(path.tspec);
    lines.AddAdspec(path.adspec);
}

void AddResvSide(DetailLines &lines, const RSVP_MOR_P2mpResvState &resv)
{
    lines.Add("Filter", P2mpSenderText(resv.filter));
    lines.AddFlowSpec(resv.flowSpec);
}

template <typename Block> void AddStateOthers(DetailLines &lines, const Block &block)
{
    lines.AddOthers(Describe<Block>(), &block, {}, kStateGroups);
}

std::string P2mpTitle(const char *what, const RSVP_MOR_P2mpPathState &path, const RSVP_MOR_P2mpSubGroup &subGroup)
{
    return fmt::format("{} of P2MP {}, tunnel {}, LSP {}, sub-group {}", what, path.session.p2mpId,
                       path.session.tunnelId, subGroup.sender.lspId, subGroup.sender.subGroupId);
}

std::string P2mpPsbDetail(const RSVP_MOR_P2mpPsbInfo &block)
{
    DetailLines lines(P2mpTitle("Path state", block.pathState, block.subGroup));
    AddPathSide(lines, block.pathState, block.subGroup);
    if (IsThere(block.secondSender))
        lines.Add("Second sender", P2mpSenderText(block.secondSender));
    AddResvSide(lines, block.resvState);
    lines.AddRoute("ERO sent", block.routeList4);
    lines.AddRoute("Computed route", block.routeList5);
    lines.AddRoute("Bypass route", block.routeList6);
    lines.AddHops("RRO", block.hopList);
    for (const RSVP_MOR_P2mpPsbSlot &slot : block.slots) {
        if (IsThere(slot.slotSender))
            lines.Add("Sender slot",
                      fmt::format("{}, numbers {} {} {}, byte {}", P2mpSenderText(slot.slotSender), slot.slotWords[0],
                                  slot.slotWords[1], slot.slotWords[2], slot.slotByte));
    }
    AddStateOthers(lines, block);
    return lines.Text();
}

std::string P2mpRsbDetail(const RSVP_MOR_P2mpRsbInfo &block)
{
    DetailLines lines(P2mpTitle("Reservation state", block.pathState, block.subGroup));
    AddPathSide(lines, block.pathState, block.subGroup);
    AddResvSide(lines, block.resvState);
    lines.AddHops("RRO", block.hopList);
    AddStateOthers(lines, block);
    return lines.Text();
}

std::string P2mpCrlspDetail(const RSVP_MOR_P2mpCrlspInfo &record)
{
    DetailLines lines(fmt::format("P2MP CR-LSP {}, P2MP {}, tunnel {}, LSP {}", NameText(record.name),
                                  record.key.keyWord0, record.key.keyShort0, record.key.keyShort1));
    lines.Add("Session", fmt::format("P2MP {}, tunnel {}, extended tunnel {}", record.key.keyWord0,
                                     record.key.keyShort0, DottedText(record.key.keyWord1)));
    lines.Add("Sender", fmt::format("{}, LSP {}", DottedText(record.key.keyWord2), record.key.keyShort1));
    AddTraffic(lines, record.traffic);
    lines.AddOthers(Describe<RSVP_MOR_P2mpCrlspInfo>(), &record, kInWords, kP2mpCrlspGroups);
    for (const RSVP_MOR_P2mpRro *sub = record.rroHead; sub != nullptr; sub = sub->next) {
        lines.Add(
            fmt::format("Sub-LSP {}", sub->subShort),
            fmt::format("to {}, first hop {}", DottedText(sub->path.pathWord0), AddressText(sub->path.pathWord1)));
        lines.AddHops("  RRO", sub->hopList);
    }
    return lines.Text();
}

} // namespace

const RowView kCrlspView{CrlspHeader, ShowRow<RSVP_MOR_ReplyCrlsp, CrlspBrief>,
                         ShowRow<RSVP_MOR_ReplyCrlsp, CrlspDetail>};
const RowView kP2mpPsbView{.detail = ShowRow<RSVP_MOR_P2mpPsbInfo, P2mpPsbDetail>};
const RowView kP2mpRsbView{.detail = ShowRow<RSVP_MOR_P2mpRsbInfo, P2mpRsbDetail>};
const RowView kP2mpCrlspView{.detail = ShowRow<RSVP_MOR_P2mpCrlspInfo, P2mpCrlspDetail>};

} // namespace rsvpctl
