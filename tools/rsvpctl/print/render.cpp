// Tables, and documents as lines.
#include "tools/rsvpctl/print/render.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/view/record_view.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Json;

std::string Cell(const std::string &text, size_t width, bool right)
{
    return right ? fmt::format("{:>{}}  ", text, width) : fmt::format("{:<{}}  ", text, width);
}

std::string Trimmed(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// Lines are broken between words, and a word that is too long stays whole.
std::string Wrapped(std::string line, size_t width)
{
    static constexpr std::string_view kIndent = "    ";
    std::string text;
    while (line.size() > width) {
        const size_t first = line.find_first_not_of(' ');
        size_t end = line.rfind(' ', width);
        if (end == std::string::npos || end < first)
            end = line.find(' ', first);
        if (end == std::string::npos)
            break;
        text += Trimmed(line.substr(0, end)) + "\n";
        line = std::string(kIndent) + line.substr(line.find_first_not_of(' ', end));
    }
    return text + line;
}

std::string CsvCell(const std::string &text)
{
    static constexpr manager::Quotes kCsvQuotes{'"', "\"", "\"", ""};
    return text.find_first_of(",\"\r\n") == std::string::npos ? text : manager::Quoted(text, kCsvQuotes);
}

} // namespace

TableLayout::TableLayout(Columns columns, size_t lineWidth)
    : columns_(std::move(columns)), lineWidth_(lineWidth), hidden_(columns_.fieldsLeftOut)
{
    size_t used = 0;
    size_t fitting = 0;
    for (Column &column : columns_.all) {
        column.width = std::max(column.width, column.heading.size());
        if (fitting != 0 && used + column.width > lineWidth)
            break;
        used += column.width + 2;
        ++fitting;
    }
    hidden_ += columns_.all.size() - fitting;
    columns_.all.resize(fitting);
}

std::string TableLayout::Header() const
{
    std::string line;
    for (const Column &column : columns_.all)
        line += Cell(column.heading, column.width, column.isNumber);
    return Trimmed(std::move(line));
}

std::string TableLayout::Row(const void *record) const
{
    std::string line;
    for (const Column &column : columns_.all)
        line += Cell(column.text(record), column.width, column.isNumber);
    if (columns_.rest)
        line += columns_.rest(record);
    return Wrapped(Trimmed(std::move(line)), lineWidth_) + "\n";
}

std::string TableLayout::CsvHeader() const
{
    std::vector<std::string> cells;
    for (const Column &column : columns_.all)
        cells.push_back(CsvCell(column.name));
    return manager::Joined(cells, ",") + "\r\n";
}

std::string TableLayout::CsvRow(const void *record) const
{
    std::vector<std::string> cells;
    for (const Column &column : columns_.all)
        cells.push_back(CsvCell(column.text(record)));
    return manager::Joined(cells, ",") + "\r\n";
}

std::string DetailText(const Json &record)
{
    Lines lines;
    AddValues(record, "", lines);
    return AlignedText(lines);
}

} // namespace rsvpctl
