// Words and numbers in what people write: command lines, option files, the list of nodes. No heap.
#ifndef HOST_TEXT_H
#define HOST_TEXT_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace rsvp_host {

// The text without the blanks at its ends.
std::string_view WithoutBlanks(std::string_view text);

// Cuts the text up to the first of `ends` off, and that character with it.
std::string_view CutOff(std::string_view &text, std::string_view ends);

// Cuts the first word off, with the blanks in front of it; empty at the end.
std::string_view NextWord(std::string_view &text);

// The whole of the text as a number from 0 to `most`; nothing if it is anything else.
std::optional<uint64_t> ReadDecimal(std::string_view text, uint64_t most);

// The same; behind 0x the digits are hexadecimal.
std::optional<uint64_t> ReadNumber(std::string_view text, uint64_t most);

} // namespace rsvp_host

#endif
