// Path, reservation and previous hop state for people.
#include "manager/dictionary/standard.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/view/detail_lines.h"
#include "tools/rsvpctl/view/views.h"
#include "tools/rsvpctl/view/words.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

using manager::DottedText, manager::NetFloat;

template <typename Row> void AddSessionColumns(Columns &columns)
{
    columns.all.push_back(
        AddressColumn<Row>("endPoint", [](const Row &row) -> uint64_t { return row.session.tunnelEndpoint; }));
    columns.all.push_back(
        NumberColumn<Row>("tunnel", 5, [](const Row &row) -> uint64_t { return row.session.tunnelId; }));
}

template <typename Row> Column ExtendedIdColumn()
{
    return AddressColumn<Row>("extendedId", [](const Row &row) -> uint64_t { return row.session.extendedTunnelId; });
}

template <typename Row, RSVP_MOR_Sender Row::*Member> void AddSenderColumns(Columns &columns)
{
    columns.all.push_back(
        AddressColumn<Row>("sender", [](const Row &row) -> uint64_t { return (row.*Member).senderAddress; }));
    columns.all.push_back(
        NumberColumn<Row>("lsp", 5, [](const Row &row) -> uint64_t { return (row.*Member).lspId; }));
}

template <typename Row> Column HopColumn(const char *name)
{
    return AddressColumn<Row>(name, [](const Row &row) -> uint64_t { return row.hop.hopAddress; });
}

template <typename Row> Column StyleColumn()
{
    return ViewColumn<Row>("style", 5, [](const Row &row) { return manager::StyleText(row.style); });
}

void AddFilters(DetailLines &lines, const RSVP_MOR_ReplyFSInfo *filter)
{
    for (; filter != nullptr; filter = filter->next) {
        lines.Add("Filter", fmt::format("{}, LSP {}, label {}", DottedText(filter->filter.senderAddress),
                                        filter->filter.lspId, manager::LabelText(filter->label)));
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

std::string PrioritiesText(const RSVP_MOR_ReplyPsb &block)
{
    const auto attributes = manager::AttributesOf(block.sessionAttr);
    return attributes ? fmt::format("{}/{}", attributes->setupPriority, attributes->holdingPriority) : "-";
}

Columns PsbColumns()
{
    using Row = RSVP_MOR_ReplyPsb;
    Columns columns;
    AddSessionColumns<Row>(columns);
    AddSenderColumns<Row, &Row::sender>(columns);
    columns.all.push_back(HopColumn<Row>("previousHop"));
    columns.all.push_back(BandwidthColumn<Row>([](const Row &row) { return NetFloat(row.tspec.tokenRate); }));
    columns.all.push_back(ViewColumn<Row>("priorities", 3, PrioritiesText));
    columns.all.push_back(ExtendedIdColumn<Row>());
    return columns;
}

std::string PsbDetail(const RSVP_MOR_ReplyPsb &block, const manager::RecordMeanings &meanings)
{
    DetailLines lines(fmt::format("Path state of tunnel {} to {}, LSP {}", block.session.tunnelId,
                                  DottedText(block.session.tunnelEndpoint), block.sender.lspId));
    lines.AddSession(block.session);
    lines.AddSender("Sender", block.sender);
    lines.AddHop("Previous hop", block.hop);
    lines.AddInterface(block.ifRef);
    lines.AddLabelRequest(block.labelRequest);
    lines.AddSessionAttribute(block.sessionAttr);
    lines.AddTspec(block.tspec);
    lines.AddAdspec(block.adspec);
    lines.AddHops("RRO", block.hopList);
    lines.AddOthers(block, meanings);
    return lines.Text();
}

Columns RsbColumns()
{
    using Row = RSVP_MOR_ReplyRsb;
    Columns columns;
    AddSessionColumns<Row>(columns);
    AddSenderColumns<Row, &Row::filter>(columns);
    columns.all.push_back(HopColumn<Row>("nextHop"));
    columns.all.push_back(BandwidthColumn<Row>([](const Row &row) { return NetFloat(row.flowSpec.tokenRate); }));
    columns.all.push_back(StyleColumn<Row>());
    columns.all.push_back(ViewColumn<Row>("label", 7, [](const Row &row) { return LabelsText(row.fsList); }));
    columns.all.push_back(ExtendedIdColumn<Row>());
    return columns;
}

std::string RsbDetail(const RSVP_MOR_ReplyRsb &block, const manager::RecordMeanings &meanings)
{
    DetailLines lines(fmt::format("Reservation state of tunnel {} to {}, LSP {}", block.session.tunnelId,
                                  DottedText(block.session.tunnelEndpoint), block.filter.lspId));
    lines.AddSession(block.session);
    lines.AddSender("Sender", block.filter);
    lines.AddHop("Next hop", block.hop);
    lines.AddInterface(block.ifRef);
    lines.AddStyle(block.style);
    lines.AddFlowSpec(block.flowSpec);
    AddFilters(lines, lines.Shown(block.fsList));
    lines.AddOthers(block, meanings);
    return lines.Text();
}

// A block may have many flow descriptors: the line shows the first one's bandwidth and the labels of all.
std::string LabelsOfAll(const RSVP_MOR_ReplyPhsb &block)
{
    std::string labels;
    for (const RSVP_MOR_ReplyFDInfo *flow = block.fdList; flow != nullptr; flow = flow->next)
        labels += (labels.empty() ? "" : ";") + LabelsText(flow->fsList);
    return labels.empty() ? "-" : labels;
}

Columns PhsbColumns()
{
    using Row = RSVP_MOR_ReplyPhsb;
    Columns columns;
    AddSessionColumns<Row>(columns);
    columns.all.push_back(HopColumn<Row>("previousHop"));
    columns.all.push_back(BandwidthColumn<Row>(
        [](const Row &row) { return row.fdList == nullptr ? 0.0F : NetFloat(row.fdList->flowSpec.tokenRate); }));
    columns.all.push_back(StyleColumn<Row>());
    columns.all.push_back(ViewColumn<Row>("label", 7, LabelsOfAll));
    columns.all.push_back(ExtendedIdColumn<Row>());
    return columns;
}

std::string PhsbDetail(const RSVP_MOR_ReplyPhsb &block, const manager::RecordMeanings &meanings)
{
    DetailLines lines(fmt::format("Previous hop state of tunnel {} to {}", block.session.tunnelId,
                                  DottedText(block.session.tunnelEndpoint)));
    lines.AddSession(block.session);
    lines.AddHop("Previous hop", block.hop);
    lines.AddInterface(block.ifRef);
    lines.AddStyle(block.style);
    for (const RSVP_MOR_ReplyFDInfo *flow = lines.Shown(block.fdList); flow != nullptr; flow = flow->next) {
        lines.AddFlowSpec(flow->flowSpec);
        AddFilters(lines, flow->fsList);
    }
    lines.AddOthers(block, meanings);
    return lines.Text();
}

} // namespace

const RowView kPsbView{PsbColumns, ShowRow<RSVP_MOR_ReplyPsb, PsbDetail>};
const RowView kRsbView{RsbColumns, ShowRow<RSVP_MOR_ReplyRsb, RsbDetail>};
const RowView kPhsbView{PhsbColumns, ShowRow<RSVP_MOR_ReplyPhsb, PhsbDetail>};

} // namespace rsvpctl
