// Moves values between records and bytes. The field decides what a value must look like: a number of its width, an
// address, a rate, raw bytes.
#include "host/daemon/wire/record.h"

#include <bit>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

// A CR-LSP rate crosses the wire as a whole number whose bytes are reversed and that is then written as a
// single-precision number, least significant byte first. Applied twice, the step gives back any whole number of up to
// 24 bits, so it works both ways.
float ConvertRate(float rate)
{
    uint32_t whole = 0;
    if (rate >= 4294967296.0F)
        whole = 0xFFFFFFFF;
    else if (rate >= 1.0F)
        whole = static_cast<uint32_t>(rate);
    const uint32_t reversed = whole >> 24 | (whole >> 8 & 0xFF00) | (whole << 8 & 0xFF0000) | whole << 24;
    return static_cast<float>(reversed);
}

double ToDouble(const Value &value)
{
    return std::holds_alternative<double>(value) ? std::get<double>(value)
                                                 : static_cast<double>(std::get<uint64_t>(value));
}

std::string StoreBytes(std::span<uint8_t> place, const Bytes &bytes)
{
    if (bytes.size() > place.size())
        return fmt::format("has {} bytes, the field has room for {}", bytes.size(), place.size());
    std::fill(std::copy(bytes.begin(), bytes.end(), place.begin()), place.end(), uint8_t{0});
    return {};
}

std::string StoreNumber(std::span<uint8_t> place, uint64_t number)
{
    if (place.size() < 8 && number >> (8 * place.size()) != 0)
        return fmt::format("{} does not fit {} bits", number, 8 * place.size());
    StoreNet(place, number);
    return {};
}

std::string StoreReal(std::span<uint8_t> place, Order order, double number)
{
    const auto single = static_cast<float>(number);
    StoreNet(place, std::bit_cast<uint32_t>(order == Order::Rate ? ConvertRate(single) : single));
    if (order == Order::Rate)
        std::reverse(place.begin(), place.end());
    return {};
}

std::string ShowElement(ByteView bytes, Order order)
{
    switch (order) {
    case Order::Network:
        return fmt::format("{}", LoadNet(bytes));
    case Order::Address:
        return fmt::format("{}.{}.{}.{}", bytes[0], bytes[1], bytes[2], bytes[3]);
    case Order::Float:
        return fmt::format("{}", std::bit_cast<float>(static_cast<uint32_t>(LoadNet(bytes))));
    case Order::Rate: {
        const std::array<uint8_t, 4> turned{bytes[3], bytes[2], bytes[1], bytes[0]};
        return fmt::format("{}", ConvertRate(std::bit_cast<float>(static_cast<uint32_t>(LoadNet(turned)))));
    }
    case Order::Raw:
        break;
    }
    return bytes.size() == 1 ? fmt::format("{}", bytes[0]) : fmt::format("{:02x}", fmt::join(bytes, ""));
}

} // namespace

KindLookup KindsOf(const Record &record)
{
    return [&record](std::string_view name) -> uint64_t {
        const auto found = record.find(name);
        if (found == record.end() || !std::holds_alternative<uint64_t>(found->second))
            return 0;
        return std::get<uint64_t>(found->second);
    };
}

std::string StoreField(std::span<uint8_t> image, const Field &field, const Value &value)
{
    const auto place = image.subspan(field.offset, field.Size());
    if (field.count > 1) {
        const auto *numbers = std::get_if<std::vector<uint64_t>>(&value);
        if (numbers == nullptr)
            return fmt::format("must be an array of up to {} numbers", field.count);
        if (numbers->size() > field.count)
            return fmt::format("has {} numbers, the field has room for {}", numbers->size(), field.count);
        for (size_t i = 0; i < numbers->size(); ++i)
            if (auto problem = StoreNumber(place.subspan(i * field.width, field.width), (*numbers)[i]);
                !problem.empty())
                return problem;
        return {};
    }
    if (const auto *bytes = std::get_if<Bytes>(&value))
        return field.order == Order::Raw ? StoreBytes(place, *bytes) : "must be a number, not bytes";
    if (std::holds_alternative<std::vector<uint64_t>>(value))
        return "must be one value, not an array";
    if (field.order == Order::Float || field.order == Order::Rate)
        return StoreReal(place, field.order, ToDouble(value));
    if (std::holds_alternative<double>(value))
        return "must be a whole number";
    if (field.order == Order::Raw && field.width > 1)
        return "must be bytes, as hexadecimal text";
    return StoreNumber(place, std::get<uint64_t>(value));
}

bool IsWorthShowing(ByteView image, const Field &field)
{
    if (!field.inside.empty())
        return std::ranges::any_of(field.inside, [&](const Field &inner) { return IsWorthShowing(image, inner); });
    return field.secret || !IsZero(image.subspan(field.offset, field.Size()));
}

std::string ShowField(ByteView image, const Field &field)
{
    if (field.secret)
        return "********";
    if (!field.inside.empty()) {
        std::vector<std::string> words;
        for (const Field &inner : field.inside)
            if (IsWorthShowing(image, inner))
                words.push_back(fmt::format("{}={}", inner.name, ShowField(image, inner)));
        return fmt::format("{{{}}}", fmt::join(words, " "));
    }
    if (field.count == 1)
        return ShowElement(image.subspan(field.offset, field.width), field.order);
    std::vector<std::string> elements;
    for (size_t i = 0; i < field.count; ++i)
        elements.push_back(ShowElement(image.subspan(field.offset + i * field.width, field.width), field.order));
    return fmt::format("[{}]", fmt::join(elements, ","));
}

Bytes Encode(const Layout &layout, const Record &record)
{
    Bytes image(layout.size);
    const KindLookup kinds = KindsOf(record);
    for (const auto &[name, value] : record) {
        const Field *field = FindField(layout, name, kinds);
        if (field == nullptr)
            throw std::invalid_argument(fmt::format("{}: no such field in this form of {}", name, layout.name));
        if (const auto problem = StoreField(image, *field, value); !problem.empty())
            throw std::invalid_argument(fmt::format("{}: {}", name, problem));
    }
    return image;
}

Bytes EncodeList(const ListSpec &list, std::span<const Record> entries)
{
    Bytes image;
    AppendNet(image, entries.size(), list.countWidth);
    for (const Record &record : entries) {
        const Bytes bytes = Encode(*list.entry, record);
        image.insert(image.end(), bytes.begin(), bytes.end());
    }
    return image;
}

} // namespace rsvpsimd
