// How layouts are written down: constant rows, some of which stand for whole objects. The compiler finds the mistakes
// in them: a field that ends beyond its value, a name that does not exist.
#ifndef HOST_DAEMON_WIRE_LAYOUT_SPEC_H
#define HOST_DAEMON_WIRE_LAYOUT_SPEC_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace rsvpsimd {

enum class Order : uint8_t {
    Network, // unsigned number, most significant byte first
    Address, // the same, and people read it as dotted IPv4
    Raw,     // bytes that nobody swaps; of width 1 it is a small number
    Float,   // single-precision number, most significant byte first
    Rate,    // a rate in the form that CR-LSP values carry it
};

// A field that only some forms of its object have: those where `field` is one of the two kinds, or, without `among`,
// neither of them. Where a form lacks a field, its bytes are 0, unless another field takes its place.
struct FormSpec {
    std::string_view field = {}; // a sibling in the same rows; empty for a field that every form has
    uint8_t kindA = 0;
    uint8_t kindB = 0;
    bool among = true;
};

struct FieldSpec;
using FieldSpecs = std::span<const FieldSpec>;

struct FieldSpec {
    std::string_view name;
    size_t offset = 0;
    size_t width = 0; // of one element
    size_t count = 1;
    Order order = Order::Network;
    bool secret = false;
    FieldSpecs object = {}; // not empty: `count` objects, `width` bytes apart
    FormSpec form = {};
    FieldSpecs inside = {}; // what the daemon keeps in bytes that are one run to everybody else
};

struct LayoutSpec {
    std::string_view name;
    size_t size = 0;
    FieldSpecs fields;
};

// ---- Words in which the rows are written ----

constexpr FieldSpec Number(std::string_view name, size_t offset, size_t width, size_t count = 1)
{
    return {.name = name, .offset = offset, .width = width, .count = count};
}

constexpr FieldSpec U16(std::string_view name, size_t offset, size_t count = 1)
{
    return Number(name, offset, 2, count);
}

constexpr FieldSpec U32(std::string_view name, size_t offset, size_t count = 1)
{
    return Number(name, offset, 4, count);
}

constexpr FieldSpec Raw(std::string_view name, size_t offset, size_t width)
{
    return {.name = name, .offset = offset, .width = width, .order = Order::Raw};
}

constexpr FieldSpec U8(std::string_view name, size_t offset)
{
    return Raw(name, offset, 1);
}

constexpr FieldSpec Secret(std::string_view name, size_t offset, size_t width)
{
    return {.name = name, .offset = offset, .width = width, .order = Order::Raw, .secret = true};
}

constexpr FieldSpec Ip(std::string_view name, size_t offset)
{
    return {.name = name, .offset = offset, .width = 4, .order = Order::Address};
}

constexpr FieldSpec Float(std::string_view name, size_t offset)
{
    return {.name = name, .offset = offset, .width = 4, .order = Order::Float};
}

constexpr FieldSpec Rate(std::string_view name, size_t offset)
{
    return {.name = name, .offset = offset, .width = 4, .order = Order::Rate};
}

constexpr FieldSpec Object(std::string_view name, size_t offset, FieldSpecs fields)
{
    return {.name = name, .offset = offset, .object = fields};
}

constexpr FieldSpec Objects(std::string_view name, size_t offset, FieldSpecs fields, size_t width, size_t count)
{
    return {.name = name, .offset = offset, .width = width, .count = count, .object = fields};
}

// Fields of an object that appear here under their own names, without the object's.
constexpr FieldSpec Inline(size_t offset, FieldSpecs fields)
{
    return Object("", offset, fields);
}

constexpr FieldSpec WhenEither(FieldSpec field, std::string_view decider, uint8_t kind, uint8_t other)
{
    field.form = {.field = decider, .kindA = kind, .kindB = other};
    return field;
}

constexpr FieldSpec WhenKind(FieldSpec field, uint8_t kind)
{
    return WhenEither(field, "kind", kind, kind);
}

constexpr FieldSpec UnlessKind(FieldSpec field, uint8_t kind, uint8_t other)
{
    field.form = {.field = "kind", .kindA = kind, .kindB = other, .among = false};
    return field;
}

// ---- Questions about the rows, for the compiler as well ----

struct Extent {
    size_t offset = 0;
    size_t size = 0;
};

constexpr size_t EndOf(FieldSpecs fields)
{
    size_t end = 0;
    for (const FieldSpec &field : fields) {
        const size_t last = field.object.empty() ? field.width : EndOf(field.object);
        end = std::max(end, field.offset + (field.count - 1) * field.width + last);
    }
    return end;
}

// Raw bytes in which the daemon keeps these fields. Reaching the throw is a compile error.
consteval FieldSpec Holding(FieldSpec field, FieldSpecs inside)
{
    if (EndOf(inside) > field.width)
        throw "the fields do not fit the bytes that hold them";
    field.inside = inside;
    return field;
}

// The bytes of a field or of a whole object, with dots for what is inside; nothing if there is no such name.
constexpr std::optional<Extent> FindExtent(FieldSpecs fields, std::string_view name)
{
    for (const FieldSpec &field : fields) {
        if (!field.name.empty() && field.name == name)
            return Extent{field.offset, EndOf({&field, 1}) - field.offset};
        std::string_view inner = name;
        if (!field.name.empty()) {
            if (!inner.starts_with(field.name) || !inner.substr(field.name.size()).starts_with('.'))
                continue;
            inner.remove_prefix(field.name.size() + 1);
        }
        if (field.count > 1)
            continue; // names with an index are not supported: no table needs one
        if (const auto found = FindExtent(field.object.empty() ? field.inside : field.object, inner))
            return Extent{field.offset + found->offset, found->size};
    }
    return std::nullopt;
}

// True if each form depends on a field of the same object.
constexpr bool FormsAreKnown(FieldSpecs fields)
{
    return std::all_of(fields.begin(), fields.end(), [&](const FieldSpec &field) {
        const bool known = field.form.field.empty() || FindExtent(fields, field.form.field).has_value();
        return known && FormsAreKnown(field.object);
    });
}

} // namespace rsvpsimd

#endif
