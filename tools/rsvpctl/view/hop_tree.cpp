// Building and drawing of the tree. It is as deep as the longest route, which one reply bounds.
#include "tools/rsvpctl/view/hop_tree.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/view/record_view.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::DottedText, manager::Json;

struct Strokes {
    const char *branch;
    const char *last;
    const char *through;
    const char *arrow;
};

constexpr Strokes kBoxStrokes{"├─ ", "└─ ", "│  ", "→"};
constexpr Strokes kAsciiStrokes{"|- ", "`- ", "|  ", "->"};
constexpr auto kNothingBelow = "   ";

struct Hop {
    uint32_t address;
    std::optional<uint32_t> label;
};

// A label follows the address that it leads to. Hops of other kinds are not places in the tree.
std::vector<Hop> HopsOf(const RSVP_MOR_HopList &list)
{
    std::vector<Hop> hops;
    for (const RSVP_MOR_HopEntry &entry : HopsIn(list)) {
        if (entry.kind == RSVP_MOR_HOP_IPV4)
            hops.push_back({entry.address, std::nullopt});
        else if (entry.kind == RSVP_MOR_HOP_LABEL && !hops.empty() && !hops.back().label)
            hops.back().label = entry.label;
    }
    return hops;
}

HopNode &ChildOf(HopNode &parent, const Hop &hop)
{
    const auto found = std::find_if(parent.hops.begin(), parent.hops.end(), [&](const auto &child) {
        return child->address == hop.address && child->label == hop.label;
    });
    if (found != parent.hops.end())
        return **found;
    parent.hops.push_back(std::make_unique<HopNode>(HopNode{hop.address, hop.label, {}, {}}));
    return *parent.hops.back();
}

std::string HopText(const HopNode &node)
{
    return DottedText(node.address) + (node.label ? fmt::format("  label {}", *node.label) : "");
}

void Draw(const HopNode &node, const std::string &indent, const Strokes &strokes, std::string &out)
{
    for (const uint32_t leaf : node.leaves)
        out += fmt::format("  {} {}", strokes.arrow, DottedText(leaf));
    out += '\n';
    for (const auto &child : node.hops) {
        const bool last = child == node.hops.back();
        out += indent + (last ? strokes.last : strokes.branch) + HopText(*child);
        Draw(*child, indent + (last ? kNothingBelow : strokes.through), strokes, out);
    }
}

// Nodes are numbered as they are met, since one address may occur at many places in the tree.
void AddDot(const HopNode &node, size_t parent, size_t &used, std::string &out)
{
    for (const uint32_t leaf : node.leaves) {
        const size_t number = ++used;
        out += fmt::format("  n{} [label=\"{}\", shape=box];\n  n{} -> n{};\n", number, DottedText(leaf), parent,
                           number);
    }
    for (const auto &child : node.hops) {
        const size_t number = ++used;
        out += fmt::format("  n{} [label=\"{}\"];\n  n{} -> n{}{};\n", number, DottedText(child->address), parent,
                           number, child->label ? fmt::format(" [label=\"{}\"]", *child->label) : "");
        AddDot(*child, number, used, out);
    }
}

Json NodeToJson(const HopNode &node)
{
    Json leaves = Json::array();
    for (const uint32_t leaf : node.leaves)
        leaves.push_back(DottedText(leaf));
    Json hops = Json::array();
    for (const auto &child : node.hops)
        hops.push_back(NodeToJson(*child));
    return {{"address", DottedText(node.address)},
            {"label", node.label ? Json(*node.label) : Json()},
            {"leaves", std::move(leaves)},
            {"hops", std::move(hops)}};
}

} // namespace

uint32_t LeafOf(const RSVP_MOR_P2mpRro &subLsp, const manager::RecordMeanings &meanings)
{
    const manager::NamedValue leaf(manager::Describe<RSVP_MOR_P2mpRro>(), meanings.Inside("rroHead"), "leaf");
    return static_cast<uint32_t>(leaf.NumberIn(&subLsp));
}

HopTree TreeOf(const RSVP_MOR_P2mpCrlspInfo &record, const manager::RecordMeanings &meanings)
{
    const auto named = [&](const char *name) {
        return manager::NamedValue(manager::Describe<RSVP_MOR_P2mpCrlspInfo>(), meanings, name).NumberIn(&record);
    };
    HopTree tree;
    tree.root.address = static_cast<uint32_t>(named("sender"));
    for (const RSVP_MOR_P2mpRro *sub = record.rroHead; sub != nullptr; sub = sub->next) {
        HopNode *node = &tree.root;
        for (const Hop &hop : HopsOf(sub->hopList))
            node = &ChildOf(*node, hop);
        node->leaves.push_back(LeafOf(*sub, meanings));
        ++tree.leafCount;
    }
    tree.title =
        fmt::format("{}P2MP {}, tunnel {}, LSP {}: {} {}",
                    record.name == nullptr ? "" : manager::HarmlessText(record.name) + ", ", named("p2mpId"),
                    named("tunnelId"), named("lspId"), tree.leafCount, tree.leafCount == 1 ? "leaf" : "leaves");
    return tree;
}

std::string DrawTree(const HopTree &tree, bool ascii)
{
    std::string out = tree.title + "\n" + DottedText(tree.root.address);
    Draw(tree.root, "", ascii ? kAsciiStrokes : kBoxStrokes, out);
    return out;
}

std::string DotOf(const HopTree &tree)
{
    size_t used = 0;
    std::string out = fmt::format("digraph lsp {{\n  label={};\n  rankdir=LR;\n  node [shape=ellipse];\n  n0 "
                                  "[label=\"{}\", style=bold];\n",
                                  manager::Quoted(tree.title, manager::kDotQuotes), DottedText(tree.root.address));
    AddDot(tree.root, 0, used, out);
    return out + "}\n";
}

Json ToJson(const HopTree &tree)
{
    return {{"title", tree.title}, {"leafCount", tree.leafCount}, {"root", NodeToJson(tree.root)}};
}

} // namespace rsvpctl
