// The filters on rows that have been read. Nodes that are not wanted are unlinked first, since their release
// functions do not follow links.
#include "tools/rsvpctl/show/lsp_filters.h"

namespace rsvpctl {
namespace {

bool Matches(const std::optional<uint32_t> &wanted, uint32_t value)
{
    return !wanted || *wanted == value;
}

// Unlinks and releases the nodes of a chain that `keep` refuses.
template <typename Node, typename Keep> void Prune(Node **link, void (*release)(Node *), Keep keep)
{
    while (*link != nullptr) {
        if (keep(**link)) {
            link = &(*link)->next;
            continue;
        }
        Node *node = *link;
        *link = node->next;
        release(node);
    }
}

void PruneFilterSpecs(const LspFilter &filter, RSVP_MOR_ReplyFSInfo **list)
{
    Prune(list, rsvp_mor_FreeReplyFSInfo,
          [&](const RSVP_MOR_ReplyFSInfo &node) { return filter.TakesSender(node.filter); });
}

} // namespace

bool LspFilter::TakesSession(const RSVP_MOR_Session &session) const
{
    return Matches(tunnelId, session.tunnelId) && Matches(endPoint, session.tunnelEndpoint);
}

bool LspFilter::TakesSender(const RSVP_MOR_Sender &which) const
{
    return Matches(lspId, which.lspId) && Matches(sender, which.senderAddress);
}

bool Takes(const LspFilter &filter, RSVP_MOR_ReplyPsb &row)
{
    return filter.TakesSession(row.session) && filter.TakesSender(row.sender);
}

bool Takes(const LspFilter &filter, RSVP_MOR_ReplyRsb &row)
{
    if (!filter.TakesSession(row.session))
        return false;
    PruneFilterSpecs(filter, &row.fsList);
    return row.fsList != nullptr || filter.TakesSender(row.filter);
}

// A previous hop has no sender of its own, only those of its flow descriptors.
bool Takes(const LspFilter &filter, RSVP_MOR_ReplyPhsb &row)
{
    if (!filter.TakesSession(row.session))
        return false;
    if (!filter.AsksForSender())
        return true;
    Prune(&row.fdList, rsvp_mor_FreeReplyFDInfo, [&](RSVP_MOR_ReplyFDInfo &flow) {
        PruneFilterSpecs(filter, &flow.fsList);
        return flow.fsList != nullptr;
    });
    return row.fdList != nullptr;
}

bool Takes(const LspFilter &filter, RSVP_MOR_ReplyCrlsp &row)
{
    return Matches(filter.tunnelId, row.key.keyShort0) && Matches(filter.lspId, row.key.keyShort1) &&
           Matches(filter.endPoint, row.key.keyWord0) && Matches(filter.sender, row.key.keyWord2);
}

} // namespace rsvpctl
