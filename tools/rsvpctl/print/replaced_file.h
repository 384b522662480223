// A file that other programs read at any moment is replaced, never written into: they see the old text or the new
// one.
#ifndef TOOLS_RSVPCTL_PRINT_REPLACED_FILE_H
#define TOOLS_RSVPCTL_PRINT_REPLACED_FILE_H

#include <string>
#include <string_view>

namespace rsvpctl {

/** Puts the text in the place of a file, which every user may read then. Throws std::system_error, or
 * UsageError for a device, a pipe or a folder, and then the file is what it was before. No signal but SIGKILL leaves
 * anything beside it. */
void ReplaceFile(const std::string &path, std::string_view text);

} // namespace rsvpctl

#endif
