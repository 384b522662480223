// Reading of a dictionary. Everything in it is held against the descriptions of the records: what no record has, what
// does not fit its field and what has no meaning of its own is refused with its line, and the whole file with it.
#include "manager/dictionary/dictionary.h"
#include "manager/record/text.h"
#include "toml/document.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace manager {
namespace {

using rsvp_toml::Member, rsvp_toml::Mistake, rsvp_toml::Node, rsvp_toml::NumberIn, rsvp_toml::Refuse;

constexpr uint64_t kVersion = 1;

// Those that a dictionary asks for by name; words make the other two.
constexpr Form kForms[] = {Form::Number, Form::Signed, Form::Hex,  Form::Address, Form::Bytes,
                           Form::Bool,   Form::Single, Form::Rate, Form::Text};
constexpr std::string_view kUnits[] = {"s", "ms", "us", "B", "B/s", "bit/s", "kbit/s", "count"};

template <typename Wanted> const Wanted &Require(const Member &member, std::string_view what)
{
    const auto *value = member.node.As<Wanted>();
    if (value == nullptr)
        Refuse(member.node.line, member.name, fmt::format("must be {}", what));
    return *value;
}

const Node::Table &TableOf(const Member &member)
{
    return Require<Node::Table>(member, "a table");
}

const std::string &TextOf(const Member &member)
{
    return Require<std::string>(member, "a text");
}

// A text that terminals and documents show as it is.
const std::string &PlainTextOf(const Member &member)
{
    const std::string &text = TextOf(member);
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; };
    if (!std::all_of(text.begin(), text.end(), isPlain))
        Refuse(member.node.line, member.name, "must be printable characters without quotes and backslashes");
    return text;
}

const Member *FindMember(const Node::Table &table, std::string_view name)
{
    const auto found = std::find_if(table.begin(), table.end(), [&](const Member &one) { return one.name == name; });
    return found == table.end() ? nullptr : &*found;
}

void AllowOnly(const Node::Table &table, std::initializer_list<std::string_view> names)
{
    for (const Member &member : table) {
        if (std::find(names.begin(), names.end(), member.name) == names.end())
            Refuse(member.line, member.name,
                   fmt::format("there is no such key here, only {}", fmt::join(names, ", ")));
    }
}

bool IsName(std::string_view text)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return !text.empty() && isLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

const std::string &NameIn(const Member &member)
{
    const std::string &name = TextOf(member);
    if (!IsName(name))
        Refuse(member.node.line, member.name, fmt::format("must be letters and digits, not '{}'", name));
    return name;
}

bool HoldsRecords(const Field &field)
{
    return field.record != nullptr;
}

const Field *FindField(const RecordDescription &record, std::string_view name)
{
    const auto field =
        std::find_if(record.fields.begin(), record.fields.end(), [&](const Field &one) { return name == one.name; });
    return field == record.fields.end() ? nullptr : &*field;
}

bool IsRawBytes(const Field &field)
{
    return field.kind == FieldKind::Bytes || field.kind == FieldKind::Secret;
}

// What a value is if the dictionary does not say it.
Form UsualForm(const Field &field, bool isPart)
{
    switch (field.kind) {
    case FieldKind::Address:
        return Form::Address;
    case FieldKind::Rate:
        return Form::Rate;
    case FieldKind::Float:
        return Form::Single;
    case FieldKind::Text:
        return Form::Text;
    case FieldKind::Bytes:
        return isPart ? Form::Number : Form::Bytes;
    default:
        return Form::Number;
    }
}

// Why a form cannot be that of a value; an empty text if it can.
std::string Misfit(Form form, const Meaning &meaning)
{
    const bool isWide = meaning.width > sizeof(uint64_t);
    if (meaning.kind == FieldKind::Text && form != Form::Text)
        return "takes a number, and here is a text";
    switch (form) {
    case Form::Address:
    case Form::Single:
    case Form::Rate:
        return meaning.width == 4 ? "" : fmt::format("takes 4 bytes, and here are {}", meaning.width);
    case Form::Bytes:
    case Form::Text:
        if (meaning.kind == FieldKind::Secret)
            return "would show a key";
        return meaning.kind == FieldKind::Bytes || meaning.kind == FieldKind::Text
                   ? ""
                   : "takes bytes, and here is a number";
    default:
        return isWide ? fmt::format("takes at most 8 bytes, and here are {}", meaning.width) : "";
    }
}

// The words of an enumeration or of bits, each at its number.
std::map<uint64_t, std::string> ReadWords(const Node::Table &table, uint64_t most)
{
    std::map<uint64_t, std::string> words;
    for (const Member &member : table) {
        const auto number = ParseNumber(member.name);
        if (!number || *number > most)
            Refuse(member.line, member.name, fmt::format("must be a number from 0 to {}", most));
        const std::string &word = PlainTextOf(member);
        const bool isTaken =
            std::any_of(words.begin(), words.end(), [&](const auto &other) { return other.second == word; });
        if (word.empty() || isTaken)
            Refuse(member.node.line, member.name,
                   fmt::format("the word '{}' is {}", word, isTaken ? "taken" : "empty"));
        if (!words.emplace(*number, word).second)
            Refuse(member.line, member.name, fmt::format("the number {} has a word already", *number));
    }
    return words;
}

void TakeForm(const Member &member, Form form, Meaning &meaning)
{
    if (const std::string problem = Misfit(form, meaning); !problem.empty())
        Refuse(member.node.line, member.name, fmt::format("the form '{}' {}", NameOf(form), problem));
    meaning.form = form;
}

// `as` is the name of a form, an enumeration { 1 = "up" }, or { bits = { 0 = "rsvp" } }.
void ReadForm(const Member &member, Meaning &meaning)
{
    if (const auto *table = member.node.As<Node::Table>()) {
        const Member *bits = FindMember(*table, "bits");
        if (bits != nullptr)
            AllowOnly(*table, {"bits"});
        TakeForm(member, bits != nullptr ? Form::Bits : Form::Enumeration, meaning);
        meaning.words = bits != nullptr ? ReadWords(TableOf(*bits), meaning.width * 8 - 1)
                                        : ReadWords(*table, MaximumOf(meaning.width));
        return;
    }
    const std::string &name = TextOf(member);
    const auto *form =
        std::find_if(std::begin(kForms), std::end(kForms), [&](Form one) { return name == NameOf(one); });
    if (form == std::end(kForms)) {
        std::vector<std::string_view> known;
        std::transform(std::begin(kForms), std::end(kForms), std::back_inserter(known), NameOf);
        Refuse(member.node.line, member.name,
               fmt::format("there is no form '{}', only {}", name, fmt::join(known, ", ")));
    }
    TakeForm(member, *form, meaning);
}

void ReadUnit(const Member &member, Meaning &meaning)
{
    meaning.unit = TextOf(member);
    if (std::find(std::begin(kUnits), std::end(kUnits), meaning.unit) == std::end(kUnits))
        Refuse(member.node.line, member.name,
               fmt::format("there is no unit '{}', only {}", meaning.unit, fmt::join(kUnits, ", ")));
    const bool isQuantity =
        meaning.form == Form::Number || meaning.form == Form::Signed || meaning.form == Form::Single;
    if (!isQuantity)
        Refuse(member.node.line, member.name, "only numbers and singles have a unit");
}

// What is said of one value; its place is in the meaning already.
void ReadMeaning(const Member &member, const Node::Table &table, Meaning &meaning)
{
    const Member *name = FindMember(table, "name");
    if (name == nullptr)
        Refuse(member.node.line, member.name, "has no name");
    meaning.name = NameIn(*name);
    if (const Member *as = FindMember(table, "as"))
        ReadForm(*as, meaning);
    else
        TakeForm(member, meaning.form, meaning);
    if (meaning.form == Form::Rate)
        meaning.unit = "B/s";
    if (const Member *unit = FindMember(table, "unit"))
        ReadUnit(*unit, meaning);
    if (const Member *counter = FindMember(table, "counter"))
        meaning.counter = Require<bool>(*counter, "true or false");
    if (const Member *mib = FindMember(table, "mib")) {
        meaning.mib = NameIn(*mib);
        meaning.mibLine = mib->line;
    }
    if (const Member *setting = FindMember(table, "setting"))
        meaning.setting = PlainTextOf(*setting);
}

void Place(const Field &field, uint32_t offset, uint32_t width, bool isPart, Meaning &meaning)
{
    meaning.offset = offset;
    meaning.width = width;
    meaning.kind = field.kind;
    meaning.form = UsualForm(field, isPart);
}

// One of several things that a field holds: an element of an array of numbers, or some of its bytes.
Meaning ReadPart(const Member &member, const Field &field, const Node::Table &table)
{
    const Member *at = FindMember(table, "at");
    if (at == nullptr)
        Refuse(member.node.line, member.name, "a part has no 'at'");
    Meaning meaning;
    if (field.count != 0) {
        AllowOnly(table, {"at", "name", "as", "unit", "counter", "mib", "setting"});
        const auto element = static_cast<uint32_t>(NumberIn(*at, field.count - 1));
        Place(field, field.offset + element * field.width, field.width, true, meaning);
        meaning.field = fmt::format("{}[{}]", field.name, element);
    } else {
        AllowOnly(table, {"at", "width", "name", "as", "unit", "counter", "mib", "setting"});
        const auto first = static_cast<uint32_t>(NumberIn(*at, field.width - 1));
        const Member *given = FindMember(table, "width");
        const auto width = given == nullptr ? 1 : static_cast<uint32_t>(NumberIn(*given, UINT16_MAX));
        if (width == 0 || width > field.width - first)
            Refuse(given == nullptr ? member.node.line : given->node.line, member.name,
                   fmt::format("a part of {} bytes from byte {} is beyond its field, which has {}", width, first,
                               field.width));
        Place(field, field.offset + first, width, true, meaning);
        meaning.field = width == 1 ? fmt::format("{}[{}]", field.name, first)
                                   : fmt::format("{}[{}..{}]", field.name, first, first + width - 1);
    }
    ReadMeaning(member, table, meaning);
    return meaning;
}

void RefuseIfTaken(const Member &member, const RecordDescription &record, const RecordMeanings &meanings,
                   const Meaning &meaning, std::string_view field)
{
    const bool isRoute = std::any_of(meanings.inside.begin(), meanings.inside.end(),
                                     [&](const auto &inside) { return inside.second.name == meaning.name; });
    if (isRoute || meanings.Find(meaning.name) != nullptr)
        Refuse(member.line, member.name, fmt::format("the name '{}' is taken", meaning.name));
    if (meaning.name != field && FindField(record, meaning.name) != nullptr)
        Refuse(member.line, member.name, fmt::format("the name '{}' is that of another field", meaning.name));
}

void ReadField(const Member &member, const RecordDescription &record, const Field &field, RecordMeanings &meanings)
{
    const Node::Table &table = TableOf(member);
    const auto add = [&](Meaning meaning) {
        RefuseIfTaken(member, record, meanings, meaning, field.name);
        meanings.own.push_back(std::move(meaning));
    };
    if (const Member *parts = FindMember(table, "parts")) {
        AllowOnly(table, {"parts"});
        if (field.count == 0 && !IsRawBytes(field))
            Refuse(parts->line, member.name, "only bytes and arrays have parts");
        for (const Node &part : Require<Node::Array>(*parts, "a list of tables")) {
            const Member one{member.name, part.line, part};
            add(ReadPart(one, field, TableOf(one)));
        }
        return;
    }
    if (field.count != 0)
        Refuse(member.line, member.name, "an array takes 'parts', a table for each element that has a name");
    if (field.kind == FieldKind::Secret)
        Refuse(member.line, member.name, "key material has no meaning as a whole, only 'parts' around it");
    AllowOnly(table, {"name", "as", "unit", "counter", "mib", "setting"});
    Meaning meaning;
    Place(field, field.offset, field.width, false, meaning);
    meaning.field = field.name;
    ReadMeaning(member, table, meaning);
    add(std::move(meaning));
}

// In the order of the record, whatever the order of the file.
void Sort(RecordMeanings &meanings)
{
    std::stable_sort(meanings.own.begin(), meanings.own.end(),
                     [](const Meaning &left, const Meaning &right) { return left.offset < right.offset; });
}

bool IsRoute(const Field &field)
{
    return field.kind == FieldKind::List && field.record == &Describe<RSVP_MOR_RouteEntry>();
}

// A route has a name as a whole. What its entries hold is settled.
void ReadRoute(const Member &member, const RecordDescription &record, RecordMeanings &meanings)
{
    const Node::Table &table = TableOf(member);
    AllowOnly(table, {"name"});
    const Member *name = FindMember(table, "name");
    if (name == nullptr)
        Refuse(member.line, member.name, "has no name");
    Meaning meaning;
    meaning.name = NameIn(*name);
    RefuseIfTaken(*name, record, meanings, meaning, member.name);
    meanings.inside[member.name].name = meaning.name;
}

RecordMeanings ReadRecord(const RecordDescription &record, const Node::Table &table)
{
    RecordMeanings meanings;
    for (const Member &member : table) {
        const Field *field = FindField(record, member.name);
        if (field == nullptr)
            Refuse(member.line, member.name, fmt::format("{} has no such field", record.name));
        if (IsRoute(*field))
            ReadRoute(member, record, meanings);
        else if (HoldsRecords(*field))
            meanings.inside[field->name] = ReadRecord(*field->record, TableOf(member));
        else
            ReadField(member, record, *field, meanings);
    }
    Sort(meanings);
    return meanings;
}

// Gives the records inside a record the meanings that their type has everywhere, unless this place has its own.
void Complete(const RecordDescription &record, const std::map<std::string, RecordMeanings, std::less<>> &given,
              RecordMeanings &meanings)
{
    for (const Field &field : record.fields) {
        if (!HoldsRecords(field))
            continue;
        const auto usual = given.find(std::string_view(field.record->name));
        const auto own = meanings.inside.find(std::string_view(field.name));
        if (own == meanings.inside.end() && usual != given.end())
            meanings.inside[field.name] = usual->second;
        RecordMeanings inside = meanings.Inside(field.name);
        Complete(*field.record, given, inside);
        if (!inside.name.empty() || !inside.own.empty() || !inside.inside.empty())
            meanings.inside[field.name] = std::move(inside);
    }
}

/** A field of a row, or a field of a record inside it. */
struct FoundField {
    const Field *field = nullptr; // null: there is none
    uint32_t offset = 0;
};

FoundField FindPath(const RecordDescription &record, std::string_view path)
{
    const size_t dot = path.find('.');
    const Field *field = FindField(record, path.substr(0, dot));
    if (field == nullptr || field->count != 0 || field->condition.test != Condition::Test::Always)
        return {};
    if (dot == std::string_view::npos)
        return {field, field->offset};
    if (field->kind != FieldKind::Record)
        return {};
    FoundField inside = FindPath(*field->record, path.substr(dot + 1));
    inside.offset += field->offset;
    return inside;
}

// A field of the row for each field of the key or for a run of them; 0 for one that stays 0, as do those after the
// last.
std::vector<KeyPart> ReadNextKey(const Member &member, const TableShape &table)
{
    const std::vector<Leaf> leaves = Leaves(*table.key);
    std::vector<KeyPart> parts;
    size_t next = 0;
    for (const Node &element : Require<Node::Array>(member, "a list of fields")) {
        if (next == leaves.size())
            Refuse(element.line, member.name, fmt::format("the key has no more than {} fields", leaves.size()));
        const auto *zero = element.As<int64_t>();
        if (zero != nullptr && *zero == 0) {
            ++next;
            continue;
        }
        const auto *name = element.As<std::string>();
        if (name == nullptr)
            Refuse(element.line, member.name, "must be names of fields, or 0");
        const auto [field, offset] = FindPath(*table.row, *name);
        if (field == nullptr)
            Refuse(element.line, member.name, fmt::format("{} has no field '{}'", table.row->name, *name));
        // Bytes are copied as they lie, so each field of what is copied has the width of that of the key.
        const uint32_t begin = leaves[next].offset;
        parts.push_back({offset, field->width, begin});
        uint32_t filled = 0;
        const auto fits = [&](const Leaf &one) {
            const Leaf *place = next < leaves.size() ? &leaves[next++] : nullptr;
            filled += one.field->width;
            return place != nullptr && place->offset == begin + one.offset &&
                   place->field->width == one.field->width && IsRawBytes(*place->field) == IsRawBytes(*one.field);
        };
        const auto given = HoldsRecords(*field) ? Leaves(*field->record) : std::vector{Leaf{*name, field, 0}};
        if (!std::all_of(given.begin(), given.end(), fits) || filled != field->width)
            Refuse(element.line, member.name, fmt::format("'{}' does not fit the key", *name));
    }
    return parts;
}

std::vector<std::string> ReadColumns(const Member &member, const TableShape &table, const RecordMeanings &meanings)
{
    std::vector<std::string> columns;
    for (const Node &element : Require<Node::Array>(member, "a list of names")) {
        const auto *name = element.As<std::string>();
        const auto isIt = [&](const PlacedMeaning &placed) { return placed.meaning->name == *name; };
        const auto named = AllMeanings(*table.row, meanings);
        if (name == nullptr ||
            (std::none_of(named.begin(), named.end(), isIt) && FindPath(*table.row, *name).field == nullptr))
            Refuse(element.line, member.name,
                   fmt::format("{} has nothing of the name '{}'", table.row->name, name == nullptr ? "" : *name));
        if (std::find(columns.begin(), columns.end(), *name) != columns.end())
            Refuse(element.line, member.name, fmt::format("'{}' is given twice", *name));
        columns.push_back(*name);
    }
    return columns;
}

} // namespace

Dictionary::Dictionary(std::string_view text, const std::string &file, std::span<const TableShape> tables)
try : file_(file) {
    const Node document = rsvp_toml::ParseDocument(text);
    const auto &top = *document.As<Node::Table>();
    AllowOnly(top, {"dictionary", "daemon", "end-of-table", "record", "table"});
    const Member *version = FindMember(top, "dictionary");
    if (version == nullptr || NumberIn(*version, UINT32_MAX) != kVersion)
        Refuse(version == nullptr ? 1 : version->line, "dictionary",
               fmt::format("must be {}, the version of this form", kVersion));
    const Member *daemon = FindMember(top, "daemon");
    if (daemon == nullptr || PlainTextOf(*daemon).empty())
        Refuse(daemon == nullptr ? 1 : daemon->line, "daemon", "must be the daemon's name");
    daemon_ = TextOf(*daemon);
    const Member *ends = FindMember(top, "end-of-table");
    if (ends == nullptr || Require<Node::Array>(*ends, "a list of statuses").empty())
        Refuse(ends == nullptr ? 1 : ends->line, "end-of-table", "must be the statuses that end a walk in order");
    for (const Node &end : Require<Node::Array>(*ends, "a list of statuses"))
        ends_.insert(static_cast<uint32_t>(NumberIn({ends->name, end.line, end}, UINT32_MAX)));

    if (const Member *records = FindMember(top, "record")) {
        for (const Member &member : TableOf(*records)) {
            const auto all = AllRecords();
            const auto record =
                std::find_if(all.begin(), all.end(), [&](const auto *one) { return member.name == one->name; });
            if (record == all.end())
                Refuse(member.line, member.name, "there is no such record");
            records_[member.name] = ReadRecord(**record, TableOf(member));
        }
    }
    const auto given = records_;
    for (const RecordDescription *record : AllRecords())
        Complete(*record, given, records_[record->name]);

    if (const Member *sections = FindMember(top, "table")) {
        for (const Member &member : TableOf(*sections)) {
            const auto table = std::find_if(tables.begin(), tables.end(),
                                            [&](const TableShape &one) { return member.name == one.name; });
            if (table == tables.end())
                Refuse(member.line, member.name, "there is no such table");
            AllowOnly(TableOf(member), {"next-key", "columns"});
            TableMeanings &meanings = tables_[member.name];
            if (const Member *nextKey = FindMember(TableOf(member), "next-key"))
                meanings.nextKey = ReadNextKey(*nextKey, *table);
            if (const Member *columns = FindMember(TableOf(member), "columns"))
                meanings.columns = ReadColumns(*columns, *table, Of(*table->row));
        }
    }
} catch (const Mistake &mistake) {
    throw DictionaryError(fmt::format("{}:{}: {}", file, mistake.Line(), mistake.what()));
}

} // namespace manager
