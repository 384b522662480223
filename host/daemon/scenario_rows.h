// Reads the tables of a scenario that stand for records: fields by name, nested or dotted, lists as arrays.
#pragma once

#include "row_kinds.h"

#include <toml++/toml.h>

namespace rsvpsimd {

// Throws ScenarioError without a file name: "LINE: KEY: what is wrong".
[[noreturn]] void Refuse(const toml::source_region &where, std::string_view key, std::string_view problem);

Block ReadRow(const toml::table &table, const RowKind &kind);
Record ReadRecord(const toml::table &table, std::string_view layout);

// A whole number from 0 to `most`.
std::uint64_t ReadNumber(const toml::node &node, std::string_view key, std::uint64_t most);

} // namespace rsvpsimd
