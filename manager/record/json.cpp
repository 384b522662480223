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

Json SecretToJson(const void *at, uint32_t width)
{
    const auto *bytes = static_cast<const uint8_t *>(at);
    return std::any_of(bytes, bytes + width, [](uint8_t byte) { return byte != 0; }) ? "hidden" : "";
}

} // namespace

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

Json ScalarToJson(const Field &field, const void *element)
{
    switch (field.kind) {
    case FieldKind::Number:
        if (field.width == sizeof(uint64_t))
            return std::to_string(Load<uint64_t>(element));
        return LoadNumber(element, field.width);
    case FieldKind::Address:
        return DottedText(Load<uint32_t>(element));
    case FieldKind::NetNumber:
        return NetNumber(element, field.width);
    case FieldKind::NetAddress:
        return DottedText(static_cast<uint32_t>(NetNumber(element, field.width)));
    case FieldKind::Rate:
        return FloatToJson(NetFloat(element));
    case FieldKind::Float:
        return FloatToJson(Load<float>(element));
    case FieldKind::Secret:
        return SecretToJson(element, field.width);
    case FieldKind::Text:
        return Load<const char *>(element) == nullptr ? Json() : Json(Load<const char *>(element));
    default:
        return HexText({static_cast<const std::byte *>(element), field.width});
    }
}

std::string ScalarText(const Json &value)
{
    if (value.is_string())
        return HarmlessText(value.get_ref<const std::string &>());
    return value.is_null() ? "-" : value.dump();
}

std::string LeafText(const Leaf &leaf, const void *row)
{
    return ScalarText(ScalarToJson(*leaf.field, At(row, leaf.offset)));
}

bool IsUtf8(const char *text)
{
    try {
        (void)Json(text).dump();
        return true;
    } catch (const Json::type_error &) {
        return false;
    }
}

std::string JsonText(const Json &value)
{
    return value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

} // namespace manager
