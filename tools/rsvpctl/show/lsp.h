// What `watch` must know of `show lsp`, whose rows are of no table.
#ifndef TOOLS_RSVPCTL_SHOW_LSP_H
#define TOOLS_RSVPCTL_SHOW_LSP_H

#include "tools/rsvpctl/command/options.h"

#include <string>
#include <vector>

namespace rsvpctl {

class CommandLine;

/** `show lsp` below a group of shows. */
void AddLspCommand(CommandLine &line, Node parent);

/** The members of a row's document that name an LSP. */
extern const std::vector<std::string> kLspKeyMembers;

} // namespace rsvpctl

#endif
