// `show p2mp` and `tree`: point-to-multipoint state, one block by its key. The message operation and the item type of
// a request are the daemon's numbers, so that they can be given for a daemon with other ones.
#include "hop_tree.h"
#include "lsp_views.h"
#include "p2mp_keys.h"
#include "walk.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <langinfo.h>

namespace rsvpctl {
namespace {

constexpr uint32_t kPathStateItem = 11;

struct P2mpOptions {
    KeyOptions key;
    const CLI::Option *operation;
    const CLI::Option *itemType = nullptr;
};

CLI::Option *AddDefaultNumber(CLI::App &app, const std::string &name, uint64_t max, uint32_t value,
                              const std::string &help)
{
    return AddNumber(app, name, max, fmt::format("{} (default {})", help, value));
}

uint32_t NumberOr(const CLI::Option *option, uint32_t value)
{
    return option->count() == 0 ? value : NumberValue(option);
}

P2mpOptions AddOptions(CLI::App &app, const RecordDescription &key)
{
    return {AddKeyOptions(app, key), AddDefaultNumber(app, "--op", UINT8_MAX, kGetRow, "Message operation")};
}

constexpr auto kStateKeyExample = "500,10.0.0.1,10.0.0.1,00000000,50,1,10.0.0.1,0,1,0,0,0000,0,0,0,0,0";
constexpr auto kCrlspKeyExample = "500,10.0.0.1,10.0.0.1,50,1,0,0,0,0,0,0";

std::string Examples(const std::string &name, const char *key)
{
    return fmt::format("  rsvpctl {0} --key {1}\n  rsvpctl {0} --key-file key.json --json", name, key);
}

/** How one kind of block is read and given back. */
template <typename Block, typename Key> struct P2mpTable {
    const char *function;
    uint32_t (*get)(int32_t fd, const P2mpOptions &options, const Key &key, Block *block);
    void (*release)(Block *block);
};

constexpr P2mpTable<RSVP_MOR_P2mpPsbInfo, RSVP_MOR_P2mpStateKey> kPathState{
    .function = "RSVP_MOR_GetP2mpPsbInfo",
    .get =
        [](int32_t fd, const P2mpOptions &options, const RSVP_MOR_P2mpStateKey &key, RSVP_MOR_P2mpPsbInfo *block) {
            return RSVP_MOR_GetP2mpPsbInfo(fd, NumberOr(options.itemType, kPathStateItem),
                                           NumberOr(options.operation, kGetRow), &key, block);
        },
    .release = RSVP_MOR_FreeP2mpPsbInfo,
};

constexpr P2mpTable<RSVP_MOR_P2mpRsbInfo, RSVP_MOR_P2mpStateKey> kReservationState{
    .function = "RSVP_MOR_GetP2mpRsbInfo",
    .get =
        [](int32_t fd, const P2mpOptions &options, const RSVP_MOR_P2mpStateKey &key, RSVP_MOR_P2mpRsbInfo *block) {
            return RSVP_MOR_GetP2mpRsbInfo(fd, NumberOr(options.operation, kGetRow), &key, block);
        },
    .release = RSVP_MOR_FreeP2mpRsbInfo,
};

constexpr P2mpTable<RSVP_MOR_P2mpCrlspInfo, RSVP_MOR_P2mpCrlspKey> kCrlsp{
    .function = "RSVP_MOR_GetP2mpCrlsp",
    .get =
        [](int32_t fd, const P2mpOptions &options, const RSVP_MOR_P2mpCrlspKey &key, RSVP_MOR_P2mpCrlspInfo *block) {
            return RSVP_MOR_GetP2mpCrlsp(fd, NumberOr(options.operation, kGetRow), &key, block);
        },
    .release = RSVP_MOR_FreeP2mpCrlspInfo,
};

/** Reads one block on a session of its own, lets `show` print it and releases it, once. */
template <typename Block, typename Key, typename Show>
Exit WithBlock(Output &out, const Command &command, const P2mpTable<Block, Key> &table, const P2mpOptions &options,
               Show show)
{
    const Key key = KeyOf<Key>(options.key);
    const Session session(true);
    if (session.IsMissing())
        return out.Failed({command.name, "RSVP_MOR_LIPCOpen", "", RSVP_MOR_ERR_LIPC});
    Block block{};
    const uint32_t status = table.get(session.Fd(), options, key, &block);
    if (status != RSVP_MOR_OK)
        return out.Failed({command.name, table.function, "key " + KeyText(Describe<Key>(), &key), status});
    const Exit exit = show(block);
    table.release(&block);
    return exit;
}

template <typename Block, typename Key>
void AddShow(CommandLine &line, CLI::App &p2mp, const std::string &word, const std::string &help,
             const P2mpTable<Block, Key> &table, const char *example, std::string (*detail)(const Block &block))
{
    Command &command = line.Add(p2mp, word, help, Examples(PathOf(p2mp) + " " + word, example));
    P2mpOptions options = AddOptions(*command.parser, Describe<Key>());
    if constexpr (std::is_same_v<Block, RSVP_MOR_P2mpPsbInfo>)
        options.itemType =
            AddDefaultNumber(*command.parser, "--item-type", UINT16_MAX, kPathStateItem, "Item type of the request");
    command.run = [&command, &table, options, detail](Output &out) {
        return WithBlock(out, command, table, options, [&](const Block &block) {
            return out.IsJson() ? out.Record(command.name, ToJson(Describe<Block>(), &block))
                                : out.Help(detail(block));
        });
    };
}

/** Keeps the sub-LSPs to one leaf; the others are unlinked and released. */
void KeepLeaf(RSVP_MOR_P2mpCrlspInfo &record, uint32_t leaf)
{
    record.rroTail = nullptr;
    for (RSVP_MOR_P2mpRro **link = &record.rroHead; *link != nullptr;) {
        RSVP_MOR_P2mpRro *node = *link;
        if (node->path.pathWord0 == leaf) {
            record.rroTail = node;
            link = &node->next;
        } else {
            *link = node->next;
            rsvp_mor_FreeP2mpRro(node);
        }
    }
}

// The program itself stays in the C locale: only the character set of the user's is asked for.
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

void AddP2mpCommands(CommandLine &line, CLI::App &show)
{
    CLI::App &p2mp = line.AddGroup(show, "p2mp", "Point-to-multipoint state, one block by its key",
                                   Examples(PathOf(show) + " p2mp psb", kStateKeyExample) + "\n" +
                                       Examples(PathOf(show) + " p2mp crlsp", kCrlspKeyExample));
    AddShow(line, p2mp, "psb", "Path state of a sub-group", kPathState, kStateKeyExample, P2mpPsbDetail);
    AddShow(line, p2mp, "rsb", "Reservation state of a sub-group", kReservationState, kStateKeyExample,
            P2mpRsbDetail);
    AddShow(line, p2mp, "crlsp", "A CR-LSP with all its sub-LSPs", kCrlsp, kCrlspKeyExample, P2mpCrlspDetail);
}

void AddTreeCommand(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "tree", "A point-to-multipoint LSP as a tree of hops with its leaves",
                                fmt::format("{}\n  rsvpctl tree --key-file key.json --dot | dot -Tsvg > lsp.svg",
                                            Examples("tree", kCrlspKeyExample)));
    const P2mpOptions options = AddOptions(*command.parser, Describe<RSVP_MOR_P2mpCrlspKey>());
    const CLI::Option *leaf = AddAddress(*command.parser, "--leaf", "Only the way to this leaf");
    const CLI::Option *dot = command.parser->add_flag("--dot")->description("A graph in the language of dot");
    const CLI::Option *ascii = command.parser->add_flag("--ascii")->description(
        "Draw with ASCII characters, as for a locale that is not UTF-8");
    command.run = [&command, options, leaf, dot, ascii](Output &out) {
        if (out.IsJson() && dot->count() != 0)
            throw UsageError("tree: --dot excludes --json");
        return WithBlock(out, command, kCrlsp, options, [&](RSVP_MOR_P2mpCrlspInfo &record) {
            if (leaf->count() != 0)
                KeepLeaf(record, AddressValue(leaf));
            const HopTree tree = TreeOf(record);
            if (out.IsJson())
                return out.Record(command.name, ToJson(tree));
            return out.Help(dot->count() != 0 ? DotOf(tree) : DrawTree(tree, ascii->count() != 0 || !LocaleIsUtf8()));
        });
    };
}

} // namespace rsvpctl
