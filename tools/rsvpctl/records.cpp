// What is done with the descriptions: finding one by name, turning a record into JSON, listing its scalars.
// The descriptions themselves stand in record_status.cpp, record_lsp.cpp and record_p2mp.cpp.
#include "records.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fmt/compile.h>

namespace rsvpctl {
namespace {

using Json = nlohmann::ordered_json;

template <typename T> T Load(const void *at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

const std::byte *At(const void *record, uint32_t offset)
{
    return static_cast<const std::byte *>(record) + offset;
}

uint64_t LoadNumber(const void *at, uint32_t width)
{
    switch (width) {
    case 1:
        return Load<uint8_t>(at);
    case 2:
        return Load<uint16_t>(at);
    case 4:
        return Load<uint32_t>(at);
    default:
        return Load<uint64_t>(at);
    }
}

std::string HexText(const void *bytes, uint32_t count)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text(size_t{count} * 2, '0');
    const auto *in = static_cast<const uint8_t *>(bytes);
    for (uint32_t i = 0; i < count; ++i) {
        text[size_t{i} * 2] = kDigits[in[i] >> 4];
        text[size_t{i} * 2 + 1] = kDigits[in[i] & 15];
    }
    return text;
}

// JSON has no word for what is no number, and a float turned into a double would show digits that it never had.
Json FloatToJson(float value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    std::array<char, 32> text{};
    const auto shortest = std::to_chars(text.data(), text.data() + text.size(), value);
    double sameDigits = 0;
    std::from_chars(text.data(), shortest.ptr, sameDigits);
    return sameDigits;
}

Json SecretToJson(const void *at, uint32_t width)
{
    const auto *bytes = static_cast<const uint8_t *>(at);
    return std::any_of(bytes, bytes + width, [](uint8_t byte) { return byte != 0; }) ? "hidden" : "";
}

Json ElementToJson(const Field &field, const void *element)
{
    return field.kind == FieldKind::Record ? ToJson(*field.record, element) : ScalarToJson(field, element);
}

Json FieldToJson(const Field &field, const void *record)
{
    const std::byte *start = At(record, field.offset);
    if (field.kind == FieldKind::List) {
        Json out = Json::array();
        const auto *entries = Load<const std::byte *>(start);
        const auto count = entries == nullptr ? uint16_t{0} : Load<uint16_t>(At(record, field.countOffset));
        for (uint32_t i = 0; i < count; ++i)
            out.push_back(ToJson(*field.record, entries + size_t{i} * field.record->size));
        return out;
    }
    if (field.kind == FieldKind::Chain) {
        Json out = Json::array();
        for (const void *node = Load<const void *>(start); node != nullptr; node = Load<const void *>(node))
            out.push_back(ToJson(*field.record, node));
        return out;
    }
    if (field.count == 0)
        return ElementToJson(field, start);
    Json out = Json::array();
    for (uint32_t i = 0; i < field.count; ++i)
        out.push_back(ElementToJson(field, start + size_t{i} * field.width));
    return out;
}

void AddLeaves(const RecordDescription &description, const std::string &prefix, uint32_t base, std::vector<Leaf> &out)
{
    for (const Field &field : description.fields) {
        if (field.count != 0 || field.condition.test != Condition::Test::Always)
            continue;
        if (field.kind == FieldKind::Record)
            AddLeaves(*field.record, prefix + field.name + ".", base + field.offset, out);
        else if (field.kind != FieldKind::List && field.kind != FieldKind::Chain)
            out.push_back({prefix + field.name, &field, base + field.offset});
    }
}

} // namespace

std::string DottedText(uint32_t address)
{
    return fmt::format(FMT_COMPILE("{}.{}.{}.{}"), address >> 24, address >> 16 & 255, address >> 8 & 255,
                       address & 255);
}

float NetFloat(const void *at)
{
    const auto bytes = Load<std::array<uint8_t, 4>>(at);
    return std::bit_cast<float>(uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 |
                                bytes[3]);
}

std::string PrintableText(const char *text)
{
    std::string out;
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<uint8_t>(*text);
        if (byte >= 0x20 && byte < 0x7f)
            out += *text;
        else
            out += fmt::format("\\x{:02x}", byte);
    }
    return out;
}

std::span<const RecordDescription *const> AllRecords()
{
#define RSVPCTL_DESCRIPTION(Type) &Describe<Type>(),
    static const RecordDescription *const all[] = {RSVPCTL_RECORDS(RSVPCTL_DESCRIPTION)};
#undef RSVPCTL_DESCRIPTION
    return all;
}

const RecordDescription *FindRecord(std::string_view name)
{
    const auto all = AllRecords();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto *record) { return record->name == name; });
    return found == all.end() ? nullptr : *found;
}

bool IsPresent(const Field &field, const void *record)
{
    if (field.condition.test == Condition::Test::Always)
        return true;
    const bool equal = Load<uint8_t>(At(record, field.condition.tagOffset)) == field.condition.tag;
    return equal == (field.condition.test == Condition::Test::Equal);
}

Json ScalarToJson(const Field &field, const void *element)
{
    switch (field.kind) {
    case FieldKind::Number:
        return LoadNumber(element, field.width);
    case FieldKind::Address:
        return DottedText(Load<uint32_t>(element));
    case FieldKind::Rate:
        return FloatToJson(NetFloat(element));
    case FieldKind::Float:
        return FloatToJson(Load<float>(element));
    case FieldKind::Secret:
        return SecretToJson(element, field.width);
    case FieldKind::Text:
        return Load<const char *>(element) == nullptr ? Json() : Json(PrintableText(Load<const char *>(element)));
    default:
        return HexText(element, field.width);
    }
}

Json ToJson(const RecordDescription &description, const void *record)
{
    Json::object_t out;
    out.reserve(description.fields.size());
    for (const Field &field : description.fields) {
        if (IsPresent(field, record))
            out.emplace_back(field.name, FieldToJson(field, record));
    }
    return out;
}

std::vector<Leaf> Leaves(const RecordDescription &description)
{
    std::vector<Leaf> out;
    AddLeaves(description, "", 0, out);
    return out;
}

} // namespace rsvpctl
