// Counting of rows, and figures of them by the meanings of their words.
#include "tools/rsvpctl/metrics/table_figures.h"

#include "manager/record/text.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Form, manager::KeyPart, manager::Leaf, manager::Meaning, manager::PlacedMeaning;

/** A unit of dictionaries in the base units of Prometheus. */
struct BaseUnit {
    std::string_view unit;
    std::string_view name;
    double times;
    double over; // not a factor below 1, which would not give the digits that a person expects
};

constexpr BaseUnit kBaseUnits[] = {
    {"s", "seconds", 1, 1},
    {"ms", "seconds", 1, 1e3},
    {"us", "seconds", 1, 1e6},
    {"B", "bytes", 1, 1},
    {"B/s", "bytes_per_second", 1, 1},
    {"bit/s", "bytes_per_second", 1, 8},
    {"kbit/s", "bytes_per_second", 125, 1},
};
constexpr BaseUnit kNoUnit{"", "", 1, 1};

const BaseUnit &BaseUnitOf(const Meaning &meaning)
{
    const auto *unit = std::find_if(std::begin(kBaseUnits), std::end(kBaseUnits),
                                    [&](const BaseUnit &one) { return one.unit == meaning.unit; });
    return unit == std::end(kBaseUnits) ? kNoUnit : *unit;
}

// Other numbers name something: an index, a priority.
bool IsQuantity(const Meaning &meaning)
{
    const bool isNumber = meaning.form == Form::Number || meaning.form == Form::Signed ||
                          meaning.form == Form::Single || meaning.form == Form::Rate;
    return isNumber && (meaning.counter || !meaning.unit.empty());
}

double ValueOf(const PlacedMeaning &placed, const void *row)
{
    const manager::Json value = ValueJson(*placed.meaning, manager::At(row, placed.base));
    double number = 0;
    if (value.is_string()) { // 64 bits, an infinity, no number
        const auto &text = value.get_ref<const std::string &>();
        std::from_chars(text.data(), text.data() + text.size(), number);
    } else {
        number = value.get<double>();
    }
    const BaseUnit &unit = BaseUnitOf(*placed.meaning);
    return number * unit.times / unit.over;
}

// The words that a dictionary knows are few; those that a daemon may send are not.
std::string WordText(const PlacedMeaning &placed, const void *row)
{
    const Meaning &meaning = *placed.meaning;
    const std::byte *record = manager::At(row, placed.base);
    const uint64_t number = NumberOf(meaning, record);
    if (meaning.form == Form::Bool)
        return number == 0 ? "false" : "true";
    return meaning.words.contains(number) ? meaning.words.at(number) : "other";
}

bool LiesIn(const std::vector<KeyPart> &key, uint32_t offset)
{
    return std::any_of(key.begin(), key.end(), [&](const KeyPart &part) {
        return offset >= part.offset && offset < part.offset + part.size;
    });
}

bool IsNothing(const Leaf &leaf, const void *row)
{
    const std::byte *at = manager::At(row, leaf.offset);
    return std::all_of(at, at + leaf.field->width, [](std::byte byte) { return byte == std::byte{0}; });
}

std::string FigureHelp(const manager::Table &table, const Meaning &meaning)
{
    return fmt::format("{} of {}: {}{}{}", meaning.name, table.name, meaning.field, meaning.mib.empty() ? "" : ", ",
                       meaning.mib);
}

std::string NameOf(const manager::Table &table, const Meaning &meaning)
{
    std::string name = SnakeCase(table.name) + "_" + FigureName(meaning.name);
    const std::string_view unit = BaseUnitOf(meaning).name;
    if (!unit.empty() && !name.ends_with(fmt::format("_{}", unit)))
        name += fmt::format("_{}", unit);
    return name;
}

// One that can become less is no counter to a server.
Family::Kind KindOf(const Meaning &meaning)
{
    return meaning.counter && meaning.form == Form::Number ? Family::Kind::Counter : Family::Kind::Gauge;
}

} // namespace

TableFigures::TableFigures(const manager::Table &table, const manager::Dictionary &dictionary, uint64_t mostRows)
    : table_(table), mostRows_(mostRows)
{
    const manager::RecordDescription &record = table.row();
    const std::vector<PlacedMeaning> meanings = AllMeanings(record, dictionary.Of(record));
    const std::vector<KeyPart> key = table.key == nullptr ? std::vector<KeyPart>() : KeyPartsOf(table, dictionary);
    const std::vector<std::string> &columns = dictionary.OfTable(table.name).columns;
    for (const Leaf &leaf : Leaves(record)) {
        if (!LiesIn(key, leaf.offset) || MeaningAt(record, dictionary.Of(record), leaf.offset) != nullptr)
            continue;
        // What the daemon has not named beside what it has is mostly nothing.
        const bool mayBeNothing = leaf.field->isQuiet || !meanings.empty();
        identity_.push_back({SnakeCase(leaf.path), [leaf, mayBeNothing](const void *row) {
                                 return mayBeNothing && IsNothing(leaf, row) ? "" : LeafText(leaf, row);
                             }});
    }
    for (const PlacedMeaning &placed : meanings) {
        const bool isColumn =
            columns.empty() || std::find(columns.begin(), columns.end(), placed.meaning->name) != columns.end();
        AddMeaning(placed, LiesIn(key, placed.Offset()), isColumn && table.key != nullptr);
    }
}

void TableFigures::AddMeaning(const PlacedMeaning &placed, bool isOfKey, bool isColumn)
{
    const Meaning &meaning = *placed.meaning;
    if (isOfKey || meaning.form == Form::Text) {
        identity_.push_back({SnakeCase(meaning.name), [placed](const void *row) {
                                 return ValueText(*placed.meaning, manager::At(row, placed.base));
                             }});
    } else if (IsQuantity(meaning)) {
        quantities_.push_back({placed, {}});
    } else if (meaning.form == Form::Enumeration || meaning.form == Form::Bool) {
        const Label label{SnakeCase(meaning.name), [placed](const void *row) { return WordText(placed, row); }};
        words_.push_back(label);
        if (isColumn)
            kinds_.push_back(label);
    }
}

void TableFigures::Take(const void *row)
{
    ++rows_;
    Labels kind;
    for (const Label &label : kinds_)
        kind.emplace_back(label.name, label.text(row));
    if (!kind.empty())
        ++rowsOfKind_[kind];
    if (mostRows_ != 0)
        TakeFigures(row);
}

// A table that changes while it is walked can give a row twice, and one series twice would spoil the whole document.
void TableFigures::TakeFigures(const void *row)
{
    Labels identity;
    for (const Label &label : identity_)
        identity.emplace_back(label.name, label.text(row));
    if (taken_.size() == mostRows_ || !identities_.insert(identity).second) {
        ++leftOut_;
        return;
    }
    Labels words = identity;
    for (const Label &label : words_)
        words.emplace_back(label.name, label.text(row));
    taken_.emplace_back(std::move(identity), std::move(words));
    for (Quantity &quantity : quantities_)
        quantity.values.push_back(ValueOf(quantity.placed, row));
}

void TableFigures::AddTo(Exposition &document) const
{
    const std::string name = SnakeCase(table_.name);
    Family &kinds = document.Add(name, Family::Kind::Gauge, fmt::format("Rows of {} by their words", table_.name));
    for (const auto &[kind, rows] : rowsOfKind_)
        kinds.Add(kind, static_cast<double>(rows));
    Family &words =
        document.Add(name + "_info", Family::Kind::Gauge, fmt::format("A row of {} with its words", table_.name));
    for (const auto &[identity, all] : taken_) {
        if (!all.empty())
            words.Add(all, 1);
    }
    for (const Quantity &quantity : quantities_) {
        const Meaning &meaning = *quantity.placed.meaning;
        Family &family = document.Add(NameOf(table_, meaning), KindOf(meaning), FigureHelp(table_, meaning));
        for (size_t i = 0; i < taken_.size(); ++i)
            family.Add(taken_[i].first, quantity.values[i]);
    }
}

} // namespace rsvpctl
