// Prints the dissector for Wireshark: the tables of the simulated daemon and the names of its dictionary as tables in
// Lua, then the part that is written by hand and works from them. So a new field, command or table needs nothing
// here.
#include "docs/translated.h"
#include "host/daemon/capture/captured_frame.h"
#include "host/daemon/capture/pcapng.h"
#include "host/daemon/device/device.h"
#include "manager/dictionary/find.h"
#include "manager/table/tables.h"

#include <fmt/format.h>
#include <fstream>
#include <map>
#include <set>

namespace {

using rsvpsimd::Layout;

struct WireField {
    std::string name;
    const rsvpsimd::Field *field;
};

// With the fields inside of others behind them.
std::vector<WireField> FieldsOf(const Layout &layout)
{
    std::vector<WireField> fields;
    for (const rsvpsimd::Field &field : layout.fields) {
        fields.push_back({field.name, &field});
        for (const rsvpsimd::Field &inner : field.inside)
            fields.push_back({field.name + "." + inner.name, &inner});
    }
    return fields;
}

// A scalar of a record, or an array of them; unlike manager::Leaves with those of arrays and of forms.
struct RecordField {
    std::string name;
    const manager::Field *field;
    uint32_t offset;

    uint32_t Size() const { return field->width * std::max(field->count, 1U); }
};

void Flatten(std::vector<RecordField> &all, const manager::RecordDescription &record, const std::string &prefix,
             uint32_t base)
{
    for (const manager::Field &field : record.fields) {
        if (field.kind != manager::FieldKind::Record) {
            all.push_back({prefix + field.name, &field, base + field.offset});
            continue;
        }
        for (uint32_t i = 0; i < std::max(field.count, 1U); ++i)
            Flatten(all, *field.record,
                    field.count == 0 ? fmt::format("{}{}.", prefix, field.name)
                                     : fmt::format("{}{}[{}].", prefix, field.name, i),
                    base + field.offset + i * field.width);
    }
}

bool IsOnTheWire(const manager::Meaning &meaning)
{
    return meaning.kind != manager::FieldKind::Text;
}

// The dictionary, from the side of the wire. A record's fields have the names of the wire, so that a value belongs to
// the smallest record that has all of its fields, but for those that only some forms have.
class Names {
public:
    Names() : dictionary_(manager::kSimulatedDaemon, "rsvpsimd.toml", manager::AllTableShapes())
    {
        for (const manager::RecordDescription *record : manager::AllRecords())
            Flatten(records_.emplace_back(record, std::vector<RecordField>{}).second, *record, "", 0);
    }

    const manager::RecordDescription *RecordOf(const Layout &layout) const
    {
        const std::pair<const manager::RecordDescription *, std::vector<RecordField>> *best = nullptr;
        for (const auto &candidate : records_) {
            const bool hasAll = std::ranges::all_of(layout.fields, [&](const rsvpsimd::Field &field) {
                return field.form ||
                       std::ranges::find(candidate.second, field.name, &RecordField::name) != candidate.second.end();
            });
            if (hasAll && (best == nullptr || candidate.second.size() < best->second.size()))
                best = &candidate;
        }
        return best == nullptr ? nullptr : best->first;
    }

    const manager::RecordMeanings &Of(const manager::RecordDescription &record) const
    {
        return dictionary_.Of(record);
    }

    struct Place {
        const manager::Meaning *meaning;
        std::string field;
        uint32_t at; // from the start of the field
    };

    std::vector<Place> In(const manager::RecordDescription &record) const
    {
        std::vector<RecordField> fields;
        Flatten(fields, record, "", 0);
        std::vector<Place> places;
        for (const manager::PlacedMeaning &placed : manager::AllMeanings(record, dictionary_.Of(record))) {
            const auto field = std::ranges::find_if(fields, [&](const RecordField &one) {
                return placed.Offset() >= one.offset && placed.Offset() < one.offset + one.Size();
            });
            if (IsOnTheWire(*placed.meaning) && field != fields.end())
                places.push_back({placed.meaning, field->name, placed.Offset() - field->offset});
        }
        return places;
    }

private:
    manager::Dictionary dictionary_;
    std::vector<std::pair<const manager::RecordDescription *, std::vector<RecordField>>> records_;
};

std::string_view FormOf(const rsvpsimd::Field &field)
{
    if (field.secret)
        return "secret";
    switch (field.order) {
    case rsvpsimd::Order::Network:
        return "number";
    case rsvpsimd::Order::Address:
        return "address";
    case rsvpsimd::Order::Float:
        return "single";
    case rsvpsimd::Order::Rate:
        return "wirerate";
    case rsvpsimd::Order::Raw:
        break;
    }
    return field.width == 1 ? "number" : "bytes";
}

template <typename Map> std::string Words(const Map &words)
{
    std::string text;
    for (const auto &[number, word] : words)
        text += fmt::format("{}[{}] = \"{}\"", text.empty() ? "" : ", ", number, word);
    return fmt::format("{{ {} }}", text);
}

// What is on the wire is not what the dictionary speaks of where the library translates.
std::string WordsOnTheWire(const manager::Meaning &meaning, bool isTranslated)
{
    if (!isTranslated)
        return ", words = " + Words(meaning.words);
    std::map<uint64_t, std::string> words;
    for (const auto &[wire, record] : documents::kTranslations)
        words[wire] = meaning.words.at(record);
    return fmt::format(", words = {}, other = \"{}\"", Words(words),
                       meaning.words.at(documents::kTranslationOfOthers));
}

void PrintMeaning(const Names::Place &place, const rsvpsimd::Field &field, bool isTranslated)
{
    const manager::Meaning &meaning = *place.meaning;
    const bool isRate = field.order == rsvpsimd::Order::Rate;
    fmt::print("      {{ name = \"{}\", at = {}, width = {}, form = \"{}\"{}{} }},\n", meaning.name,
               field.offset + place.at, meaning.width, isRate ? "wirerate" : manager::NameOf(meaning.form),
               meaning.unit.empty() ? "" : fmt::format(", unit = \"{}\"", meaning.unit),
               meaning.words.empty() ? "" : WordsOnTheWire(meaning, isTranslated));
}

void PrintField(const Layout &layout, const WireField &wire, const std::vector<Names::Place> &places)
{
    const rsvpsimd::Field &field = *wire.field;
    fmt::print("    {{ name = \"{}\", at = {}, width = {}, count = {}, form = \"{}\"", wire.name, field.offset,
               field.width, field.count, field.inside.empty() ? FormOf(field) : "holder");
    if (field.form) {
        const auto decider = std::ranges::find(layout.fields, field.form->field, &rsvpsimd::Field::name);
        const std::set<uint64_t> kinds(field.form->kinds.begin(), field.form->kinds.end());
        fmt::print(", when = {{ at = {}, width = {}, among = {}, kinds = {{ ", decider->offset, decider->width,
                   field.form->among);
        for (const uint64_t kind : kinds)
            fmt::print("[{}] = true, ", kind);
        fmt::print("}} }}");
    }
    const bool isTranslated =
        layout.name == documents::kTranslatedLayout.Spec().name && field.name == documents::kTranslatedField;
    bool hasNames = false;
    for (const Names::Place &place : places) {
        if (place.field != wire.name)
            continue;
        fmt::print("{}", hasNames ? "" : ", named = {\n");
        hasNames = true;
        PrintMeaning(place, field, isTranslated);
    }
    fmt::print("{}}},\n", hasNames ? "    } " : " ");
}

// Every name of a record that is on the wire must be at a field of some value, else the dictionary and the tables
// do not mean the same records.
bool PrintLayouts(const Names &names)
{
    std::set<const manager::Meaning *> placed;
    std::set<const manager::RecordDescription *> records;
    fmt::print("protocol.layouts = {{\n");
    for (const Layout &layout : rsvpsimd::AllLayouts()) {
        const manager::RecordDescription *record = layout.fields.empty() ? nullptr : names.RecordOf(layout);
        const auto places = record == nullptr ? std::vector<Names::Place>{} : names.In(*record);
        records.insert(record);
        fmt::print("  {} = {{ size = {},\n", layout.name, layout.size);
        for (const WireField &field : FieldsOf(layout)) {
            PrintField(layout, field, places);
            for (const Names::Place &place : places)
                if (place.field == field.name)
                    placed.insert(place.meaning);
        }
        fmt::print("  }},\n");
    }
    fmt::print("}}\n\nprotocol.lists = {{\n");
    for (const rsvpsimd::ListSpec &list : rsvpsimd::kListSpecs)
        fmt::print("  {} = {{ width = {}, entry = \"{}\" }},\n", list.name, list.countWidth, list.entry.Spec().name);
    fmt::print("}}\n\n");

    bool complete = true;
    records.erase(nullptr);
    for (const manager::RecordDescription *record : records)
        for (const Names::Place &place : names.In(*record))
            if (!placed.contains(place.meaning)) {
                fmt::print(stderr, "the dictionary names {} of {}, which no value has\n", place.field, record->name);
                complete = false;
            }
    return complete;
}

void PrintItem(uint16_t type, const rsvpsimd::ItemKind &item, const std::string &meaning = "")
{
    fmt::print("[{}] = {{ name = \"{}\"", type, item.name);
    if (!meaning.empty())
        fmt::print(", meaning = \"{}\"", meaning);
    if (item.list)
        fmt::print(", list = \"{}\"", (*item.list)->name);
    else if (item.layout)
        fmt::print(", layout = \"{}\"", item.layout->Spec().name);
    else if (item.isText)
        fmt::print(", text = true");
    fmt::print(" }}, ");
}

// All types are asked for, since only the daemon's own look-up says what each is where.
template <typename Look> void ForEachKnown(const Look &look, const auto &print)
{
    for (uint32_t type = 0; type <= 0xFFFF; ++type)
        if (const rsvpsimd::ItemKind item = look(static_cast<uint16_t>(type)); item.IsKnown())
            print(static_cast<uint16_t>(type), item);
}

void PrintRequests()
{
    fmt::print(
        "-- By class: the item that comes first, if it is one of its own, and all others.\nprotocol.requests = {{\n");
    for (const auto &[msgClass, name] : rsvpsimd::kClasses) {
        const auto known = [&, number = static_cast<uint8_t>(msgClass)](bool isFirst) {
            fmt::print("    {} = {{ ", isFirst ? "first" : "other");
            ForEachKnown([&](uint16_t type) { return rsvpsimd::KindInRequest(number, type, isFirst); },
                         [](uint16_t type, const rsvpsimd::ItemKind &item) { PrintItem(type, item); });
            fmt::print("}},\n");
        };
        fmt::print("  [{}] = {{\n", msgClass);
        known(true);
        known(false);
        fmt::print("  }},\n");
    }
    fmt::print("}}\n\n");
}

void PrintReplies(const Names &names)
{
    fmt::print("-- By the first item of the request.\nprotocol.replies = {{\n");
    ForEachKnown([](uint16_t asked) { return rsvpsimd::KindInRequest(rsvpsimd::kShow, asked, true); },
                 [&](uint16_t asked, const rsvpsimd::ItemKind &) {
                     const rsvpsimd::RowKind *kind = rsvpsimd::FindRowKind(asked);
                     const auto *record = kind == nullptr ? nullptr : names.RecordOf(*kind->RowLayout());
                     fmt::print("  [{}] = {{ ", asked);
                     ForEachKnown([&](uint16_t type) { return rsvpsimd::KindInReply(asked, type); },
                                  [&](uint16_t type, const rsvpsimd::ItemKind &item) {
                                      PrintItem(type, item,
                                                record == nullptr ? "" : names.Of(*record).Inside(item.name).name);
                                  });
                     fmt::print("}},\n");
                 });
    fmt::print("}}\n\n");
}

template <typename Meanings> void PrintWords(std::string_view name, const Meanings &meanings)
{
    fmt::print("protocol.{} = {{\n", name);
    for (const auto &[number, words] : meanings)
        fmt::print("  [{:#x}] = \"{}\",\n", number, words);
    fmt::print("}}\n\n");
}

} // namespace

int main(int count, char **words)
{
    if (count != 2) {
        fmt::print(stderr, "usage: make_dissector REST\n");
        return 2;
    }
    const Names names;
    fmt::print(
        "-- A dissector for Wireshark of what travels between the management library and its daemon, as rsvpsimd "
        "captures it.\n-- Made from the daemon's own tables and dictionary.\n\n"
        "local protocol = {{ version = {}, link = {}, header = {}, reply = {}, masked = {} }}\n\n",
        rsvpsimd::kCaptureVersion, rsvpsimd::kCaptureLinkType, rsvpsimd::kCaptureHeaderSize, rsvpsimd::kReplyFlag,
        rsvpsimd::kMaskedFlag);
    PrintWords("classes", rsvpsimd::kClasses);
    PrintWords("operations", rsvpsimd::kOps);
    PrintWords("statuses", rsvpsimd::kStatuses);
    PrintRequests();
    PrintReplies(names);
    if (!PrintLayouts(names))
        return 1;
    std::ifstream rest(words[1]);
    const std::string text((std::istreambuf_iterator<char>(rest)), {});
    if (text.empty()) {
        fmt::print(stderr, "{} cannot be read\n", words[1]);
        return 1;
    }
    fmt::print("{}", text);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
