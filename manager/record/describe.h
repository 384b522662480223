// How descriptions are written: one line a field, with offset, width and count taken
// from the C record itself, so that a description cannot disagree with the header.
#ifndef MANAGER_RECORD_DESCRIBE_H
#define MANAGER_RECORD_DESCRIBE_H

#include "manager/record/record.h"

#include <type_traits>

namespace manager {

template <typename Member> constexpr uint32_t kElementWidth = sizeof(std::remove_extent_t<Member>);
template <typename Member> constexpr uint32_t kElementCount = std::extent_v<Member>;

/** A field whose array elements are shown one by one. */
template <typename Member>
constexpr Field Elements(const char *name, FieldKind kind, size_t offset, const RecordDescription *record = nullptr)
{
    return {name, kind, static_cast<uint32_t>(offset), kElementWidth<Member>, kElementCount<Member>, record, 0, {}};
}

/** A field that is one value, whatever number of bytes it takes. */
template <typename Member>
constexpr Field Whole(const char *name, FieldKind kind, size_t offset, const RecordDescription *record = nullptr)
{
    // NOLINTNEXTLINE(bugprone-sizeof-expression): of a pointer too it is the pointer's own size
    return {name, kind, static_cast<uint32_t>(offset), sizeof(Member), 0, record, 0, {}};
}

/** A list record: a pointer to entries first, then their 16-bit count. */
template <typename ListType> constexpr Field ListOf(const char *name, size_t offset, const RecordDescription *record)
{
    static_assert(std::is_pointer_v<decltype(ListType::entries)> && offsetof(ListType, entries) == 0);
    static_assert(std::is_same_v<decltype(ListType::count), uint16_t>);
    const auto at = static_cast<uint32_t>(offset);
    return {
        name, FieldKind::List, at, sizeof(void *), 0, record, at + static_cast<uint32_t>(offsetof(ListType, count)),
        {}};
}

/** A chain is followed by the first bytes of its nodes, so these must be the link to the next node. */
template <typename NodePointer>
constexpr Field ChainOf(const char *name, size_t offset, const RecordDescription *record)
{
    using Node = std::remove_pointer_t<NodePointer>;
    static_assert(std::is_same_v<decltype(Node::next), NodePointer> && offsetof(Node, next) == 0);
    return Whole<NodePointer>(name, FieldKind::Chain, offset, record);
}

constexpr Field IfTag(Field field, size_t tagOffset, uint8_t tag)
{
    field.condition = {Condition::Test::Equal, tag, static_cast<uint32_t>(tagOffset)};
    return field;
}

constexpr Field UnlessTag(Field field, size_t tagOffset, uint8_t tag)
{
    field.condition = {Condition::Test::Different, tag, static_cast<uint32_t>(tagOffset)};
    return field;
}

constexpr Field Quiet(Field field)
{
    field.isQuiet = true;
    return field;
}

constexpr Field Measured(Field field, const char *unit)
{
    field.unit = unit;
    return field;
}

// The macros exist for the field's name alone: it becomes the JSON key, the member's type and its offset in Row, the
// record that the surrounding DESCRIBE is about.
#define MEMBER(field)      decltype(Row::field)
#define NUMBER(field)      Elements<MEMBER(field)>(#field, FieldKind::Number, offsetof(Row, field))
#define ADDRESS(field)     Elements<MEMBER(field)>(#field, FieldKind::Address, offsetof(Row, field))
#define NET_NUMBER(field)  Elements<MEMBER(field)>(#field, FieldKind::NetNumber, offsetof(Row, field))
#define NET_ADDRESS(field) Elements<MEMBER(field)>(#field, FieldKind::NetAddress, offsetof(Row, field))
#define BYTES(field)       Whole<MEMBER(field)>(#field, FieldKind::Bytes, offsetof(Row, field))
#define RATE(field)        Whole<MEMBER(field)>(#field, FieldKind::Rate, offsetof(Row, field))
#define FLOAT(field)       Whole<MEMBER(field)>(#field, FieldKind::Float, offsetof(Row, field))
#define SECRET(field)      Whole<MEMBER(field)>(#field, FieldKind::Secret, offsetof(Row, field))
#define TEXT(field)        Whole<MEMBER(field)>(#field, FieldKind::Text, offsetof(Row, field))
#define RECORD(field)                                                                                                \
    Elements<MEMBER(field)>(#field, FieldKind::Record, offsetof(Row, field),                                         \
                            &Describe<std::remove_extent_t<MEMBER(field)>>())
#define LIST(field)                                                                                                  \
    ListOf<MEMBER(field)>(#field, offsetof(Row, field),                                                              \
                          &Describe<std::remove_pointer_t<decltype(MEMBER(field)::entries)>>())
#define CHAIN(field)                                                                                                 \
    ChainOf<MEMBER(field)>(#field, offsetof(Row, field), &Describe<std::remove_pointer_t<MEMBER(field)>>())

// DESCRIBE(Type, fields...) defines Describe<Type>().
#define DESCRIBE(Type, ...)                                                                                          \
    template <> const RecordDescription &Describe<Type>()                                                            \
    {                                                                                                                \
        using Row = Type;                                                                                            \
        static const Field fields[] = {__VA_ARGS__};                                                                 \
        static const RecordDescription description{#Type, sizeof(Type), fields};                                     \
        return description;                                                                                          \
    }

} // namespace manager

#endif
