// Reads the tables of a scenario that stand for records: fields by name, nested or dotted, lists as arrays.
#ifndef HOST_DAEMON_SCENARIO_ROWS_H
#define HOST_DAEMON_SCENARIO_ROWS_H

#include "host/daemon/device/row.h"
#include "toml/document.h"

namespace rsvpsimd {

using rsvp_toml::Member, rsvp_toml::Mistake, rsvp_toml::Node, rsvp_toml::NumberIn, rsvp_toml::ParseDocument,
    rsvp_toml::Refuse;

// Both throw Mistake.
Block ReadRow(const Node::Table &table, const RowKind &kind);
Record ReadRecord(const Node::Table &table, LayoutRef layout);

} // namespace rsvpsimd

#endif
