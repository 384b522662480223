// An LSP as a whole, for people and for programs.
#ifndef TOOLS_RSVPCTL_VIEW_LSP_VIEW_H
#define TOOLS_RSVPCTL_VIEW_LSP_VIEW_H

#include "manager/lsp/lsp.h"
#include "tools/rsvpctl/view/columns.h"

namespace rsvpctl {

/** The columns of rows that are LSPs, each a manager::Lsp. */
Columns LspColumns();

/** All of one LSP, a screen. */
std::string LspText(const manager::Lsp &lsp, const manager::Dictionary &dictionary);

manager::Json ToJson(const manager::Lsp &lsp, const manager::Dictionary &dictionary);

} // namespace rsvpctl

#endif
