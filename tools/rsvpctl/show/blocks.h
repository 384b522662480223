// Blocks that are read by their key alone: point-to-multipoint state. The message operation and the item type of a
// request are the daemon's numbers, so that they can be given for a daemon with other ones.
#ifndef TOOLS_RSVPCTL_SHOW_BLOCKS_H
#define TOOLS_RSVPCTL_SHOW_BLOCKS_H

#include "tools/rsvpctl/command/options.h"
#include "tools/rsvpctl/print/output.h"
#include "tools/rsvpctl/show/shows.h"

#include <functional>

namespace rsvpctl {

struct BlockOptions {
    KeyOptions key;
    Option operation;
    Option itemType;
};

/** The help's examples of a command that takes such a key. */
std::string BlockExamples(const std::string &command, const ShowSpec &show);

BlockOptions AddBlockOptions(const Node &node, const ShowSpec &show);

/** Reads one block on a session of its own, lets `print` print it and releases it. */
Exit WithBlock(Output &out, const std::string &operation, const ShowSpec &show, const BlockOptions &options,
               const std::function<Exit(void *block)> &print);

} // namespace rsvpctl

#endif
