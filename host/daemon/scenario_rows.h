// Reads the tables of a scenario that stand for records: fields by name, nested or dotted, lists as arrays.
#pragma once

#include "row_kinds.h"

#include <exception>

namespace rsvpsimd {

// The parser was surprised by its input.
struct NoToml : std::exception {};

[[noreturn]] inline void RefuseToml()
{
    throw NoToml();
}

} // namespace rsvpsimd

// The parser asserts some of what it has not checked in its input, and where assertions are off it would go on in
// spite of it. Here such an input is refused like any other.
#undef NDEBUG
#define TOML_ASSERT(expression) (static_cast<bool>(expression) ? void() : rsvpsimd::RefuseToml())
#include <toml++/toml.h>

namespace rsvpsimd {

// Throws ScenarioError without a file name: "LINE: KEY: what is wrong".
[[noreturn]] void Refuse(const toml::source_region &where, std::string_view key, std::string_view problem);

Block ReadRow(const toml::table &table, const RowKind &kind);
Record ReadRecord(const toml::table &table, std::string_view layout);

// A whole number from 0 to `most`.
std::uint64_t ReadNumber(const toml::node &node, std::string_view key, std::uint64_t most);

} // namespace rsvpsimd
