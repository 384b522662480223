// The options of shows with rows: how the rows are arranged, and which LSPs are wanted.
#ifndef TOOLS_RSVPCTL_SHOW_ROW_OPTIONS_H
#define TOOLS_RSVPCTL_SHOW_ROW_OPTIONS_H

#include "tools/rsvpctl/command/options.h"
#include "tools/rsvpctl/print/output.h"
#include "tools/rsvpctl/show/lsp_filters.h"

#include <array>

namespace rsvpctl {

struct ArrangeOptions {
    Option columns;
    Option sort;
    Option limit;
    Option noHeaders;

    std::array<Option, 4> All() const { return {columns, sort, limit, noHeaders}; }
};

ArrangeOptions AddArrangeOptions(const Node &node);

/** Arranges a form that has all columns. Throws UsageError. */
void Arrange(const Output &out, const ArrangeOptions &options, RowForm &form);

/** What an LSP can be chosen by in every table that tells of LSPs; not given where a table does not. */
struct LspOptions {
    Option tunnelId;
    Option lspId;
    Option endPoint;
    Option sender;
};

LspOptions AddLspOptions(const Node &node);

LspFilter FilterOf(const LspOptions &options);

} // namespace rsvpctl

#endif
