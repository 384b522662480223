// `show lsp`: an LSP on one screen, or a line for each. The tables are read once, whatever is wanted of them; then
// the LSPs that are not wanted are left out.
#include "tools/rsvpctl/show/lsp.h"

#include "manager/lsp/lsp.h"
#include "manager/record/json.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/nearest.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/progress.h"
#include "tools/rsvpctl/print/usage_error.h"
#include "tools/rsvpctl/show/row_options.h"
#include "tools/rsvpctl/show/suggestions.h"
#include "tools/rsvpctl/view/lsp_view.h"

#include <algorithm>
#include <fmt/format.h>
#include <fnmatch.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Lsp;

struct LspCommandOptions {
    Option name;
    ArrangeOptions arrange;
    Option glob;
    LspOptions lsps;
    Option interface;
    Option role;
    Option isProtected;
    Option up;
    Option down;
};

// What is asked for by a word that no dictionary has would be found nowhere, and that is not an answer.
void CheckWords(const LspCommandOptions &options)
{
    const manager::LspWords words(Names());
    const auto need = [](const Option &option, bool isThere, const char *what) {
        if (option.IsGiven() && !isThere)
            throw UsageError(fmt::format("the dictionary has no name for {}", what));
    };
    need(options.name, words.crLsps, "the key of CR-LSPs, which have the names of LSPs");
    need(options.glob, words.crLsps, "the key of CR-LSPs, which have the names of LSPs");
    need(options.interface, words.interface, "the 'interface' of CR-LSPs");
    need(options.isProtected, words.protection, "the 'protection' of CR-LSPs, nor for the key of the facility table");
    need(options.up, words.up, "'up', a 'state' of CR-LSPs or an 'operStatus' of tunnels");
    need(options.down, words.down, "'down', a 'state' of CR-LSPs or an 'operStatus' of tunnels");
    if (options.role.Text() == manager::kTail)
        need(options.role, words.tail, "'tail', a 'role' of CR-LSPs or tunnels");
}

bool IsWanted(const LspCommandOptions &options, const LspFilter &filter, const Lsp &lsp)
{
    return (!options.name.IsGiven() || lsp.name == options.name.Text()) &&
           (!options.glob.IsGiven() || fnmatch(options.glob.Text().c_str(), lsp.name.c_str(), 0) == 0) &&
           filter.TakesIdentity(lsp.identity) &&
           (!options.interface.IsGiven() || lsp.interface == options.interface.Number()) &&
           (!options.role.IsGiven() || lsp.role == options.role.Text()) &&
           (!options.isProtected.IsGiven() || lsp.isProtected.value_or(false)) &&
           (!options.up.IsGiven() || lsp.state == "up") && (!options.down.IsGiven() || lsp.state == "down");
}

std::string NearestName(const std::vector<Lsp> &lsps, const std::string &name)
{
    std::vector<Spelling> names;
    names.reserve(lsps.size());
    for (const Lsp &lsp : lsps)
        names.push_back({lsp.name, lsp.name});
    return DidYouMean(name, names);
}

bool IsWhole(const manager::Lsps &lsps)
{
    return std::all_of(lsps.tables.begin(), lsps.tables.end(),
                       [](const auto &table) { return table.result.end == manager::WalkEnd::EndOfTable; });
}

RowForm LspForm(const Output &out, const LspCommandOptions &options)
{
    RowForm form{
        .columns = LspColumns(),
        .detail = [](const void *row) { return LspText(*static_cast<const Lsp *>(row), Names()); },
        .json = [](std::string &text,
                   const void *row) { text += manager::JsonText(ToJson(*static_cast<const Lsp *>(row), Names())); }};
    Arrange(out, options.arrange, form);
    form.isScreen = options.name.IsGiven();
    return form;
}

Exit ShowLsps(Output &out, const std::string &operation, const LspCommandOptions &options)
{
    CheckWords(options);
    if (options.name.IsGiven() && (out.ChosenStyle() == Style::Wide || out.ChosenStyle() == Style::Csv))
        throw UsageError("--output wide and csv are for the rows of a table, not for the LSPs of a name");
    RowForm form = LspForm(out, options);
    manager::Lsps lsps;
    {
        Progress progress;
        lsps = manager::ReadLsps(Names(), [&](uint64_t rows) { progress.AfterRow(rows); });
    }
    const std::string name = options.name.Text();
    const auto isNamed = [&](const Lsp &lsp) { return lsp.name == name; };
    if (options.name.IsGiven() && IsWhole(lsps) && std::none_of(lsps.all.begin(), lsps.all.end(), isNamed))
        return out.Wrong(operation, fmt::format("there is no LSP '{}'{}", name, NearestName(lsps.all, name)),
                         RSVP_MOR_ERR_NOT_EXIST, Exit::Refused);
    const LspFilter filter = FilterOf(options.lsps);
    const auto notWanted = [&](const Lsp &lsp) { return !IsWanted(options, filter, lsp); };
    std::erase_if(lsps.all, notWanted);
    out.BeginRows(operation, std::move(form));
    for (const Lsp &lsp : lsps.all) {
        if (!out.Row(&lsp))
            break;
    }
    return out.EndRows(lsps.tables, lsps.all.size());
}

} // namespace

const std::vector<std::string> kLspKeyMembers{"endPoint", "tunnelId", "extendedTunnelId", "sender", "lspId"};

void AddLspCommand(CommandLine &line, Node parent)
{
    const std::string name = parent.Path() + " lsp";
    Command &command = line.Add(parent, "lsp", "An LSP on one screen, or all LSPs, a line each",
                                fmt::format("  rsvpctl {0}\n"
                                            "  rsvpctl {0} tunnel-100\n"
                                            "  rsvpctl {0} --role transit --up\n"
                                            "  rsvpctl {0} --name 'tunnel-*' --json",
                                            name));
    const Node &node = command.node;
    LspCommandOptions options;
    options.name = node.AddText("lsp", "NAME", nullptr, "All of the LSPs of this name");
    options.arrange = AddArrangeOptions(node);
    for (const Option &one : options.arrange.All())
        options.name.Excludes(one);
    options.glob = node.AddText("--name", "GLOB", nullptr, "Only LSPs whose name matches, such as 'to-paris-*'");
    options.lsps = AddLspOptions(node);
    options.interface = node.AddNumber("--interface", UINT32_MAX, "Only LSPs of this interface");
    options.role = node.AddChoice(
        "--role", "ROLE", {std::string(manager::kHead), std::string(manager::kTransit), std::string(manager::kTail)},
        "Only LSPs that begin here, pass through or end here");
    options.isProtected = node.AddFlag("--protected", "Only LSPs that are protected");
    options.up = node.AddFlag("--up", "Only LSPs that are up");
    options.down = node.AddFlag("--down", "Only LSPs that are down").Excludes(options.up);
    command.mayBeLong = true;
    command.takesDetail = true;
    command.hasColumns = true;
    command.suggest = [](const std::string &option, const std::string &typed) {
        return Suggest(ShowNamed("crlsp"), LspColumns(), option == "lsp" ? "name" : option, typed);
    };
    command.run = [&command, options](Output &out) { return ShowLsps(out, command.name, options); };
}

} // namespace rsvpctl
