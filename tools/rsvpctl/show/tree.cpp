// `tree`: a point-to-multipoint LSP as a tree of hops with its leaves.
#include "manager/record/text.h"
#include "manager/table/session.h"
#include "manager/table/walk.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/nearest.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/show/blocks.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/show/suggestions.h"
#include "tools/rsvpctl/view/hop_tree.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <langinfo.h>
#include <nlohmann/json.hpp>
#include <span>

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

/** What `tree` can be given in place of a key. */
struct FindOptions {
    Option name;
    Option tunnelId;

    bool IsGiven() const { return name.IsGiven() || tunnelId.IsGiven(); }

    std::string Text() const
    {
        return (name.IsGiven() ? fmt::format(" with the name '{}'", name.Text()) : "") +
               (tunnelId.IsGiven() ? fmt::format(" of tunnel {}", tunnelId.Number()) : "");
    }
};

constexpr size_t kMostCandidates = 20; // that a person looks through

/** A point-to-multipoint LSP that was found. */
struct FoundLsp {
    std::string name;
    manager::Bytes key;
};

struct FoundLsps {
    std::vector<FoundLsp> lsps;
    std::vector<Spelling> names; // of all LSPs
    manager::WalkResult walk;
};

/** The LSPs that the options may mean. Throws UsageError where no dictionary tells of them. */
FoundLsps Find(const manager::Table &table, const FindOptions &options)
{
    const manager::NamedValue tunnelId(table.row(), Names().Of(table.row()), "tunnelId");
    const std::vector<manager::KeyPart> parts = KeyPartsOf(table, Names());
    if (parts.empty() || (options.tunnelId.IsGiven() && !tunnelId))
        throw UsageError("the dictionary does not tell how point-to-multipoint LSPs are found: give --key");
    FoundLsps found;
    const manager::Session session(table.first.held);
    if (session.IsMissing()) {
        found.walk = {manager::WalkEnd::Broken, 0, RSVP_MOR_ERR_LIPC, "RSVP_MOR_LIPCOpen", ""};
        return found;
    }
    found.walk = Walk(table, Names(), session.Fd(), nullptr, [&](void *row) {
        const char *text = static_cast<const RSVP_MOR_P2mpCrlspInfo *>(row)->name;
        const std::string name = text == nullptr ? "" : text;
        found.names.push_back({name, name});
        if ((!options.name.IsGiven() || name == options.name.Text()) &&
            (!options.tunnelId.IsGiven() || tunnelId.NumberIn(row) == options.tunnelId.Number())) {
            FoundLsp &lsp = found.lsps.emplace_back(FoundLsp{name, manager::Bytes(table.key().size)});
            CopyKey(parts, row, lsp.key.data());
        }
        return true;
    });
    return found;
}

/** Lets `use` have the key of the LSP that the options mean, if there is just one. */
Exit WithFoundKey(Output &out, const std::string &operation, const manager::Table &table, const FindOptions &options,
                  const std::function<Exit(const manager::Bytes &key)> &use)
{
    const FoundLsps found = Find(table, options);
    if (found.walk.end == manager::WalkEnd::Broken)
        return out.Failed({operation, found.walk.function, "", found.walk.status});
    if (found.walk.end != manager::WalkEnd::EndOfTable)
        return out.Broken(operation, fmt::format("{} gave a row that was there before", found.walk.function));
    if (found.lsps.empty())
        return out.Wrong(operation,
                         fmt::format("there is no point-to-multipoint LSP{}{}", options.Text(),
                                     options.name.IsGiven() ? DidYouMean(options.name.Text(), found.names) : ""),
                         RSVP_MOR_ERR_NOT_EXIST, Exit::Refused);
    if (found.lsps.size() == 1)
        return use(found.lsps.front().key);
    std::string text;
    for (const FoundLsp &lsp : std::span(found.lsps).first(std::min(found.lsps.size(), kMostCandidates)))
        text += fmt::format("{}'{} --key {}'{}", text.empty() ? "" : ", ", operation,
                            KeyText(table.key(), lsp.key.data()),
                            lsp.name.empty() || options.name.IsGiven() ? "" : " for " + lsp.name);
    const size_t more = found.lsps.size() - std::min(found.lsps.size(), kMostCandidates);
    throw UsageError(fmt::format("there are {} point-to-multipoint LSPs{}; type one of {}{}", found.lsps.size(),
                                 options.Text(), text, more == 0 ? "" : fmt::format(" and {} more", more)));
}

} // namespace

void AddTreeCommand(CommandLine &line)
{
    const ShowSpec &show = ShowNamed("p2mp crlsp");
    Command &command = line.Add(line.Root(), "tree", "A point-to-multipoint LSP as a tree of hops with its leaves",
                                "  rsvpctl tree video-to-eight-leaves\n"
                                "  rsvpctl tree --tunnel-id 50 --leaf 10.0.0.14\n" +
                                    BlockExamples("tree", show) +
                                    "\n  rsvpctl tree --key-file key.json --dot | dot -Tsvg > lsp.svg");
    command.mayBeLong = true;
    command.suggest = [&show](const std::string &option, const std::string &typed) {
        return Suggest(show, option == "lsp" ? "name" : option, typed);
    };
    const FindOptions find{command.node.AddText("lsp", "NAME", nullptr, "The LSP of this name"),
                           command.node.AddNumber("--tunnel-id", UINT16_MAX, "The LSP of this tunnel")};
    const BlockOptions options = AddBlockOptions(command.node, show);
    for (const Option &one : {find.name, find.tunnelId})
        one.Excludes(options.key.words).Excludes(options.key.file);
    const Option leaf = command.node.AddAddress("--leaf", "Only the way to this leaf");
    const Option dot = command.node.AddFlag("--dot", "A graph in the language of dot");
    const Option ascii =
        command.node.AddFlag("--ascii", "Draw with ASCII characters, as for a locale that is not UTF-8");
    command.run = [&command, &show, find, options, leaf, dot, ascii](Output &out) {
        if (out.IsJson() && dot.IsGiven())
            throw UsageError("tree: --dot excludes --json");
        const auto print = [&](void *block) {
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
        };
        const auto draw = [&](const manager::Bytes &key) {
            return WithBlock(out, command.name, show, options, key, print);
        };
        if (find.IsGiven())
            return WithFoundKey(out, command.name, *show.table, find, draw);
        if (!options.key.words.IsGiven() && !options.key.file.IsGiven())
            throw UsageError("NAME, --tunnel-id, --key or --key-file is needed");
        return draw(GivenKey(show, options));
    };
}

} // namespace rsvpctl
