// Values by name: from names to bytes and from bytes to words, by the fields of a layout.
#ifndef HOST_DAEMON_WIRE_RECORD_H
#define HOST_DAEMON_WIRE_RECORD_H

#include "host/daemon/wire/layout.h"
#include "host/daemon/wire/layouts.h"

#include <map>
#include <variant>

namespace rsvpsimd {

using Value = std::variant<uint64_t, double, Bytes, std::vector<uint64_t>>;
using Record = std::map<std::string, Value, std::less<>>;

KindLookup KindsOf(const Record &record);

// Stores a value in the field's bytes. Returns an empty string, or says why the value does not fit.
std::string StoreField(std::span<uint8_t> image, const Field &field, const Value &value);

// A field in words. Those that are 0 are not worth it, but of a secret not even that is told.
bool IsWorthShowing(ByteView image, const Field &field);
std::string ShowField(ByteView image, const Field &field);

// Fields that the record does not name are 0. Throws std::invalid_argument for a name that the layout does not have
// in the record's form, and for a value that does not fit.
Bytes Encode(const Layout &layout, const Record &record);
Bytes EncodeList(const ListSpec &list, std::span<const Record> entries);

} // namespace rsvpsimd

#endif
