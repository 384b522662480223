// Tables and the detail view. Both take their cells from the same place as JSON does, so that the three never differ.
#include "tools/rsvpctl/print/render.h"

#include "manager/record/text.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Field, manager::FieldKind, manager::Json, manager::Leaf;
using Lines = std::vector<std::pair<std::string, std::string>>;

constexpr size_t kNumbersPerLine = 8;

// The widest text that a field can have; a text of the daemon's may be wider and then shifts its own row alone.
size_t WidestText(const Field &field)
{
    switch (field.kind) {
    case FieldKind::Number:
        return field.width == 1 ? 3 : field.width == 2 ? 5 : field.width == 4 ? 10 : 20;
    case FieldKind::Address:
        return std::strlen("255.255.255.255");
    case FieldKind::Bytes:
        return size_t{field.width} * 2;
    case FieldKind::Secret:
        return std::strlen("hidden");
    case FieldKind::Text:
        return 24;
    default:
        return std::strlen("-1.2345678e+38");
    }
}

std::string PlainText(const Json &scalar)
{
    if (scalar.is_string())
        return scalar.get<std::string>();
    return scalar.is_null() ? "-" : scalar.dump();
}

std::string Cell(const std::string &text, size_t width, bool right)
{
    return right ? fmt::format("{:>{}}  ", text, width) : fmt::format("{:<{}}  ", text, width);
}

std::string Trimmed(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// Of an array alone: DetailText puts its own indent behind each line end.
std::string ArrayText(const Json &array)
{
    if (array.size() > kNumbersPerLine &&
        std::all_of(array.begin(), array.end(), [](const Json &value) { return value == 0; }))
        return fmt::format("{} times 0", array.size());
    std::string text;
    for (size_t i = 0; i < array.size(); ++i) {
        if (i != 0)
            text += i % kNumbersPerLine == 0 ? "\n\t" : " ";
        text += PlainText(array[i]);
    }
    return text.empty() ? "none" : text;
}

void AddLines(const Json &value, const std::string &path, Lines &lines)
{
    if (value.is_object()) {
        const std::string prefix = path.empty() ? "" : path + ".";
        for (const auto &[name, member] : value.items())
            AddLines(member, prefix + name, lines);
    } else if (value.is_array() && !value.empty() && value.front().is_object()) {
        for (size_t i = 0; i < value.size(); ++i)
            AddLines(value[i], fmt::format("{}[{}]", path, i), lines);
    } else {
        lines.emplace_back(manager::HarmlessText(path),
                           value.is_array() ? ArrayText(value) : manager::HarmlessText(PlainText(value)));
    }
}

} // namespace

TableLayout::TableLayout(const manager::Table &table, size_t lineWidth)
{
    const manager::RecordDescription &description = table.row();
    std::vector<Leaf> leaves = Leaves(description);
    std::stable_partition(leaves.begin(), leaves.end(), [&](const Leaf &leaf) {
        return std::any_of(table.keyParts.begin(), table.keyParts.end(),
                           [&](const manager::KeyPart &part) { return leaf.path == part.field; });
    });
    size_t used = 0;
    for (Leaf &leaf : leaves) {
        const size_t width = std::max(WidestText(*leaf.field), std::strlen(leaf.field->name));
        if (hiddenFields_ != 0 || (!columns_.empty() && used + width > lineWidth)) {
            ++hiddenFields_;
            continue;
        }
        used += width + 2;
        columns_.push_back({std::move(leaf), width});
    }
    for (const Field &field : description.fields)
        hiddenFields_ += field.count != 0 || field.kind == FieldKind::List || field.kind == FieldKind::Chain;
}

std::string TableLayout::Header() const
{
    std::string line;
    for (const auto &[leaf, width] : columns_)
        line += Cell(leaf.field->name, width, leaf.field->kind == FieldKind::Number);
    return Trimmed(std::move(line));
}

std::string TableLayout::Row(const void *record) const
{
    std::string line;
    for (const auto &[leaf, width] : columns_) {
        const Json value = ScalarToJson(*leaf.field, manager::At(record, leaf.offset));
        line += Cell(PlainText(value), width, leaf.field->kind == FieldKind::Number);
    }
    return Trimmed(std::move(line)) + "\n";
}

std::string DetailText(const Json &record)
{
    Lines lines;
    AddLines(record, "", lines);
    size_t nameWidth = 0;
    for (const auto &[name, text] : lines)
        nameWidth = std::max(nameWidth, name.size());
    std::string out;
    for (auto &[name, text] : lines) {
        const std::string continued = "\n" + std::string(nameWidth + 2, ' ');
        for (size_t at = text.find("\n\t"); at != std::string::npos; at = text.find("\n\t", at))
            text.replace(at, 2, continued);
        out += fmt::format("{:<{}}  {}\n", name, nameWidth, text);
    }
    return out;
}

} // namespace rsvpctl
