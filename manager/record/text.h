// How single values are written as text and read from it, whatever record they belong to: addresses, numbers, the
// daemon's names, words in a line.
#ifndef MANAGER_RECORD_TEXT_H
#define MANAGER_RECORD_TEXT_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/** An IPv4 address in dotted form. */
std::string DottedText(uint32_t address);

/** An IPv4 address from its dotted form; nothing if the text is anything else. */
std::optional<uint32_t> ParseAddress(std::string_view text);

/** A decimal or 0x number; nothing if the text is anything else, or no 64 bits hold it. */
std::optional<uint64_t> ParseNumber(std::string_view text);

inline constexpr std::chrono::milliseconds kLongestDuration = std::chrono::hours(24) * 365;

/** A duration: "500ms", "2s", "1.5m", "1h", a plain number in seconds. Nothing if the text is anything else, or
 * longer than the longest. */
std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text);

/** The duration in the largest unit that leaves no fraction, as ParseDuration takes it. */
std::string DurationText(std::chrono::milliseconds duration);

/** The largest number that a field of so many bytes holds. */
constexpr uint64_t MaximumOf(uint32_t width)
{
    return width >= 8 ? UINT64_MAX : (uint64_t{1} << (width * 8)) - 1;
}

/** The number in four bytes, most significant first, as an IEEE single. */
float NetFloat(const void *at);

/** Two hex digits a byte. */
std::string HexText(std::span<const std::byte> bytes);

/** The number in so many bytes, most significant first. */
uint64_t NetNumber(const void *at, uint32_t width);

/** Text from outside in which only what a terminal merely shows is left as it is: of UTF-8, all but the two sets of
 * control characters. Every other byte becomes \xNN, line ends and tabs among them. */
std::string HarmlessText(std::string_view text);

/** "1 row", "2 rows". */
std::string CountText(uint64_t count, std::string_view noun);

/** The texts between the separators; one more than there are separators. */
std::vector<std::string_view> Split(std::string_view text, char separator);

/** The texts with the separator between them. */
std::string Joined(std::span<const std::string> texts, std::string_view separator);

/** The mark around a quoted text, and what goes before and after each special character inside it. */
struct Quotes {
    char mark;
    std::string_view special;
    std::string_view before;
    std::string_view after;
};
inline constexpr Quotes kShellQuotes{'\'', "'", "'\\", "'"};
inline constexpr Quotes kDotQuotes{'"', "\"\\", "\\", ""};

std::string Quoted(std::string_view text, const Quotes &quotes);

} // namespace manager

#endif
