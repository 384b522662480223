// Writing of the document.
#include "tools/rsvpctl/metrics/exposition.h"

#include "manager/record/text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace rsvpctl {
namespace {

constexpr std::string_view kFigurePrefix = "rsvp_mor_";
constexpr std::string_view kCounterEnd = "_total";

// Types of families, their ends, and units that are not written out: as a word of a name each would say what the
// figure is not.
constexpr std::string_view kReserved[] = {
    "counter", "gauge", "histogram", "summary", "bucket", "count", "sum", "total", "info", "s", "ms", "us",
    "ns",      "sec",   "b",         "kb",      "mb",     "gb",    "tb",  "pb",    "m",    "h", "d"};

bool IsReserved(std::string_view word)
{
    return std::find(std::begin(kReserved), std::end(kReserved), word) != std::end(kReserved);
}

bool IsUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

std::string EscapedValue(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '\\' || c == '"')
            escaped += '\\';
        escaped += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return escaped;
}

std::string SeriesLabels(const Labels &labels)
{
    std::string text;
    std::set<std::string> taken;
    for (const auto &[name, value] : labels) {
        if (!value.empty())
            text += fmt::format("{}{}=\"{}\"", text.empty() ? "{" : ",", Untaken(name, taken), EscapedValue(value));
    }
    return text.empty() ? text : text + "}";
}

std::string NumberText(double value)
{
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value > 0 ? "+Inf" : "-Inf";
    return fmt::format("{}", value);
}

} // namespace

std::string SnakeCase(std::string_view words)
{
    std::string name;
    for (size_t i = 0; i < words.size(); ++i) {
        const char c = words[i];
        // A word begins with a capital letter that follows a small one, or that a small one follows.
        const bool begins =
            i != 0 && IsUpper(c) && (!IsUpper(words[i - 1]) || (i + 1 < words.size() && !IsUpper(words[i + 1])));
        if (begins && name.back() != '_')
            name += '_';
        name += IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c == ' ' || c == '-' || c == '.' ? '_' : c;
    }
    return name;
}

std::string FigureName(std::string_view words)
{
    const std::string name = SnakeCase(words);
    std::string joined;
    bool wasReserved = true; // nothing stands before the first word
    for (const std::string_view word : manager::Split(name, '_')) {
        const bool isReserved = IsReserved(word);
        const bool isLast = word.data() + word.size() == name.data() + name.size();
        if (!wasReserved && !(isReserved && isLast))
            joined += '_';
        joined += word;
        wasReserved = isReserved;
    }
    return IsReserved(joined) ? joined + "value" : joined;
}

std::string Untaken(const std::string &name, std::set<std::string> &taken)
{
    std::string untaken = name;
    for (int number = 2; !taken.insert(untaken).second; ++number)
        untaken = fmt::format("{}_{}", name, number);
    return untaken;
}

Family::Family(std::string name, Kind kind, std::string help)
    : name_(std::move(name)), kind_(kind), help_(std::move(help))
{
}

void Family::Add(const Labels &labels, double value)
{
    series_.push_back({SeriesLabels(labels), NumberText(value)});
}

Family &Exposition::Add(const std::string &name, Family::Kind kind, const std::string &help)
{
    return families_.emplace_back(Untaken(fmt::format("{}{}", kFigurePrefix, name), names_), kind, help);
}

std::string Exposition::Text(Format format) const
{
    std::string text;
    for (const Family &family : families_) {
        if (family.series_.empty())
            continue;
        const bool isCounter = family.kind_ == Family::Kind::Counter;
        const std::string series = isCounter ? fmt::format("{}{}", family.name_, kCounterEnd) : family.name_;
        const std::string &name = format == Format::OpenMetrics ? family.name_ : series;
        text +=
            fmt::format("# HELP {} {}\n# TYPE {} {}\n", name, family.help_, name, isCounter ? "counter" : "gauge");
        for (const auto &[labels, value] : family.series_)
            text += fmt::format("{}{} {}\n", series, labels, value);
    }
    return format == Format::OpenMetrics ? text + "# EOF\n" : text;
}

} // namespace rsvpctl
