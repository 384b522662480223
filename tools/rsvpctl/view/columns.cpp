// Columns of tables that have no view of their own.
#include "tools/rsvpctl/view/columns.h"

#include "manager/record/text.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace rsvpctl {
namespace {

using manager::Field, manager::FieldKind, manager::Form, manager::Leaf, manager::Meaning, manager::PlacedMeaning;

constexpr size_t kDigits[] = {0, 3, 5, 8, 10, 13, 15, 17, 20}; // of the largest number in so many bytes
constexpr size_t kTextWidth = 24;
constexpr size_t kFloatWidth = 14; // "-1.2345678e+38"

size_t WidestField(const Field &field)
{
    switch (field.kind) {
    case FieldKind::Number:
    case FieldKind::NetNumber:
        return kDigits[field.width];
    case FieldKind::Address:
    case FieldKind::NetAddress:
        return kAddressWidth;
    case FieldKind::Bytes:
        return size_t{field.width} * 2;
    case FieldKind::Secret:
        return std::strlen("hidden");
    case FieldKind::Text:
        return kTextWidth;
    default:
        return kFloatWidth;
    }
}

size_t LongestWord(const Meaning &meaning)
{
    size_t longest = 0;
    for (const auto &[number, word] : meaning.words)
        longest = std::max(longest, word.size());
    return longest;
}

size_t WidestValue(const Meaning &meaning)
{
    switch (meaning.form) {
    case Form::Address:
        return kAddressWidth;
    case Form::Bytes:
        return size_t{meaning.width} * 2;
    case Form::Bool:
        return std::strlen("yes");
    case Form::Enumeration:
        return LongestWord(meaning);
    case Form::Bits:
    case Form::Text:
        return std::max(kTextWidth, LongestWord(meaning));
    case Form::Hex:
        return 2 + size_t{meaning.width} * 2;
    default:
        if (meaning.unit.ends_with("/s"))
            return kBandwidthWidth;
        if (meaning.form == Form::Single)
            return kFloatWidth;
        return kDigits[meaning.width] +
               (meaning.unit.empty() || meaning.unit == "count" ? 0 : meaning.unit.size() + 1);
    }
}

bool IsNumber(const Meaning &meaning)
{
    return (meaning.form == Form::Number || meaning.form == Form::Signed) && !meaning.unit.ends_with("/s");
}

Column ColumnOf(const Leaf &leaf)
{
    const bool isNumber = leaf.field->kind == FieldKind::Number;
    Column column{leaf.path,
                  leaf.path,
                  WidestField(*leaf.field),
                  isNumber,
                  [leaf](const void *row) { return LeafText(leaf, row); },
                  nullptr};
    if (isNumber || leaf.field->kind == FieldKind::Address)
        column.number = [leaf](const void *row) {
            return manager::LoadNumber(manager::At(row, leaf.offset), leaf.field->width);
        };
    return column;
}

Column ColumnOf(const PlacedMeaning &placed)
{
    const Meaning &meaning = *placed.meaning;
    Column column{meaning.name,
                  HeadingOf(meaning.name),
                  WidestValue(meaning),
                  IsNumber(meaning),
                  [placed](const void *row) { return ValueText(*placed.meaning, manager::At(row, placed.base)); },
                  nullptr};
    // The bits of a single that is not negative grow with it.
    if (meaning.width <= sizeof(uint64_t) && meaning.form != Form::Enumeration && meaning.form != Form::Text)
        column.number = [placed](const void *row) {
            return NumberOf(*placed.meaning, manager::At(row, placed.base));
        };
    return column;
}

bool Overlaps(const PlacedMeaning &placed, const Leaf &leaf)
{
    return placed.Offset() < leaf.offset + leaf.field->width && leaf.offset < placed.Offset() + placed.meaning->width;
}

// Fields that are no leaves, and whose bytes do not all have names.
size_t FieldsLeftOut(const manager::RecordDescription &record, uint32_t base,
                     const std::vector<PlacedMeaning> &meanings)
{
    size_t fields = 0;
    for (const Field &field : record.fields) {
        const uint32_t begin = base + field.offset;
        const uint32_t size = field.width * std::max<uint32_t>(field.count, 1);
        const bool isAlways = field.condition.test == manager::Condition::Test::Always;
        if (field.kind == FieldKind::Record && field.count == 0 && isAlways) {
            fields += FieldsLeftOut(*field.record, begin, meanings);
            continue;
        }
        const bool isLeaf =
            isAlways && field.count == 0 && field.kind != FieldKind::List && field.kind != FieldKind::Chain;
        uint32_t named = 0;
        for (const PlacedMeaning &placed : meanings)
            named += placed.Offset() >= begin && placed.Offset() < begin + size ? placed.meaning->width : 0;
        fields += !isLeaf && named < size;
    }
    return fields;
}

std::string RestText(const std::vector<Leaf> &unnamed, const void *row)
{
    std::string text;
    for (const Leaf &leaf : unnamed) {
        const std::byte *at = manager::At(row, leaf.offset);
        if (std::any_of(at, at + leaf.field->width, [](std::byte byte) { return byte != std::byte{0}; }))
            text += fmt::format("{}{}={}", text.empty() ? "" : " ", leaf.path, LeafText(leaf, row));
    }
    return text;
}

} // namespace

std::string HeadingOf(const std::string &name)
{
    std::string heading;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z' && !heading.empty())
            heading += ' ';
        heading += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return heading;
}

Columns ColumnsOf(const manager::Table &table, const manager::Dictionary &dictionary)
{
    const manager::RecordDescription &description = table.row();
    const std::vector<PlacedMeaning> meanings = AllMeanings(description, dictionary.Of(description));
    const std::vector<std::string> &chosen = dictionary.OfTable(table.name).columns;
    const std::vector<manager::KeyPart> key = KeyPartsOf(table, dictionary);
    const auto isKey = [&](uint32_t offset) {
        return std::any_of(key.begin(), key.end(), [&](const manager::KeyPart &part) {
            return offset >= part.offset && offset < part.offset + part.size;
        });
    };
    Columns columns;
    std::vector<Leaf> unnamed;
    std::vector<std::pair<bool, Column>> found; // whether it is of the key
    for (const Leaf &leaf : Leaves(description)) {
        const bool isNamed = std::any_of(meanings.begin(), meanings.end(),
                                         [&](const PlacedMeaning &placed) { return Overlaps(placed, leaf); });
        if (isNamed)
            continue;
        const bool isChosen = std::find(chosen.begin(), chosen.end(), leaf.path) != chosen.end();
        if ((meanings.empty() && !leaf.field->isQuiet) || isChosen)
            found.emplace_back(isKey(leaf.offset), ColumnOf(leaf));
        else
            unnamed.push_back(leaf);
    }
    for (const PlacedMeaning &placed : meanings)
        found.emplace_back(isKey(placed.Offset()), ColumnOf(placed));
    std::stable_partition(found.begin(), found.end(), [](const auto &one) { return one.first; });

    for (const std::string &name : chosen) {
        const auto one =
            std::find_if(found.begin(), found.end(), [&](const auto &column) { return column.second.name == name; });
        if (one != found.end()) {
            columns.all.push_back(std::move(one->second));
            found.erase(one);
        }
    }
    for (auto &[ofKey, column] : found)
        columns.all.push_back(std::move(column));
    if (!unnamed.empty())
        columns.rest = [unnamed](const void *row) { return RestText(unnamed, row); };
    columns.fieldsLeftOut = FieldsLeftOut(description, 0, meanings);
    return columns;
}

} // namespace rsvpctl
