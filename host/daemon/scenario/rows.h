// Reads the tables of a scenario that stand for records: fields by name, nested or dotted, lists as arrays.
#ifndef HOST_DAEMON_SCENARIO_ROWS_H
#define HOST_DAEMON_SCENARIO_ROWS_H

#include "host/daemon/device/row.h"
#include "host/daemon/scenario/document.h"

namespace rsvpsimd {

// Both throw Mistake.
Block ReadRow(const Node::Table &table, const RowKind &kind);
Record ReadRecord(const Node::Table &table, LayoutRef layout);

} // namespace rsvpsimd

#endif
