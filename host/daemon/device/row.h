// A row as values, and as the bytes it travels as. Rows from a scenario and rows made by number both go through here,
// so that both get the same checks.
#ifndef HOST_DAEMON_DEVICE_ROW_H
#define HOST_DAEMON_DEVICE_ROW_H

#include "host/daemon/device/row_kind.h"
#include "host/daemon/wire/record.h"

namespace rsvpsimd {

// The values of a row, or of an entry of a list, which may have lists of its own.
struct Block {
    Record fields;
    Record key; // only where the kind has no key fields
    std::map<std::string, std::vector<Block>, std::less<>> lists;
    std::map<std::string, std::string, std::less<>> texts;
};

// "prefix.", or nothing for a part without a prefix.
std::string PrefixOf(const Part &part);

struct EncodedRow {
    Bytes key;
    Bytes body; // the items, ready to be sent
};

// Throws std::invalid_argument if a value does not fit or the items do not fit one message.
EncodedRow EncodeRow(const RowKind &kind, const Block &block);

} // namespace rsvpsimd

#endif
