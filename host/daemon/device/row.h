// A row as what it says, and as the bytes it travels as. Rows of the scenario and rows made by number go through
// here, so that both are checked alike.
#ifndef HOST_DAEMON_DEVICE_ROW_H
#define HOST_DAEMON_DEVICE_ROW_H

#include "host/daemon/device/row_kind.h"
#include "host/daemon/wire/record.h"

namespace rsvpsimd {

// What a row says. An entry of a list says the same kinds of things as a row.
struct Block {
    Record fields;
    Record key; // only where the kind has no key fields
    std::map<std::string, std::vector<Block>, std::less<>> lists;
    std::map<std::string, std::string, std::less<>> texts;
};

// "prefix.", or nothing for a part whose fields stand in the row itself.
std::string PrefixOf(const Part &part);

struct EncodedRow {
    Bytes key;
    Bytes body; // the items, ready to be sent
};

// Throws std::invalid_argument if a value does not fit or the items do not fit one message.
EncodedRow EncodeRow(const RowKind &kind, const Block &block);

} // namespace rsvpsimd

#endif
