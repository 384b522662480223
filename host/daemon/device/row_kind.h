// A kind of table, as data: which item asks for it, which fields of a row are its key, which items a row is made of.
// Tables, scenario reader, generator and trace all work from these descriptions.
#ifndef HOST_DAEMON_DEVICE_ROW_KIND_H
#define HOST_DAEMON_DEVICE_ROW_KIND_H

#include "host/daemon/wire/layouts.h"

namespace rsvpsimd {

// One fixed value of a row. If it has a prefix, its field "x" is called "prefix.x" in the row.
struct Part {
    uint16_t item = 0;
    LayoutRef layout;
    std::string_view prefix = {};
};

enum class Shape : uint8_t {
    Counted, // one item holds a count and all entries
    Each,    // one item for each entry, followed by the lists of that entry
    Text,    // one item holds bytes of text
};

struct ListKind {
    std::string_view name;
    uint16_t item = 0;
    Shape shape = Shape::Text;
    std::optional<ListRef> list = {};    // counted lists alone
    std::optional<LayoutRef> entry = {}; // none for text
    std::span<const ListKind> children = {};
    bool mayBeEmpty = true; // false: a reader takes no count of 0
};

constexpr ListKind CountedList(std::string_view name, uint16_t item, ListRef list)
{
    return {.name = name, .item = item, .shape = Shape::Counted, .list = list, .entry = list->entry};
}

constexpr ListKind NeverEmpty(ListKind list)
{
    list.mayBeEmpty = false;
    return list;
}

constexpr ListKind EachList(std::string_view name, uint16_t item, LayoutRef entry,
                            std::span<const ListKind> children = {})
{
    return {.name = name, .item = item, .shape = Shape::Each, .entry = entry, .children = children};
}

constexpr ListKind TextItem(std::string_view name, uint16_t item)
{
    return {.name = name, .item = item};
}

// What a get-first carries.
enum class FirstKey : uint8_t {
    Empty,
    Zero,  // a key of zeros
    Given, // a key of the caller's own making, whose content does not matter
};

struct RowKind {
    std::string_view name;
    uint16_t requestItem = 0;
    LayoutRef keyLayout;
    std::span<const std::string_view> keyFields; // of the first part, in key order; empty: each row names its key
    std::string_view numbered; // the field that generated rows count up; it is also the first word of the key
    FirstKey firstKey = FirstKey::Empty;
    std::span<const Part> parts;
    std::span<const ListKind> lists = {};
    bool hasIngressWalk = false;

    constexpr LayoutRef RowLayout() const { return parts.front().layout; }
    size_t FirstKeySize() const { return firstKey == FirstKey::Empty ? 0 : keyLayout.Spec().size; }
};

} // namespace rsvpsimd

#endif
