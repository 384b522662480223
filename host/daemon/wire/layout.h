// The rule of this room: it describes what travels, as data, and turns it into bytes and back. It knows nothing of
// what a daemon does with it. This header has the layouts as the program uses them: one flat list of fields for each
// value. Names are the field names of the records, with dots for nested objects ("slots[0].slotSender.lspId").
#ifndef HOST_DAEMON_WIRE_LAYOUT_H
#define HOST_DAEMON_WIRE_LAYOUT_H

#include "host/daemon/wire/bytes.h"
#include "host/daemon/wire/layout_spec.h"

#include <functional>
#include <string>

namespace rsvpsimd {

// The condition for a field that only some forms of its object have: the number in `field` is one of `kinds`, or, if
// `among` is false, none of them.
struct Form {
    std::string field;
    std::vector<uint64_t> kinds;
    bool among = true;
};

struct Field {
    std::string name;
    size_t offset = 0;
    size_t width = 0; // of one element
    size_t count = 1;
    Order order = Order::Network;
    bool secret = false; // never printed
    std::optional<Form> form = {};
    std::vector<Field> inside = {}; // what the daemon keeps in these bytes; offsets count from the start of the value

    size_t Size() const { return width * count; }
};

struct Layout {
    std::string_view name;
    size_t size = 0;
    std::vector<Field> fields; // in the order of the wire

    bool Has(std::string_view field) const; // in any form
};

std::span<const Layout> AllLayouts();

// Returns the number that a record has under a name, or 0 if there is none. This is how a form is chosen.
using KindLookup = std::function<uint64_t(std::string_view)>;
KindLookup KindsOf(const Layout &layout, ByteView image);

// The field with this name in the form that `kinds` chooses, or null.
const Field *FindField(const Layout &layout, std::string_view name, const KindLookup &kinds);

// True if all bytes outside the fields of the value's own form are 0.
bool GapsAreZero(const Layout &layout, ByteView image);

} // namespace rsvpsimd

#endif
