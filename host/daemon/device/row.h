// A row as values, and as the bytes it travels as. Rows from a scenario and rows made by number both go through here,
// so that both get the same checks.
#ifndef HOST_DAEMON_DEVICE_ROW_H
#define HOST_DAEMON_DEVICE_ROW_H

#include "host/daemon/device/row_kind.h"
#include "host/daemon/wire/record.h"

namespace rsvpsimd {

// The values of a row, or of an entry of a list, which may have lists of its own.
struct Block {
    Record fields = {};
    Record key = {}; // only where the kind has no key fields
    std::map<std::string, std::vector<Block>, std::less<>> lists = {};
    std::map<std::string, std::string, std::less<>> texts = {};
    bool operator==(const Block &) const = default;
};

// "prefix.", or nothing for a part without a prefix.
std::string PrefixOf(const Part &part);

// The record's fields that belong to this part, under the part's own names.
Record FieldsOf(const Part &part, const Record &fields);

// The items of those lists that the block has. Throws std::invalid_argument as EncodeRow does.
void AppendLists(Bytes &body, std::span<const ListKind> kinds, const Block &block);

// Throws std::invalid_argument if the items do not fit one message.
void CheckSize(const Bytes &body);

struct EncodedRow {
    Bytes key;
    Bytes body; // the items, ready to be sent
    bool operator==(const EncodedRow &) const = default;
};

// Throws std::invalid_argument if a value does not fit or the items do not fit one message.
EncodedRow EncodeRow(const RowKind &kind, const Block &block);

} // namespace rsvpsimd

#endif
