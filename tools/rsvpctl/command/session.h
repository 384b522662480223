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

/** Reads one record of a table, lets `print` print it and releases it. `asked` is the key in words. */
Exit WithRecord(Output &out, const std::string &operation, const manager::Table &table, const void *key,
                const std::string &asked, const std::function<Exit(void *record)> &print);

/** `show` of one record under the names of its fields. */
Exit ShowRecord(Output &out, const std::string &operation, const manager::Table &table, const void *key,
                const std::string &asked);

} // namespace rsvpctl

#endif
