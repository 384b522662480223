// Every `show`, described once: what it reads, how a row looks, what it can be asked for. The commands, the schema
// and `watch` are made of these descriptions.
#ifndef TOOLS_RSVPCTL_SHOW_SHOWS_H
#define TOOLS_RSVPCTL_SHOW_SHOWS_H

#include "manager/table/table.h"
#include "tools/rsvpctl/print/output.h"
#include "tools/rsvpctl/show/lsp_filters.h"
#include "tools/rsvpctl/view/views.h"

#include <span>
#include <string_view>
#include <vector>

namespace rsvpctl {

struct ShowSpec {
    const char *words; // without "show"
    const char *help;
    const manager::Table *table = nullptr;        // null for `counters`, which is four numbers of four reads
    const RowView *view = nullptr;                // null: what the dictionary says
    RowFilter takes = nullptr;                    // not null: rows can be chosen by tunnel, LSP, end point and sender
    const manager::Table *ingressTable = nullptr; // what --ingress reads instead
    const char *keyExample = nullptr;             // of a row of the demo's; null for what has no key
    std::vector<const char *> aliases = {};       // other names of the last word

    bool HasRows() const { return table != nullptr && table->next.function != nullptr; }
    bool IsBlock() const { return table != nullptr && table->ask != nullptr; } // read by its key alone
    bool HasRecord() const { return table == nullptr || table->get.function != nullptr; }
};

/** The columns of a show's table and the detail view of its rows, in the words of this run's dictionary. */
Columns ColumnsOf(const ShowSpec &show);
DetailView DetailOf(const ShowSpec &show);

std::span<const ShowSpec> AllShows();

/** The show with these words; there is one. */
const ShowSpec &ShowNamed(std::string_view words);

} // namespace rsvpctl

#endif
