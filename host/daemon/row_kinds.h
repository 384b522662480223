// The tables that the daemon has, as data: which item asks for a table, which fields of a row are its key,
// which items a row is made of. The engine, the scenario reader, the generator and the trace all go by these
// rows.
#pragma once

#include "frame.h"

namespace rsvpsimd {

// One fixed value of a row. With a prefix, the row's fields "prefix.x" are the value's fields "x".
struct Part {
    std::uint16_t item = 0;
    std::string_view layout;
    std::string_view prefix = {};
};

enum class Shape : std::uint8_t {
    Counted, // one item holds a count and all entries
    Each,    // one item for each entry, and behind it the lists of that entry
    Text,    // one item holds bytes of text
};

struct ListKind {
    std::string_view name;
    std::uint16_t item = 0;
    Shape shape = Shape::Counted;
    std::string_view layout = {}; // of the list (counted) or of one entry (each)
    std::span<const ListKind> children = {};
};

struct RowKind {
    std::string_view name;
    std::uint16_t requestItem = 0;
    std::string_view keyLayout;
    std::span<const std::string_view> keyFields; // of the first part, in key order; empty: each row names its key
    std::string_view numbered; // the field that generated rows count up; it is also the first word of the key
    bool firstHasKey = false;  // get-first carries a key, whose content does not matter
    bool hasIngressWalk = false;
    std::span<const Part> parts;
    std::span<const ListKind> lists = {};
};

std::span<const RowKind> AllRowKinds();
const RowKind *FindRowKind(std::string_view name); // upper and lower case are alike
const RowKind *FindRowKind(std::uint16_t requestItem);

// What a row says, before it is bytes. A list entry says the same kinds of things as a row.
struct Block {
    Record fields;
    Record key; // only where the kind has no key fields
    std::map<std::string, std::vector<Block>, std::less<>> lists;
    std::map<std::string, std::string, std::less<>> texts;
};

struct EncodedRow {
    Bytes key;
    Bytes body; // the items, ready to be sent
};

// Throws std::invalid_argument if a value does not fit or the items do not fit one message.
EncodedRow EncodeRow(const RowKind &kind, const Block &block);

// The bytes of a field or of a whole object inside a value.
struct Extent {
    std::size_t offset = 0;
    std::size_t size = 0;
};
Extent ExtentOf(const Layout &layout, std::string_view fieldOrObject);

} // namespace rsvpsimd
