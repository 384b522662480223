// Rows as a scenario has them: the way back of the reader of rows.
#ifndef HOST_DAEMON_SCENARIO_PRINT_H
#define HOST_DAEMON_SCENARIO_PRINT_H

#include "host/daemon/device/row.h"

#include <string>

namespace rsvpsimd {

// An element of [[kind]], as ReadRow takes it. Fields of arrays of objects have no place in it.
std::string RowText(const RowKind &kind, const Block &row);

} // namespace rsvpsimd

#endif
