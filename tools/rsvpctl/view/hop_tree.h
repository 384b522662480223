// A point-to-multipoint LSP as a tree: sub-LSPs with the same first hops share them, and separate where their routes
// do.
#ifndef TOOLS_RSVPCTL_VIEW_HOP_TREE_H
#define TOOLS_RSVPCTL_VIEW_HOP_TREE_H

#include "manager/dictionary/dictionary.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <rsvp_mor.h>
#include <string>
#include <vector>

namespace rsvpctl {

struct HopNode {
    uint32_t address = 0;
    std::optional<uint32_t> label; // of the link into this hop
    std::vector<uint32_t> leaves;  // end points of the sub-LSPs that end here
    std::vector<std::unique_ptr<HopNode>> hops;
};

struct HopTree {
    std::string title;
    HopNode root;
    size_t leafCount = 0;
};

/** The tree of all sub-LSPs, in the order of the reply. Two hops are one if address and label agree, as traffic of
 * two labels travels twice. */
HopTree TreeOf(const RSVP_MOR_P2mpCrlspInfo &record, const manager::RecordMeanings &meanings);

/** The end point of a sub-LSP, as the dictionary has it under "leaf". */
uint32_t LeafOf(const RSVP_MOR_P2mpRro &subLsp, const manager::RecordMeanings &meanings);

/** Lines with box characters or, if wanted, ASCII ones. */
std::string DrawTree(const HopTree &tree, bool ascii);

/** A graph for `dot`. */
std::string DotOf(const HopTree &tree);

manager::Json ToJson(const HopTree &tree);

} // namespace rsvpctl

#endif
