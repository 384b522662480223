// Columns, orders and filters from a command line.
#include "tools/rsvpctl/show/row_options.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/command/nearest.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

const Column &ColumnNamed(const Columns &columns, std::string_view name)
{
    std::vector<Spelling> names;
    for (const Column &column : columns.all) {
        if (column.name == name)
            return column;
        names.push_back({column.name, column.name});
    }
    throw UsageError(fmt::format("there is no column '{}'{}", name, DidYouMean(name, names)));
}

} // namespace

ArrangeOptions AddArrangeOptions(const Node &node)
{
    return {node.AddText("--columns", "NAME,...", nullptr, "These columns, in this order"),
            node.AddText("--sort", "NAME", nullptr, "Rows in the order of a column; they wait for the last one"),
            node.AddNumber("--limit", UINT32_MAX, "At most so many rows"),
            node.AddFlag("--no-headers", "Rows without a heading")};
}

void Arrange(const Output &out, const ArrangeOptions &options, RowForm &form)
{
    if ((options.columns.IsGiven() || options.noHeaders.IsGiven()) && !out.HasColumns())
        throw UsageError("--columns and --no-headers are for tables, not for JSON and --detail");
    if (options.sort.IsGiven())
        form.sortBy = ColumnNamed(form.columns, options.sort.Text());
    if (options.columns.IsGiven()) {
        Columns chosen;
        const std::string names = options.columns.Text();
        for (const std::string_view name : manager::Split(names, ','))
            chosen.all.push_back(ColumnNamed(form.columns, name));
        form.columns = std::move(chosen);
        form.allColumns = true; // what was asked for is not hidden
    }
    if (options.limit.IsGiven())
        form.limit = options.limit.Number();
    if (form.limit == 0)
        throw UsageError("--limit takes a number from 1 on, not 0");
    form.hasHeaders = !options.noHeaders.IsGiven();
}

LspOptions AddLspOptions(const Node &node)
{
    return {node.AddNumber("--tunnel-id", UINT16_MAX, "Only LSPs of this tunnel"),
            node.AddNumber("--lsp-id", UINT16_MAX, "Only LSPs with this identifier"),
            node.AddAddress("--end-point", "Only LSPs to this end point"),
            node.AddAddress("--sender", "Only LSPs from this sender")};
}

LspFilter FilterOf(const LspOptions &options)
{
    LspFilter filter;
    if (options.tunnelId.IsGiven())
        filter.tunnelId = options.tunnelId.Number();
    if (options.lspId.IsGiven())
        filter.lspId = options.lspId.Number();
    if (options.endPoint.IsGiven())
        filter.endPoint = options.endPoint.Address();
    if (options.sender.IsGiven())
        filter.sender = options.sender.Address();
    return filter;
}

} // namespace rsvpctl
