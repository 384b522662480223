// Every value of a record in the one form that it has in a document.
#include "manager/record/json.h"

#include "manager/record/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace manager {
namespace {

// JSON cannot express NaN or an infinity, and a float turned into a double would show digits that it never had.
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

} // namespace

Json ScalarToJson(const Field &field, const void *element)
{
    switch (field.kind) {
    case FieldKind::Number:
        return LoadNumber(field, element);
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
        return HexText({static_cast<const std::byte *>(element), field.width});
    }
}

std::string JsonText(const Json &value)
{
    return value.dump(-1, ' ', true, Json::error_handler_t::replace);
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

} // namespace manager
