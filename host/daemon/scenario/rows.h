// Reads the tables of a scenario that stand for records: fields by name, nested or dotted, lists as arrays.
#ifndef HOST_DAEMON_SCENARIO_ROWS_H
#define HOST_DAEMON_SCENARIO_ROWS_H

#include "host/daemon/device/row.h"
#include "toml/document.h"

#include <fmt/format.h>

namespace rsvpsimd {

using rsvp_toml::Member, rsvp_toml::Mistake, rsvp_toml::Node, rsvp_toml::NumberIn, rsvp_toml::ParseDocument,
    rsvp_toml::Refuse;

inline constexpr std::string_view kRequestKey = "requestKey"; // in rows that are not found by fields of their own
inline constexpr std::string_view kNoSuchKey = "there is no such key";

// All that reads throws Mistake.
Block ReadRow(const Node::Table &table, const RowKind &kind);
Record ReadRecord(const Node::Table &table, LayoutRef layout);

// Numbers to add to the fields of these parts.
Record ReadAdditions(const Member &member, std::span<const Part> parts);

const Node::Table &AsTable(const Node &node, std::string_view key);

// Calls `read` with each table of an array and its line, and adds line and key to what it throws.
template <typename Reader> void ForEachTable(const Member &member, const Reader &read)
{
    const auto *array = member.node.As<Node::Array>();
    if (array == nullptr)
        Refuse(member.node.line, member.name, fmt::format("must be an array of tables, as in [[{}]]", member.name));
    for (const Node &element : *array) {
        try {
            read(AsTable(element, member.name), element.line);
        } catch (const std::invalid_argument &error) {
            Refuse(element.line, member.name, error.what());
        }
    }
}

} // namespace rsvpsimd

#endif
