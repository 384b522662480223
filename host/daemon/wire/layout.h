// The room of the wire: what travels, as data and as bytes, and nothing of what a daemon does with it. This header
// has the layouts as programs ask them: one list of fields a value, objects unfolded. Names are the field names of
// the records, with dots for objects in objects ("slots[0].slotSender.lspId").
#ifndef HOST_DAEMON_WIRE_LAYOUT_H
#define HOST_DAEMON_WIRE_LAYOUT_H

#include "host/daemon/wire/bytes.h"
#include "host/daemon/wire/layout_spec.h"

#include <functional>
#include <string>

namespace rsvpsimd {

// A field that only some forms of its object have: the number in `field` is one of `kinds`, or is none of them.
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

    size_t Size() const { return width * count; }
};

struct Layout {
    std::string_view name;
    size_t size = 0;
    std::vector<Field> fields; // in the order of the wire

    bool Has(std::string_view field) const; // in any form
};

std::span<const Layout> AllLayouts();

// Tells the number that a record holds under a name, 0 where it holds none: this is how a form is chosen.
using KindLookup = std::function<uint64_t(std::string_view)>;
KindLookup KindsOf(const Layout &layout, ByteView image);

// The field of this name in the form that `kinds` chooses; null if there is none.
const Field *FindField(const Layout &layout, std::string_view name, const KindLookup &kinds);

// True if every byte that belongs to no field is 0.
bool GapsAreZero(const Layout &layout, ByteView image);

} // namespace rsvpsimd

#endif
