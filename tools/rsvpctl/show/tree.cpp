// `tree`: a point-to-multipoint LSP as a tree of hops with its leaves.
#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/show/blocks.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/show/suggestions.h"
#include "tools/rsvpctl/view/hop_tree.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <langinfo.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

/** Keeps the sub-LSPs to one leaf; the others are unlinked and released. */
void KeepLeaf(RSVP_MOR_P2mpCrlspInfo &record, const manager::RecordMeanings &meanings, uint32_t leaf)
{
    record.rroTail = nullptr;
    for (RSVP_MOR_P2mpRro **link = &record.rroHead; *link != nullptr;) {
        RSVP_MOR_P2mpRro *node = *link;
        if (LeafOf(*node, meanings) == leaf) {
            record.rroTail = node;
            link = &node->next;
        } else {
            *link = node->next;
            rsvp_mor_FreeP2mpRro(node);
        }
    }
}

// The program itself stays in the C locale: it asks only for the user's character set.
bool LocaleIsUtf8()
{
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr)
        return false;
    const bool utf8 = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
    freelocale(locale);
    return utf8;
}

} // namespace

void AddTreeCommand(CommandLine &line)
{
    const ShowSpec &show = ShowNamed("p2mp crlsp");
    Command &command =
        line.Add(line.Root(), "tree", "A point-to-multipoint LSP as a tree of hops with its leaves",
                 BlockExamples("tree", show) + "\n  rsvpctl tree --key-file key.json --dot | dot -Tsvg > lsp.svg");
    command.mayBeLong = true;
    command.suggest = [&show](const auto &option, const auto &typed) { return Suggest(show, option, typed); };
    const BlockOptions options = AddBlockOptions(command.node, show);
    const Option leaf = command.node.AddAddress("--leaf", "Only the way to this leaf");
    const Option dot = command.node.AddFlag("--dot", "A graph in the language of dot");
    const Option ascii =
        command.node.AddFlag("--ascii", "Draw with ASCII characters, as for a locale that is not UTF-8");
    command.run = [&command, &show, options, leaf, dot, ascii](Output &out) {
        if (out.IsJson() && dot.IsGiven())
            throw UsageError("tree: --dot excludes --json");
        return WithBlock(out, command.name, show, options, [&](void *block) {
            auto &record = *static_cast<RSVP_MOR_P2mpCrlspInfo *>(block);
            const manager::RecordMeanings &meanings = Names().Of(show.table->row());
            const size_t leaves = TreeOf(record, meanings).leafCount;
            if (leaf.IsGiven())
                KeepLeaf(record, meanings, leaf.Address());
            const HopTree tree = TreeOf(record, meanings);
            if (leaf.IsGiven() && tree.leafCount == 0)
                return out.Wrong(
                    command.name,
                    fmt::format("the LSP has no leaf {} (leaves: {})", manager::DottedText(leaf.Address()), leaves),
                    RSVP_MOR_ERR_NOT_EXIST, Exit::Refused);
            if (out.IsJson())
                return out.Record(command.name, ToJson(tree));
            return out.Help(dot.IsGiven() ? DotOf(tree) : DrawTree(tree, ascii.IsGiven() || !LocaleIsUtf8()));
        });
    };
}

} // namespace rsvpctl
