// How the descriptions in tables.cpp are written: what a read takes comes from the signature of the library's
// function, and where a part of a key lies from the row's record, so that a description cannot disagree with the
// headers.
#ifndef MANAGER_TABLE_CALLS_H
#define MANAGER_TABLE_CALLS_H

#include "manager/table/table.h"

#include <tuple>
#include <type_traits>

namespace manager {

/** Hands out the parts of a key in their order, as pointers to records or as numbers. */
class KeyReader {
public:
    explicit KeyReader(const void *key) : at_(static_cast<const std::byte *>(key)) {}

    template <typename Part> Part Next()
    {
        using Value = std::remove_cv_t<std::remove_pointer_t<Part>>;
        const std::byte *part = at_;
        at_ += sizeof(Value);
        if constexpr (std::is_pointer_v<Part>)
            return reinterpret_cast<Part>(part);
        else
            return Load<Value>(part);
    }

private:
    const std::byte *at_;
};

template <typename Argument> constexpr bool kIsSession = std::is_same_v<Argument, int32_t>;
template <typename Argument, typename Row> constexpr bool kIsRow = std::is_same_v<Argument, Row *>;

template <typename Row, typename Argument> Argument ArgumentOf(int32_t fd, KeyReader &key, void *row)
{
    if constexpr (kIsSession<Argument>)
        return fd;
    else if constexpr (kIsRow<Argument, Row>)
        return static_cast<Row *>(row);
    else
        return key.template Next<Argument>();
}

/** A read from a function whose arguments are, in this order: a session or none, the parts of a key or none, the row.
 */
template <typename Row, auto Function, typename... Arguments>
constexpr RowRead ReadWith(const char *name, uint32_t (*)(Arguments...))
{
    static_assert((kIsRow<Arguments, Row> || ...), "the function reads another kind of row");
    return {.function = name,
            .held = (kIsSession<Arguments> || ...),
            .keyed = (!(kIsSession<Arguments> || kIsRow<Arguments, Row>) || ...),
            .call = [](int32_t fd, const void *key, void *row) {
                KeyReader parts(key);
                const std::tuple<Arguments...> arguments{ArgumentOf<Row, Arguments>(fd, parts, row)...};
                return std::apply(Function, arguments);
            }};
}

/** The parts of a key that a record holds, each placed after the one before it. */
template <typename... Parts> constexpr std::array<KeyPart, 3> KeyOf(Parts... parts)
{
    std::array<KeyPart, 3> key{parts...};
    for (size_t i = 1; i < sizeof...(parts); ++i)
        key[i].keyOffset = key[i - 1].keyOffset + key[i - 1].size;
    return key;
}

constexpr uint32_t SizeOfParts(const Table &table)
{
    uint32_t size = 0;
    for (const KeyPart &part : table.ownKey)
        size += part.size;
    return size;
}

// NOLINTBEGIN(bugprone-macro-parentheses): types and initialisers take no brackets
// TABLE(symbol, words, RowType, KeyType, fields...) defines a table; READ, PART and RELEASE are its fields' values.
#define READ(function) ReadWith<Row, function>(#function, function)
#define PART(field)                                                                                                  \
    KeyPart                                                                                                          \
    {                                                                                                                \
        offsetof(Row, field), sizeof(Row::field)                                                                     \
    }
#define RELEASE(function) [](void *row) { function(static_cast<Row *>(row)); }
#define TABLE(symbol, words, RowType, KeyType, ...)                                                                  \
    const Table symbol = [] {                                                                                        \
        using Row = RowType;                                                                                         \
        using Key = KeyType;                                                                                         \
        static_assert(std::has_unique_object_representations_v<Key>, "keys are compared byte by byte");              \
        constexpr Table table{.name = words, .row = Describe<Row>, .key = Describe<Key>, __VA_ARGS__};               \
        static_assert(SizeOfParts(table) == (table.ownKey[0].size == 0 && table.next.keyed ? 0 : sizeof(Key)));      \
        return table;                                                                                                \
    }();

// SINGLE(symbol, words, RowType, function) defines what is one record and needs no key.
#define SINGLE(symbol, words, RowType, function)                                                                     \
    const Table symbol = [] {                                                                                        \
        using Row = RowType;                                                                                         \
        return Table{.name = words, .row = Describe<Row>, .key = nullptr, .get = READ(function)};                    \
    }();

// NOLINTEND(bugprone-macro-parentheses)

} // namespace manager

#endif
