// Words and numbers in what people write: command lines, option files, the list of nodes. No heap.
#ifndef HOST_TEXT_H
#define HOST_TEXT_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace rsvp_host {

// The text without the blanks at its ends.
std::string_view WithoutBlanks(std::string_view text);

// Removes and returns the text up to the first character of `ends`; that character goes too.
std::string_view CutOff(std::string_view &text, std::string_view ends);

// Removes and returns the first word; empty at the end.
std::string_view NextWord(std::string_view &text);

// The number from 0 to `most` that is all of the text, or nothing.
std::optional<uint64_t> ReadDecimal(std::string_view text, uint64_t most);

// The same; after 0x the digits are hexadecimal.
std::optional<uint64_t> ReadNumber(std::string_view text, uint64_t most);

} // namespace rsvp_host

#endif
