// Objects become inline tables, so that a row takes few lines.
#include "host/daemon/scenario/print.h"

#include "host/daemon/scenario/rows.h"

namespace rsvpsimd {

namespace {

// A number between 10.0.0.0 and 10.255.255.255 is most likely an address, and is the same number if it is not.
std::string NumberText(uint64_t number)
{
    if (number >> 24 != 10)
        return fmt::format("{}", number);
    return fmt::format("\"{}.{}.{}.{}\"", number >> 24, number >> 16 & 0xFF, number >> 8 & 0xFF, number & 0xFF);
}

std::string ValueText(const Value &value)
{
    if (const auto *number = std::get_if<uint64_t>(&value))
        return NumberText(*number);
    if (const auto *real = std::get_if<double>(&value))
        return fmt::format("{}", *real);
    if (const auto *bytes = std::get_if<Bytes>(&value))
        return fmt::format("\"{:02x}\"", fmt::join(*bytes, ""));
    return fmt::format("[{}]", fmt::join(std::get<std::vector<uint64_t>>(value), ", "));
}

using Lines = std::vector<std::string>; // "key = value"

// The fields of an object, which follow each other, make one line.
Lines RecordLines(const Record &record)
{
    Lines lines;
    for (auto field = record.begin(); field != record.end();) {
        const std::string object = field->first.substr(0, field->first.find('.'));
        if (object == field->first) {
            lines.push_back(fmt::format("{} = {}", object, ValueText(field->second)));
            ++field;
            continue;
        }
        Lines inside;
        for (; field != record.end() && field->first.starts_with(object + "."); ++field)
            inside.push_back(
                fmt::format("{} = {}", field->first.substr(object.size() + 1), ValueText(field->second)));
        lines.push_back(fmt::format("{} = {{ {} }}", object, fmt::join(inside, ", ")));
    }
    return lines;
}

Lines BlockLines(const Block &block)
{
    Lines lines;
    if (!block.key.empty())
        lines.push_back(fmt::format("{} = {{ {} }}", kRequestKey, fmt::join(RecordLines(block.key), ", ")));
    std::ranges::copy(RecordLines(block.fields), std::back_inserter(lines));
    for (const auto &[name, text] : block.texts)
        lines.push_back(fmt::format("{} = \"{}\"", name, text));
    for (const auto &[name, entries] : block.lists) {
        Lines inside;
        for (const Block &entry : entries)
            inside.push_back(fmt::format("{{ {} }}", fmt::join(BlockLines(entry), ", ")));
        lines.push_back(fmt::format("{} = [{}]", name, fmt::join(inside, ", ")));
    }
    return lines;
}

} // namespace

std::string RowText(const RowKind &kind, const Block &row)
{
    return fmt::format("\n[[{}]]\n{}\n", kind.name, fmt::join(BlockLines(row), "\n"));
}

} // namespace rsvpsimd
