// The daemon and the stand-in for the platform read words and numbers alike.
#include "host/text.h"

#include <algorithm>
#include <charconv>

namespace rsvp_host {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::optional<uint64_t> ReadDigits(std::string_view digits, int base, uint64_t most)
{
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc() || end != digits.data() + digits.size() || number > most)
        return std::nullopt;
    return number;
}

} // namespace

std::string_view CutOff(std::string_view &text, std::string_view ends)
{
    const std::string_view part = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

std::string_view WithoutBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view NextWord(std::string_view &text)
{
    text = WithoutBlanks(text);
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

std::optional<uint64_t> ReadDecimal(std::string_view text, uint64_t most)
{
    return ReadDigits(text, 10, most);
}

std::optional<uint64_t> ReadNumber(std::string_view text, uint64_t most)
{
    if (text.starts_with("0x") || text.starts_with("0X"))
        return ReadDigits(text.substr(2), 16, most);
    return ReadDigits(text, 10, most);
}

} // namespace rsvp_host
