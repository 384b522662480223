// Values and checks, syntax by syntax: what Misfit lets pass, CellOf can make a cell of.
#include "tools/agentx/mapping.h"

#include "manager/record/text.h"
#include "manager/table/tables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fmt/format.h>

namespace agentx {
namespace {

using manager::Form, manager::Meaning;

constexpr size_t kLongestText = 255; // SnmpAdminString

/** What one of a unit is in another, if the two are of a kind. */
struct UnitFactor {
    std::string_view unit;
    double factor;
};
constexpr UnitFactor kSeconds[] = {{"s", 1}, {"ms", 1e-3}, {"us", 1e-6}};
constexpr UnitFactor kBits[] = {{"B/s", 8}, {"bit/s", 1}, {"kbit/s", 1e3}};
constexpr UnitFactor kBytes[] = {{"B", 1}, {"", 1}, {"count", 1}};
constexpr UnitFactor kCounts[] = {{"", 1}, {"count", 1}, {"B", 1}};

/** The units that a value of a syntax may come in, and how many of the syntax's own one of their base is. */
struct Quantity {
    std::span<const UnitFactor> units;
    double scale;
    double most;
};

std::optional<Quantity> QuantityOf(Syntax syntax)
{
    switch (syntax) {
    case Syntax::Ticks:
        return Quantity{kSeconds, 100, UINT32_MAX};
    case Syntax::Interval:
        return Quantity{kSeconds, 100, kMostInteger};
    case Syntax::Milliseconds:
        return Quantity{kSeconds, 1000, kMostInteger};
    case Syntax::Octets:
        return Quantity{kBytes, 1, kMostInteger};
    case Syntax::Burst:
        return Quantity{kBytes, 1, UINT32_MAX};
    case Syntax::BitRate:
        return Quantity{kBits, 1, kMostInteger};
    case Syntax::KilobitRate:
        return Quantity{kBits, 1e-3, kMostInteger};
    default:
        return std::nullopt;
    }
}

const UnitFactor *FindUnit(const Quantity &quantity, std::string_view unit)
{
    const auto found = std::find_if(quantity.units.begin(), quantity.units.end(),
                                    [&](const UnitFactor &one) { return one.unit == unit; });
    return found == quantity.units.end() ? nullptr : &*found;
}

std::optional<Cell> Saturated(double value, double most)
{
    if (std::isnan(value) || value < 0)
        return std::nullopt;
    return Cell(static_cast<uint32_t>(std::min(value, most)));
}

bool IsNumber(const Meaning &meaning)
{
    return meaning.form == Form::Number || meaning.form == Form::Hex;
}

const Word *FindWord(const Object &object, std::string_view word)
{
    const auto found =
        std::find_if(object.words.begin(), object.words.end(), [&](const Word &one) { return one.word == word; });
    return found == object.words.end() ? nullptr : &*found;
}

// Where the daemon has a word, the object's word of the same name counts; else its number must be the object's own.
std::optional<Cell> EnumerationCell(const Object &object, const Meaning &meaning, uint64_t number)
{
    const auto said = meaning.words.find(number);
    const auto isIt = [&](const Word &one) {
        return meaning.form == Form::Enumeration ? said != meaning.words.end() && one.word == said->second
                                                 : one.number == number;
    };
    const auto found = std::find_if(object.words.begin(), object.words.end(), isIt);
    return found == object.words.end() ? std::nullopt : std::optional<Cell>(found->number);
}

// BITS begin with the highest bit of the first byte.
Cell BitsCell(const Object &object, const Meaning &meaning, uint64_t number)
{
    uint32_t most = 0;
    for (const Word &word : object.words)
        most = std::max(most, word.number);
    std::string bits(most / 8 + 1, '\0');
    for (const auto &[bit, text] : meaning.words) {
        const Word *word = FindWord(object, text);
        if (word != nullptr && (number >> bit & 1) != 0)
            bits[word->number / 8] = static_cast<char>(bits[word->number / 8] | 0x80 >> word->number % 8);
    }
    return bits;
}

// Only the start of a character is a place to cut.
std::string AtMost(std::string text, size_t size)
{
    if (text.size() <= size)
        return text;
    while (size > 0 && (static_cast<uint8_t>(text[size]) & 0xc0) == 0x80)
        --size;
    text.resize(size);
    return text;
}

Oid ResourceRowOf(uint64_t resource)
{
    if (resource == 0)
        return {0, 0};
    Oid row(kResourceTable.entry.begin(), kResourceTable.entry.end());
    row.push_back(kResourceTable.objects.front().number); // the first column that can be read
    row.push_back(static_cast<uint32_t>(resource));
    return row;
}

// Why a meaning cannot become the object; an empty text if it can.
std::string Misfit(const Object &object, const Meaning &meaning)
{
    const auto wants = [&](std::string_view what) { return fmt::format("{} wants {}", object.name, what); };
    if (const auto quantity = QuantityOf(object.syntax)) {
        const bool isQuantity = IsNumber(meaning) || meaning.form == Form::Single || meaning.form == Form::Rate;
        if (isQuantity && FindUnit(*quantity, meaning.unit) != nullptr)
            return "";
        std::string units;
        for (const UnitFactor &one : quantity->units)
            units += one.unit.empty() ? "" : (units.empty() ? "" : ", ") + std::string(one.unit);
        return wants("a number in one of the units " + units);
    }
    const auto isCount = [&] {
        return IsNumber(meaning) && std::any_of(std::begin(kCounts), std::end(kCounts),
                                                [&](const UnitFactor &one) { return one.unit == meaning.unit; });
    };
    switch (object.syntax) {
    case Syntax::Enumeration:
        if (meaning.form != Form::Enumeration)
            return IsNumber(meaning) && meaning.unit.empty() ? "" : wants("words, or their numbers in the MIB");
        [[fallthrough]];
    case Syntax::Bits:
        if (object.syntax == Syntax::Bits && meaning.form != Form::Bits)
            return wants("bits");
        for (const auto &[number, word] : meaning.words) {
            if (FindWord(object, word) == nullptr)
                return fmt::format("{} has no word '{}'", object.name, word);
        }
        return "";
    case Syntax::Truth:
        return meaning.form == Form::Bool ? "" : wants("the form 'bool'");
    case Syntax::Text:
        return meaning.form == Form::Text ? "" : wants("the form 'text'");
    case Syntax::Address:
    case Syntax::LsrId:
        return meaning.form == Form::Address ? "" : wants("the form 'address'");
    case Syntax::Identifier:
        return meaning.form == Form::Address || isCount() ? "" : wants("an address or a number");
    case Syntax::Counter:
        return isCount() && meaning.counter ? "" : wants("a number with 'counter = true'");
    default:
        return isCount() ? "" : wants("a number without a unit of measure");
    }
}

} // namespace

std::string AddressOctets(uint32_t address)
{
    return {static_cast<char>(address >> 24), static_cast<char>(address >> 16), static_cast<char>(address >> 8),
            static_cast<char>(address)};
}

std::string PortOctets(uint16_t port)
{
    return {static_cast<char>(port >> 8), static_cast<char>(port)};
}

std::optional<Cell> CellOf(Syntax syntax, double value)
{
    const auto quantity = QuantityOf(syntax);
    return Saturated(value * quantity->scale, quantity->most);
}

std::optional<Cell> CellOf(const MappedField &field, const void *record)
{
    const Object &object = *field.object;
    const Meaning &meaning = field.meaning;
    const uint64_t number = manager::NumberOf(meaning, record);
    if (const auto quantity = QuantityOf(object.syntax)) {
        const double value = IsNumber(meaning) ? static_cast<double>(number)
                                               : double{std::bit_cast<float>(static_cast<uint32_t>(number))};
        return CellOf(object.syntax, value * FindUnit(*quantity, meaning.unit)->factor);
    }
    switch (object.syntax) {
    case Syntax::Enumeration:
        return EnumerationCell(object, meaning, number);
    case Syntax::Bits:
        return BitsCell(object, meaning, number);
    case Syntax::Truth:
        return Cell(TruthOf(number != 0));
    case Syntax::Text:
        return Cell(AtMost(manager::ValueText(meaning, record), kLongestText));
    case Syntax::Address:
    case Syntax::LsrId:
        return Cell(AddressOctets(static_cast<uint32_t>(number)));
    case Syntax::ResourceRow:
        return Cell(ResourceRowOf(number));
    case Syntax::Counter: // a wider one begins anew with its lower half
        return Cell(static_cast<uint32_t>(number));
    default:
        return number > object.greatest ? std::nullopt : std::optional<Cell>(static_cast<uint32_t>(number));
    }
}

// ---- Mapping ----

Mapping::Mapping(const MibTable &table, const manager::RecordDescription &record,
                 const manager::Dictionary &dictionary, std::span<const KnownField> known)
{
    std::vector<MappedField> all;
    for (const manager::PlacedMeaning &placed : AllMeanings(record, dictionary.Of(record))) {
        const Object *object = table.Find(placed.meaning->mib);
        if (object == nullptr || object->always)
            continue;
        all.push_back({object, *placed.meaning});
        all.back().meaning.offset = placed.Offset();
    }
    for (const KnownField &one : known) {
        for (const manager::Leaf &leaf : Leaves(record)) {
            if (leaf.path != one.field)
                continue;
            Meaning meaning;
            meaning.offset = leaf.offset;
            meaning.width = leaf.field->width;
            meaning.kind = leaf.field->kind;
            all.push_back({table.Find(one.object), std::move(meaning)});
        }
    }
    for (const Object &part : table.index) {
        const auto found =
            std::find_if(all.begin(), all.end(), [&](const MappedField &one) { return one.object == &part; });
        if (found != all.end())
            index_.push_back(*found);
    }
    hasIndex_ = !index_.empty() && index_.size() == table.index.size();
    for (MappedField &one : all) {
        const auto isIndex = [&](const Object &part) { return one.object == &part; };
        if (std::none_of(table.index.begin(), table.index.end(), isIndex))
            columns_.push_back(std::move(one));
    }
}

std::optional<Oid> Mapping::IndexOf(const void *record) const
{
    Oid index;
    for (const MappedField &part : index_) {
        const auto cell = CellOf(part, record);
        if (!cell)
            return std::nullopt;
        if (const auto *number = std::get_if<uint32_t>(&*cell)) {
            index.push_back(*number);
            continue;
        }
        const auto &octets = std::get<std::string>(*cell);
        if (part.object->syntax != Syntax::LsrId)
            index.push_back(static_cast<uint32_t>(octets.size()));
        for (const char octet : octets)
            index.push_back(static_cast<uint8_t>(octet));
    }
    return index;
}

void Mapping::PutCells(const void *record, Builder &builder) const
{
    for (const MappedField &column : columns_) {
        if (auto cell = CellOf(column, record))
            builder.Put(*column.object, std::move(*cell));
    }
}

// ---- The check of a whole dictionary ----

namespace {

class NameCheck {
public:
    NameCheck(const manager::Dictionary &dictionary, std::span<const Source> sources)
        : dictionary_(dictionary), sources_(sources)
    {
    }

    void Check(const manager::RecordDescription &row)
    {
        std::vector<std::string_view> seen;
        Look(row, row, dictionary_.Of(row), true, seen);
    }

private:
    // What lies in a list or an array of records is no source of anything: there are several.
    void Look(const manager::RecordDescription &row, const manager::RecordDescription &record,
              const manager::RecordMeanings &meanings, bool isOne, std::vector<std::string_view> &seen)
    {
        for (const Meaning &meaning : meanings.own) {
            if (!meaning.mib.empty())
                Look(row, meaning, isOne, seen);
        }
        for (const manager::Field &field : record.fields) {
            if (field.record != nullptr)
                Look(row, *field.record, meanings.Inside(field.name),
                     isOne && field.kind == manager::FieldKind::Record && field.count == 0, seen);
        }
    }

    void Look(const manager::RecordDescription &row, const Meaning &meaning, bool isOne,
              std::vector<std::string_view> &seen)
    {
        const Object *object = FindObject(meaning.mib);
        if (object == nullptr)
            Refuse(meaning, fmt::format("no table that is served has an object '{}'", meaning.mib));
        if (const std::string problem = Misfit(*object, meaning); !problem.empty())
            Refuse(meaning, problem);
        if (meaning.mib == kIfIndex)
            return;
        if (object->always)
            Refuse(meaning, fmt::format("no record tells {}, it is always {}", object->name, *object->always));
        const auto isSource = [&](const Source &one) {
            return one.record == &row && one.table->Find(meaning.mib) != nullptr;
        };
        if (!isOne || std::none_of(sources_.begin(), sources_.end(), isSource))
            Refuse(meaning, fmt::format("{} cannot be taken from this place of {}", object->name, row.name));
        if (std::find(seen.begin(), seen.end(), meaning.mib) != seen.end())
            Refuse(meaning, fmt::format("{} is another field of {} already", object->name, row.name));
        seen.emplace_back(meaning.mib);
    }

    [[noreturn]] void Refuse(const Meaning &meaning, const std::string &problem) const
    {
        throw manager::DictionaryError(fmt::format("{}:{}: mib: {}", dictionary_.File(), meaning.mibLine, problem));
    }

    const manager::Dictionary &dictionary_;
    std::span<const Source> sources_;
};

} // namespace

void CheckNames(const manager::Dictionary &dictionary, std::span<const Source> sources)
{
    NameCheck check(dictionary, sources);
    for (const manager::TableShape &shape : manager::AllTableShapes())
        check.Check(*shape.row);
    for (const manager::Table *single : {&manager::kGlobalInfo, &manager::kDebugSwitches})
        check.Check(single->row());
}

} // namespace agentx
