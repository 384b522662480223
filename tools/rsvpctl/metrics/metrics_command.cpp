// `metrics`: figures for a monitoring system, once. A timer of the system runs it again, which needs no server of
// ours.
#include "manager/exchange/deadline.h"
#include "manager/record/text.h"
#include "manager/table/tables.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/nearest.h"
#include "tools/rsvpctl/metrics/collect.h"
#include "tools/rsvpctl/metrics/commands.h"
#include "tools/rsvpctl/print/replaced_file.h"

#include <algorithm>
#include <fmt/format.h>
#include <system_error>

namespace rsvpctl {
namespace {

using manager::Table;
using Format = Exposition::Format;

constexpr std::chrono::seconds kUsualPatience{5};
constexpr uint32_t kUsualMostRows = 1000;

const Table *TableNamed(std::string_view name)
{
    const auto all = manager::AllTables();
    const auto table = std::find_if(all.begin(), all.end(), [&](const Table *one) { return name == one->name; });
    return table == all.end() ? nullptr : *table;
}

std::string CheckTables(const std::string &names)
{
    std::vector<Spelling> known;
    for (const Table *table : manager::AllTables())
        known.push_back({table->name, table->name});
    for (const std::string_view name : manager::Split(names, ',')) {
        if (TableNamed(name) == nullptr)
            return fmt::format("there is no table '{}'{}", name, DidYouMean(name, known));
    }
    return {};
}

std::vector<const Table *> TablesOf(const Option &option)
{
    if (!option.IsGiven())
        return UsualTables();
    std::vector<const Table *> tables;
    const std::string names = option.Text();
    for (const std::string_view name : manager::Split(names, ',')) {
        const Table *table = TableNamed(name);
        if (std::find(tables.begin(), tables.end(), table) == tables.end())
            tables.push_back(table);
    }
    return tables;
}

// A document that was written whole is a success, whatever the daemon did: that is what its figures are for.
Exit WriteDocument(Output &out, const std::string &operation, const std::string &file, const std::string &text)
{
    if (file.empty())
        return out.Help(text);
    try {
        ReplaceFile(file, text);
        return Exit::Done;
    } catch (const std::system_error &error) {
        return out.Wrong(operation, error.what(), RSVP_MOR_ERR_FAIL, Exit::NotWritten);
    }
}

} // namespace

void AddMetricsCommand(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "metrics", "Figures for monitoring, as a Prometheus server takes them",
                                "  rsvpctl metrics\n"
                                "  rsvpctl metrics --rows --tables tunnels,crlsp\n"
                                "  rsvpctl metrics --output rsvp_mor.prom");
    command.inBatch = false;
    command.limitsItself = true;
    const Option output = command.node.AddFile("--output", "Into a file, which is replaced in one step");
    const Option format =
        command.node.AddChoice("--format", "FORMAT", {"openmetrics", "prometheus"},
                               "openmetrics, or the older text that node_exporter reads from files, "
                               "which is the usual one with --output");
    const Option rows = command.node.AddFlag("--rows", "Figures of single rows too, not only of interfaces");
    const Option limit = command.node.AddNumber(
        "--rows-limit", UINT32_MAX,
        fmt::format("Figures of at most so many rows of a table; {} if not given", kUsualMostRows));
    const Option tables =
        command.node.AddText("--tables", "NAME,...", CheckTables, "Read these tables, in this order");
    command.run = [&line, &command, output, format, rows, limit, tables](Output &out) {
        if (out.IsJson())
            throw UsageError("metrics: --json excludes figures, which have formats of their own");
        const std::string file = output.Text();
        const bool isClassic = format.IsGiven() ? format.Text() == "prometheus" : !file.empty();
        const manager::Deadline deadline(line.ChosenTimeout().value_or(kUsualPatience));
        const Exposition document = Collect(out, {TablesOf(tables), rows.IsGiven(), limit.NumberOr(kUsualMostRows)});
        return WriteDocument(out, command.name, file,
                             document.Text(isClassic ? Format::Classic : Format::OpenMetrics));
    };
}

} // namespace rsvpctl
