// Point-to-multipoint state for people.
#include "manager/record/text.h"
#include "tools/rsvpctl/view/detail_lines.h"
#include "tools/rsvpctl/view/views.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

void AddPathSide(DetailLines &lines, const RSVP_MOR_P2mpPathState &path, const RSVP_MOR_P2mpSubGroup &subGroup)
{
    lines.AddSession(path.session);
    lines.AddSender("Sender", subGroup.sender);
    lines.AddHop("Previous hop", path.hop);
    lines.AddInterface(path.ifRef);
    lines.AddSessionAttribute(path.sessionAttr);
    lines.AddTspec(path.tspec);
    lines.AddAdspec(path.adspec);
}

void AddResvSide(DetailLines &lines, const RSVP_MOR_P2mpResvState &resv)
{
    lines.AddSender("Filter", resv.filter);
    lines.AddFlowSpec(resv.flowSpec);
}

std::string P2mpTitle(const char *what, const RSVP_MOR_P2mpPathState &path, const RSVP_MOR_P2mpSubGroup &subGroup)
{
    return fmt::format("{} of P2MP {}, tunnel {}, LSP {}, sub-group {}", what, path.session.p2mpId,
                       path.session.tunnelId, subGroup.sender.lspId, subGroup.sender.subGroupId);
}

template <typename Block>
std::string P2mpDetail(const char *what, const Block &block, const manager::RecordMeanings &meanings)
{
    DetailLines lines(P2mpTitle(what, block.pathState, block.subGroup));
    AddPathSide(lines, block.pathState, block.subGroup);
    AddResvSide(lines, block.resvState);
    lines.AddHops("RRO", block.hopList);
    lines.AddOthers(block, meanings);
    return lines.Text();
}

std::string P2mpPsbDetail(const RSVP_MOR_P2mpPsbInfo &block, const manager::RecordMeanings &meanings)
{
    return P2mpDetail("Path state", block, meanings);
}

std::string P2mpRsbDetail(const RSVP_MOR_P2mpRsbInfo &block, const manager::RecordMeanings &meanings)
{
    return P2mpDetail("Reservation state", block, meanings);
}

template <typename Row> Columns StateColumns()
{
    Columns columns;
    columns.all = {
        NumberColumn<Row>("p2mpId", 10, [](const Row &row) -> uint64_t { return row.pathState.session.p2mpId; }),
        NumberColumn<Row>("tunnel", 5, [](const Row &row) -> uint64_t { return row.pathState.session.tunnelId; }),
        AddressColumn<Row>("sender", [](const Row &row) -> uint64_t { return row.subGroup.sender.senderAddress; }),
        NumberColumn<Row>("lsp", 5, [](const Row &row) -> uint64_t { return row.subGroup.sender.lspId; }),
        NumberColumn<Row>("subGroup", 5, [](const Row &row) -> uint64_t { return row.subGroup.sender.subGroupId; }),
        AddressColumn<Row>("hop", [](const Row &row) -> uint64_t { return row.pathState.hop.hopAddress; }),
        BandwidthColumn<Row>([](const Row &row) { return manager::NetFloat(row.pathState.tspec.tokenRate); }),
        AddressColumn<Row>("extendedId",
                           [](const Row &row) -> uint64_t { return row.pathState.session.extendedTunnelId; })};
    return columns;
}

} // namespace

const RowView kP2mpPsbView{StateColumns<RSVP_MOR_P2mpPsbInfo>, ShowRow<RSVP_MOR_P2mpPsbInfo, P2mpPsbDetail>};
const RowView kP2mpRsbView{StateColumns<RSVP_MOR_P2mpRsbInfo>, ShowRow<RSVP_MOR_P2mpRsbInfo, P2mpRsbDetail>};

} // namespace rsvpctl
