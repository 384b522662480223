// Values come from the same place as those of JSON documents, so that the two never differ.
#include "tools/rsvpctl/view/record_view.h"

#include "manager/dictionary/standard.h"
#include "manager/record/text.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::At, manager::Field, manager::FieldKind, manager::Json, manager::Meaning, manager::RecordDescription,
    manager::RecordMeanings, manager::ScalarText;

constexpr size_t kNumbersPerLine = 8;

// A break inside a value is a line end and a tab.
std::string ArrayText(const Json &array)
{
    if (array.size() > kNumbersPerLine &&
        std::all_of(array.begin(), array.end(), [](const Json &value) { return value == 0; }))
        return fmt::format("{} times 0", array.size());
    std::string text;
    for (size_t i = 0; i < array.size(); ++i) {
        if (i != 0)
            text += i % kNumbersPerLine == 0 ? "\n\t" : " ";
        text += ScalarText(array[i]);
    }
    return text.empty() ? "none" : text;
}

// Reserved bytes of an entry that are not 0.
template <typename Entry> std::string ReservedText(const Entry &entry)
{
    std::string text;
    for (const Field &field : manager::Describe<Entry>().fields) {
        if (field.isQuiet && !IsZero(field, &entry))
            text += fmt::format(" {}={}", field.name, manager::HexText({At(&entry, field.offset), field.width}));
    }
    return text;
}

template <typename List> const List *ListAt(const Field &field, const void *record)
{
    return reinterpret_cast<const List *>(At(record, field.offset));
}

void AddRecords(const Field &field, const void *record, const RecordMeanings &meanings, const std::string &path,
                const ShownParts &shown, Lines &lines)
{
    const RecordMeanings &inside = meanings.Inside(field.name);
    if (field.record == &manager::Describe<RSVP_MOR_HopEntry>()) {
        const std::string hops = manager::Joined(HopTexts(HopsIn(*ListAt<RSVP_MOR_HopList>(field, record))), "\n\t");
        lines.emplace_back(path, hops.empty() ? "none" : hops);
        return;
    }
    if (field.record == &manager::Describe<RSVP_MOR_RouteEntry>()) {
        const std::string route = RouteText(*ListAt<RSVP_MOR_RouteList>(field, record));
        lines.emplace_back(inside.name.empty() ? path : inside.name, route.empty() ? "none" : route);
        return;
    }
    if (field.kind == FieldKind::Record) {
        for (uint32_t i = 0; i < std::max<uint32_t>(field.count, 1); ++i)
            AddRecord(*field.record, At(record, field.offset + i * field.width), inside,
                      field.count == 0 ? path + "." : fmt::format("{}[{}].", path, i), shown, lines);
        return;
    }
    size_t count = 0;
    ForEachElement(field, record, [&](const void *element) {
        AddRecord(*field.record, element, inside, fmt::format("{}[{}].", path, count++), shown, lines);
    });
    if (count == 0)
        lines.emplace_back(path, "none");
}

std::string FieldText(const Field &field, const void *record)
{
    if (field.count == 0)
        return ScalarText(ScalarToJson(field, At(record, field.offset)));
    Json elements = Json::array();
    for (uint32_t i = 0; i < field.count; ++i)
        elements.push_back(ScalarToJson(field, At(record, field.offset + i * field.width)));
    return ArrayText(elements);
}

} // namespace

void AddValues(const Json &value, const std::string &path, Lines &lines)
{
    if (value.is_object()) {
        const std::string prefix = path.empty() ? "" : path + ".";
        for (const auto &[name, member] : value.items())
            AddValues(member, prefix + name, lines);
    } else if (value.is_array() && !value.empty() && value.front().is_object()) {
        for (size_t i = 0; i < value.size(); ++i)
            AddValues(value[i], fmt::format("{}[{}]", path, i), lines);
    } else {
        lines.emplace_back(manager::HarmlessText(path), value.is_array() ? ArrayText(value) : ScalarText(value));
    }
}

void AddRecord(const RecordDescription &description, const void *record, const RecordMeanings &meanings,
               const std::string &prefix, const ShownParts &shown, Lines &lines)
{
    for (const Field &field : description.fields) {
        const bool isAbsent = !IsPresent(field, record) || (field.isQuiet && IsZero(field, record));
        if (isAbsent || shown.Contain(At(record, field.offset), field.width))
            continue;
        if (field.kind == FieldKind::Record && IsZero(field, record)) {
            lines.emplace_back(prefix + field.name, "all 0");
            continue;
        }
        if (field.record != nullptr) {
            AddRecords(field, record, meanings, prefix + field.name, shown, lines);
            continue;
        }
        const uint32_t end = field.offset + field.width * std::max<uint32_t>(field.count, 1);
        uint32_t bytesNamed = 0;
        for (const Meaning &meaning : meanings.own) {
            if (meaning.offset < field.offset || meaning.offset >= end)
                continue;
            lines.emplace_back(prefix + meaning.name, ValueText(meaning, record));
            bytesNamed += meaning.width;
        }
        if (bytesNamed < end - field.offset)
            lines.emplace_back(prefix + field.name, FieldText(field, record));
    }
}

void ShownParts::Note(const void *part, size_t size)
{
    parts_.emplace_back(static_cast<const std::byte *>(part), size);
}

bool ShownParts::Contain(const void *part, size_t size) const
{
    const auto *at = static_cast<const std::byte *>(part);
    return std::any_of(parts_.begin(), parts_.end(),
                       [&](const auto &one) { return at >= one.first && at + size <= one.first + one.second; });
}

std::span<const RSVP_MOR_HopEntry> HopsIn(const RSVP_MOR_HopList &list)
{
    return {list.entries, list.entries == nullptr ? size_t{0} : list.count};
}

std::vector<std::string> HopTexts(std::span<const RSVP_MOR_HopEntry> entries)
{
    std::vector<std::string> hops;
    bool awaitsLabel = false;
    for (const RSVP_MOR_HopEntry &hop : entries) {
        std::string text;
        if (hop.kind == RSVP_MOR_HOP_LABEL)
            text = "label " + manager::LabelText(hop.label);
        else if (hop.kind == RSVP_MOR_HOP_IPV4)
            text = manager::DottedText(hop.address);
        else
            text = fmt::format("hop of kind {}: {}", hop.kind,
                               manager::HexText({At(&hop, offsetof(RSVP_MOR_HopEntry, address)), 8}));
        text += ReservedText(hop);
        if (hop.kind == RSVP_MOR_HOP_LABEL && awaitsLabel)
            hops.back() += "  " + text;
        else
            hops.push_back(std::move(text));
        awaitsLabel = hop.kind == RSVP_MOR_HOP_IPV4;
    }
    return hops;
}

std::string RouteText(const RSVP_MOR_RouteList &list)
{
    std::string text;
    for (const RSVP_MOR_RouteEntry &hop : std::span(list.entries, list.entries == nullptr ? 0 : list.count))
        text += (text.empty() ? "" : " ") + manager::DottedText(hop.value) + ReservedText(hop);
    return text;
}

std::string AlignedText(const Lines &lines)
{
    size_t nameWidth = 0;
    for (const auto &[name, text] : lines)
        nameWidth = std::max(nameWidth, name.size());
    std::string out;
    for (auto [name, text] : lines) {
        const std::string continued = "\n" + std::string(nameWidth + 2, ' ');
        for (size_t at = text.find("\n\t"); at != std::string::npos; at = text.find("\n\t", at))
            text.replace(at, 2, continued);
        out += fmt::format("{:<{}}  {}\n", name, nameWidth, text);
    }
    return out;
}

std::string RecordText(const RecordDescription &description, const void *record, const RecordMeanings &meanings)
{
    Lines lines;
    AddRecord(description, record, meanings, "", {}, lines);
    return AlignedText(lines);
}

} // namespace rsvpctl
