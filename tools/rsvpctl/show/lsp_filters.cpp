// The filters on rows that have been read. Nodes that are not wanted are unlinked first, since their release
// functions do not follow links.
#include "tools/rsvpctl/show/lsp_filters.h"

#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <algorithm>
#include <fmt/format.h>
#include <vector>

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

/** What a CR-LSP can be chosen by, and the name by which a dictionary has it. */
struct CrlspName {
    std::optional<uint32_t> LspFilter::*wanted;
    const char *name;
    manager::NamedValue value;
};

const std::vector<CrlspName> &CrlspNames()
{
    const auto named = [](const char *name) {
        const auto &record = manager::Describe<RSVP_MOR_ReplyCrlsp>();
        return manager::NamedValue(record, Names().Of(record), name);
    };
    static const std::vector<CrlspName> names{{&LspFilter::tunnelId, "tunnelId", named("tunnelId")},
                                              {&LspFilter::lspId, "lspId", named("lspId")},
                                              {&LspFilter::endPoint, "endPoint", named("endPoint")},
                                              {&LspFilter::sender, "sender", named("sender")}};
    return names;
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

bool LspFilter::TakesIdentity(const manager::LspIdentity &which) const
{
    return Matches(tunnelId, which.tunnelId) && Matches(lspId, which.lspId) && Matches(endPoint, which.endPoint) &&
           Matches(sender, which.sender);
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
    return std::all_of(CrlspNames().begin(), CrlspNames().end(), [&](const CrlspName &one) {
        const auto &wanted = filter.*one.wanted;
        return !wanted || *wanted == one.value.NumberIn(&row);
    });
}

void LspFilter::CheckNames() const
{
    for (const CrlspName &one : CrlspNames()) {
        if (this->*one.wanted && !one.value)
            throw UsageError(fmt::format("the dictionary has no name '{}' for CR-LSPs", one.name));
    }
}

} // namespace rsvpctl
