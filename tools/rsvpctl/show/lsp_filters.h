// Which LSPs a user wants to see: by tunnel, LSP, end point and sender. A block that holds many senders is cut down
// to those that match.
#ifndef TOOLS_RSVPCTL_SHOW_LSP_FILTERS_H
#define TOOLS_RSVPCTL_SHOW_LSP_FILTERS_H

#include "manager/lsp/lsp.h"

#include <cstdint>
#include <optional>
#include <rsvp_mor.h>

namespace rsvpctl {

struct LspFilter {
    std::optional<uint32_t> tunnelId;
    std::optional<uint32_t> lspId;
    std::optional<uint32_t> endPoint;
    std::optional<uint32_t> sender;

    bool TakesSession(const RSVP_MOR_Session &session) const;
    bool TakesSender(const RSVP_MOR_Sender &which) const;
    bool TakesIdentity(const manager::LspIdentity &which) const;
    bool AsksForSender() const { return lspId || sender; }

    /** Throws UsageError if CR-LSPs are to be chosen by something that the dictionary has no name for. */
    void CheckNames() const;
};

/** Whether the row is wanted. Filter specs that are not wanted are taken out of the row and released. */
bool Takes(const LspFilter &filter, RSVP_MOR_ReplyPsb &row);
bool Takes(const LspFilter &filter, RSVP_MOR_ReplyRsb &row);
bool Takes(const LspFilter &filter, RSVP_MOR_ReplyPhsb &row);
bool Takes(const LspFilter &filter, RSVP_MOR_ReplyCrlsp &row); // by the names of the dictionary

/** The same for a row whose type a description knows. */
using RowFilter = bool (*)(const LspFilter &filter, void *row);
template <typename Row> bool TakesRow(const LspFilter &filter, void *row)
{
    return Takes(filter, *static_cast<Row *>(row));
}

} // namespace rsvpctl

#endif
