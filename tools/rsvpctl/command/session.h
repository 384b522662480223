// A command's session to the daemon, and the reads that print one record.
#ifndef TOOLS_RSVPCTL_COMMAND_SESSION_H
#define TOOLS_RSVPCTL_COMMAND_SESSION_H

#include "manager/table/table.h"
#include "tools/rsvpctl/print/output.h"

#include <functional>

namespace rsvpctl {

/** Runs `use` on a session and closes it, or says that there is none. A function that opens a session of
 * its own is `held` = false and gets -1. */
Exit WithSession(Output &out, const std::string &operation, bool held, const std::function<Exit(int32_t fd)> &use);

/** Lets `read` read one record of a table into zeroed memory, lets `print` print it and releases it. `asked` is the
 * key in words, empty for a table that has none. */
Exit WithRecord(Output &out, const std::string &operation, const manager::Table &table, const std::string &asked,
                const std::function<uint32_t(int32_t fd, void *record)> &read,
                const std::function<Exit(void *record)> &print);

/** `show` of the one record that a table is, under the names of its fields. */
Exit ShowRecord(Output &out, const std::string &operation, const manager::Table &table);

} // namespace rsvpctl

#endif
