// Writing and reading of single values.
#include "manager/record/text.h"

#include "manager/record/record.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <fmt/compile.h>

namespace manager {
namespace {

struct Unit {
    std::string_view name;
    int64_t milliseconds;
};

constexpr Unit kUnits[] = {{"h", 3600000}, {"m", 60000}, {"s", 1000}, {"ms", 1}};

// The bytes of the character at the front of a text, or 0 if it is a control character or no UTF-8. A sequence that
// is longer than its character needs is none: it could hide a control character.
size_t HarmlessLength(std::string_view text)
{
    const auto first = static_cast<uint8_t>(text.front());
    if (first < 0x80)
        return first >= 0x20 && first != 0x7f ? 1 : 0;
    const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc0 || first > 0xf4 || text.size() < length)
        return 0;
    uint32_t character = first & (0x7fU >> length);
    for (const char c : text.substr(1, length - 1)) {
        const auto byte = static_cast<uint8_t>(c);
        if ((byte & 0xc0) != 0x80)
            return 0;
        character = character << 6 | (byte & 0x3fU);
    }
    constexpr uint32_t kLeast[] = {0xa0, 0x800, 0x10000};
    return character >= kLeast[length - 2] && character <= 0x10ffff ? length : 0;
}

} // namespace

std::string DottedText(uint32_t address)
{
    char text[INET_ADDRSTRLEN];
    char *const end = fmt::format_to(text, FMT_COMPILE("{}.{}.{}.{}"), address >> 24, address >> 16 & 255,
                                     address >> 8 & 255, address & 255);
    return {text, end};
}

std::optional<uint32_t> ParseAddress(std::string_view text)
{
    in_addr address{};
    const bool cut = text.find('\0') != std::string_view::npos; // the call would take what is in front of it
    if (cut || inet_pton(AF_INET, std::string(text).c_str(), &address) != 1)
        return std::nullopt;
    return ntohl(address.s_addr);
}

std::optional<uint64_t> ParseNumber(std::string_view text)
{
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex)
        text.remove_prefix(2);
    uint64_t number = 0;
    const char *end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number, hex ? 16 : 10);
    if (parsed.ec != std::errc{} || parsed.ptr != end)
        return std::nullopt;
    return number;
}

std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text)
{
    double number = 0;
    const char *end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    const std::string_view unit(parsed.ptr, static_cast<size_t>(end - parsed.ptr));
    const auto *found = std::find_if(std::begin(kUnits), std::end(kUnits),
                                     [&](const Unit &known) { return known.name == (unit.empty() ? "s" : unit); });
    if (parsed.ec != std::errc{} || found == std::end(kUnits))
        return std::nullopt;
    const double milliseconds = std::round(number * static_cast<double>(found->milliseconds));
    // The comparison refuses what is not a number as well.
    if (std::signbit(milliseconds) || !(milliseconds <= static_cast<double>(kLongestDuration.count())))
        return std::nullopt;
    return std::chrono::milliseconds(static_cast<int64_t>(milliseconds));
}

std::string DurationText(std::chrono::milliseconds duration)
{
    const auto *unit = std::find_if(std::begin(kUnits), std::end(kUnits),
                                    [&](const Unit &known) { return duration.count() % known.milliseconds == 0; });
    return fmt::format("{}{}", duration.count() / unit->milliseconds, unit->name);
}

float NetFloat(const void *at)
{
    return std::bit_cast<float>(static_cast<uint32_t>(NetNumber(at, sizeof(float))));
}

uint64_t NetNumber(const void *at, uint32_t width)
{
    uint64_t number = 0;
    for (uint32_t i = 0; i < width; ++i)
        number = number << 8 | std::to_integer<uint8_t>(*At(at, i));
    return number;
}

std::string HexText(std::span<const std::byte> bytes)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::byte byte : bytes) {
        text += kDigits[std::to_integer<uint8_t>(byte >> 4)];
        text += kDigits[std::to_integer<uint8_t>(byte & std::byte{15})];
    }
    return text;
}

std::string HarmlessText(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const size_t length = HarmlessLength(text);
        out += length != 0 ? std::string(text.substr(0, length))
                           : fmt::format("\\x{:02x}", static_cast<uint8_t>(text.front()));
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return out;
}

std::string CountText(uint64_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::vector<std::string_view> Split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (size_t begin = 0;;) {
        const size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string_view::npos)
            return parts;
        begin = end + 1;
    }
}

std::string Joined(std::span<const std::string> texts, std::string_view separator)
{
    return fmt::format("{}", fmt::join(texts, separator));
}

std::string Quoted(std::string_view text, const Quotes &quotes)
{
    std::string out(1, quotes.mark);
    for (const char c : text) {
        const bool special = quotes.special.find(c) != std::string_view::npos;
        if (special)
            out += quotes.before;
        out += c;
        if (special)
            out += quotes.after;
    }
    return out + quotes.mark;
}

} // namespace manager
