// Reading of one row by its key. Where the library leaves the message operation and the item type of a request to its
// caller, they are the daemon's numbers, and can be given for a daemon with other ones.
#ifndef TOOLS_RSVPCTL_SHOW_BLOCKS_H
#define TOOLS_RSVPCTL_SHOW_BLOCKS_H

#include "manager/table/walk.h"
#include "tools/rsvpctl/command/options.h"
#include "tools/rsvpctl/print/output.h"
#include "tools/rsvpctl/show/shows.h"

#include <functional>

namespace rsvpctl {

struct BlockOptions {
    KeyOptions key;
    Option operation;
    Option itemType;

    bool IsGiven() const
    {
        return key.words.IsGiven() || key.file.IsGiven() || operation.IsGiven() || itemType.IsGiven();
    }
};

/** The help's examples of a command that takes such a key. */
std::string BlockExamples(const std::string &command, const ShowSpec &show);

BlockOptions AddBlockOptions(const Node &node, const ShowSpec &show);

/** The key that the options give. Throws UsageError. */
manager::Bytes GivenKey(const ShowSpec &show, const BlockOptions &options);

/** Reads the block with the key on a session of its own, lets `print` print it and releases it. */
Exit WithBlock(Output &out, const std::string &operation, const ShowSpec &show, const BlockOptions &options,
               const manager::Bytes &key, const std::function<Exit(void *block)> &print);

} // namespace rsvpctl

#endif
