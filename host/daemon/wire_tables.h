// How the tables of the wire are written down: plain constant rows that may name another table as a
// sub-object. They are unfolded into layouts once, at the first use.
#pragma once

#include "wire_layout.h"

#include <array>

namespace rsvpsimd {

struct TableRow;
using TableRows = std::span<const TableRow>;

struct RowForm {
    std::string_view field = {}; // a sibling in the same table; empty for a field that every form has
    std::uint8_t kindA = 0;
    std::uint8_t kindB = 0;
    bool among = true;
};

struct TableRow {
    std::string_view name;
    std::size_t offset = 0;
    std::size_t width = 0;
    std::size_t count = 1;
    Order order = Order::Network;
    bool secret = false;
    TableRows object = {}; // not empty: `count` objects of `width` bytes each
    RowForm form = {};
};

struct TableOfRows {
    std::string_view name;
    std::size_t size;
    TableRows rows;
};

constexpr TableRow Number(std::string_view name, std::size_t offset, std::size_t width, std::size_t count = 1)
{
    return {.name = name, .offset = offset, .width = width, .count = count};
}

constexpr TableRow U16(std::string_view name, std::size_t offset, std::size_t count = 1)
{
    return Number(name, offset, 2, count);
}

constexpr TableRow U32(std::string_view name, std::size_t offset, std::size_t count = 1)
{
    return Number(name, offset, 4, count);
}

constexpr TableRow Raw(std::string_view name, std::size_t offset, std::size_t width)
{
    return {.name = name, .offset = offset, .width = width, .order = Order::Raw};
}

constexpr TableRow U8(std::string_view name, std::size_t offset)
{
    return Raw(name, offset, 1);
}

constexpr TableRow Secret(std::string_view name, std::size_t offset, std::size_t width)
{
    return {.name = name, .offset = offset, .width = width, .order = Order::Raw, .secret = true};
}

constexpr TableRow Ip(std::string_view name, std::size_t offset)
{
    return {.name = name, .offset = offset, .width = 4, .order = Order::Address};
}

constexpr TableRow Float(std::string_view name, std::size_t offset)
{
    return {.name = name, .offset = offset, .width = 4, .order = Order::Float};
}

constexpr TableRow Rate(std::string_view name, std::size_t offset)
{
    return {.name = name, .offset = offset, .width = 4, .order = Order::Rate};
}

constexpr TableRow Object(std::string_view name, std::size_t offset, TableRows rows)
{
    return {.name = name, .offset = offset, .object = rows};
}

constexpr TableRow Objects(std::string_view name, std::size_t offset, TableRows rows, std::size_t width,
                           std::size_t count)
{
    return {.name = name, .offset = offset, .width = width, .count = count, .object = rows};
}

// Rows of another table that stand in this one without a name of their own.
constexpr TableRow Inline(std::size_t offset, TableRows rows)
{
    return Object("", offset, rows);
}

constexpr TableRow WhenKind(TableRow row, std::uint8_t kind)
{
    row.form = {.field = "kind", .kindA = kind, .kindB = kind};
    return row;
}

constexpr TableRow UnlessKind(TableRow row, std::uint8_t kind, std::uint8_t other)
{
    row.form = {.field = "kind", .kindA = kind, .kindB = other, .among = false};
    return row;
}

// Everything that travels, in four groups.
std::span<const TableOfRows> KeyTables();
std::span<const TableOfRows> CommandTables();
std::span<const TableOfRows> RecordTables();
std::span<const TableOfRows> BlockTables();
std::span<const ListLayout> WireLists();

} // namespace rsvpsimd
