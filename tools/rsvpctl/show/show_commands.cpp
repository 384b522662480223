// The `show` commands, made of the descriptions in shows.cpp: walks with filters, single rows and blocks by their
// keys. A row is printed when it comes and released at once.
#include "manager/dictionary/document.h"
#include "manager/record/key.h"
#include "manager/record/text.h"
#include "manager/table/session.h"
#include "manager/table/tables.h"
#include "manager/table/walk.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/session.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/progress.h"
#include "tools/rsvpctl/show/blocks.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/show/counters.h"
#include "tools/rsvpctl/show/lsp.h"
#include "tools/rsvpctl/show/row_options.h"
#include "tools/rsvpctl/show/shows.h"
#include "tools/rsvpctl/show/suggestions.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace rsvpctl {
namespace {

struct GroupSpec {
    const char *word;
    const char *help;
    const char *examples; // of the commands below, without the words of the group
};

constexpr GroupSpec kGroups[] = {
    {"frr", "Fast reroute tables", "facility\ngeneral --key 0,100,1"},
    {"hops", "Hops of tunnels", "computed\nactual --key 100,1\nextended"},
    {"p2mp", "Point-to-multipoint state", "crlsp\npsb --json\ncrlsp --key 500,10.0.0.1,10.0.0.1,50,1,0,0,0,0,0,0"},
};

/** The options of a walk; those that a table does not have are never given. */
struct RowOptions {
    ArrangeOptions arrange;
    Option after;
    BlockOptions one; // row, by its key
    Option ingress;
    LspOptions lsps;
};

RowForm FormOf(const Output &out, const ShowSpec &show, const RowOptions &options)
{
    const manager::RecordDescription &row = show.table->row();
    RowForm form{.columns = ColumnsOf(show),
                 .detail = DetailOf(show),
                 .json = [&row, &meanings = Names().Of(row)](std::string &text, const void *record) {
                     AppendJson(text, row, record, meanings);
                 }};
    Arrange(out, options.arrange, form);
    return form;
}

Exit ShowRows(Output &out, const std::string &operation, const ShowSpec &show, const RowOptions &options)
{
    const manager::Table &table = options.ingress.IsGiven() ? *show.ingressTable : *show.table;
    const LspFilter filter = FilterOf(options.lsps);
    if (show.table == &manager::kCrLsps)
        filter.CheckNames();
    std::vector<std::byte> after(table.key().size);
    if (options.after.IsGiven())
        RequireKey(table, options.after.Text(), after.data());
    out.BeginRows(operation, FormOf(out, show, options), table.next.function);
    const manager::Session session(table.first.held);
    if (session.IsMissing())
        return out.EndRows({manager::WalkEnd::Broken, 0, RSVP_MOR_ERR_LIPC, "RSVP_MOR_LIPCOpen", ""});
    uint64_t shown = 0;
    manager::WalkResult result;
    {
        Progress progress;
        uint64_t rows = 0;
        const void *from = options.after.IsGiven() ? after.data() : nullptr;
        result = Walk(table, Names(), session.Fd(), from, [&](void *row) {
            bool written = true;
            if (show.takes == nullptr || show.takes(filter, row)) {
                progress.BeforeRow();
                written = out.Row(row);
                ++shown;
            }
            progress.AfterRow(++rows);
            return written;
        });
    }
    result.rows = shown;
    return out.EndRows(result);
}

Exit ShowRow(Output &out, const std::string &operation, const ShowSpec &show, const BlockOptions &options)
{
    if (out.ChosenStyle() == Style::Wide || out.ChosenStyle() == Style::Csv)
        throw UsageError("--output wide and csv are for the rows of a table, not for one row by its key");
    return WithBlock(out, operation, show, options, GivenKey(show, options),
                     [&](void *row) { return out.Record(operation, show.table->row(), row, DetailOf(show)); });
}

RowOptions AddRowOptions(const Node &node, const ShowSpec &show)
{
    RowOptions options;
    const manager::Table &key = *show.table;
    options.arrange = AddArrangeOptions(node);
    options.after = node.AddKey("--after", key, "Begin after the row with this key");
    if (show.ingressTable != nullptr)
        options.ingress = node.AddFlag("--ingress", "Only tunnels that begin here; not with a key");
    if (show.HasRecord()) {
        options.one = AddBlockOptions(node, show);
        std::vector<Option> ofRows{options.after};
        for (const Option &one : options.arrange.All())
            ofRows.push_back(one);
        for (const Option &one : ofRows) {
            options.one.key.words.Excludes(one);
            options.one.key.file.Excludes(one);
        }
    }
    if (show.ingressTable != nullptr)
        options.ingress.Excludes(options.one.key.words).Excludes(options.one.key.file);
    if (show.takes != nullptr)
        options.lsps = AddLspOptions(node);
    return options;
}

std::string Examples(const std::string &name, const ShowSpec &show)
{
    const std::string command = "  rsvpctl " + name;
    if (show.IsBlock())
        return command + "\n" + BlockExamples(name, show);
    if (!show.HasRows())
        return command + "\n" + command + " --json";
    const std::string after = "\n" + command + " --after " + show.keyExample;
    if (show.takes != nullptr)
        return command + "\n" + command + " --tunnel-id 100\n" + command + " --end-point 10.0.0.4 --json" + after;
    return command + "\n" + command + " --json" + after +
           (show.HasRecord() ? "\n" + command + " " + show.keyExample : "");
}

void AddShow(CommandLine &line, Node parent, const std::string &word, const ShowSpec &show)
{
    const std::string name = parent.Path() + " " + word;
    Command &command = line.Add(parent, word, show.help, Examples(name, show));
    for (const char *alias : show.aliases)
        command.node.AddAlias(alias);
    command.mayBeLong = true;
    command.takesDetail = true;
    command.suggest = [&show](const auto &option, const auto &typed) { return Suggest(show, option, typed); };
    if (show.table == nullptr) {
        command.run = [&command](Output &out) { return ShowCounters(out, command.name); };
    } else if (show.HasRows()) {
        const RowOptions options = AddRowOptions(command.node, show);
        command.hasColumns = true;
        command.run = [&command, &show, options](Output &out) {
            return options.one.IsGiven() ? ShowRow(out, command.name, show, options.one)
                                         : ShowRows(out, command.name, show, options);
        };
    } else {
        command.run = [&command, &show](Output &out) { return ShowRecord(out, command.name, *show.table); };
    }
}

// Examples of the commands below a group, a line each, from the words behind those of the group.
std::string GroupExamples(const std::string &path, std::string_view examples)
{
    std::string text;
    for (const std::string_view example : manager::Split(examples, '\n'))
        text += (text.empty() ? "  rsvpctl " : "\n  rsvpctl ") + path + " " + std::string(example);
    return text;
}

} // namespace

void AddShowCommands(CommandLine &line, Node parent)
{
    const std::string path = parent.Path().empty() ? "show" : parent.Path() + " show";
    const Node shows =
        line.AddGroup(parent, "show", "Read settings, counters, tables and state",
                      GroupExamples(path, "global\ninterfaces 1 --json\ntunnels --ingress\n"
                                          "neighbours --after 10.1.12.2,0       # the rows after this key"));
    AddLspCommand(line, shows);
    std::map<std::string, Node> groups;
    for (const ShowSpec &show : AllShows()) {
        const std::string words = show.words;
        const size_t space = words.find(' ');
        if (space == std::string::npos) {
            AddShow(line, shows, words, show);
            continue;
        }
        const std::string group = words.substr(0, space);
        if (!groups.contains(group)) {
            const auto &spec = *std::find_if(std::begin(kGroups), std::end(kGroups),
                                             [&](const GroupSpec &one) { return one.word == group; });
            groups[group] = line.AddGroup(shows, group, spec.help,
                                          GroupExamples(fmt::format("{} {}", path, group), spec.examples));
        }
        AddShow(line, groups[group], words.substr(space + 1), show);
    }
}

} // namespace rsvpctl
