// Changes of what is there already: values that are set, numbers that are added, lists that are replaced. The rest of
// the record or row stays as it is.
#ifndef HOST_DAEMON_DEVICE_CHANGE_H
#define HOST_DAEMON_DEVICE_CHANGE_H

#include "host/daemon/device/row.h"
#include "host/daemon/device/row_kinds.h"

namespace rsvpsimd {

struct RecordChange {
    Record set = {};
    Record added = {}; // whole numbers; a sum beyond the field's width starts again at 0, as a counter does
    bool operator==(const RecordChange &) const = default;
    bool IsEmpty() const { return set.empty() && added.empty(); }
};

// A list or text that is named replaces the one of the row.
struct BlockChange {
    Block set = {};
    Record added = {};
    bool operator==(const BlockChange &) const = default;
};

// Both throw std::invalid_argument if a field does not exist in the form that the record has by then; it is as before
// in that case.
void ChangeRecord(const Layout &layout, std::span<uint8_t> image, const RecordChange &change);
void ChangeBody(const RowKind &kind, Bytes &body, const BlockChange &change);

// True if numbers can be added to this field: it holds whole numbers, and neither an address nor bytes.
bool IsCounted(const Field &field);

} // namespace rsvpsimd

#endif
