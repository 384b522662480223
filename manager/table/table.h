// How one table of the daemon is read, as data: the library's functions for the first row, the next one and the one
// with a key. Rows and keys are bytes that their descriptions explain, so that one walk serves every table.
#ifndef MANAGER_TABLE_TABLE_H
#define MANAGER_TABLE_TABLE_H

#include "manager/dictionary/dictionary.h"
#include "manager/record/key.h"

#include <array>

namespace manager {

/** A function of the library that reads one row. */
struct RowRead {
    const char *function = nullptr; // null: the table has no such read
    bool held = false;              // it takes a session; else it opens one of its own and ignores `fd`
    bool keyed = false;             // it takes a key; else a key goes to it inside the row that the answer replaces
    uint32_t (*call)(int32_t fd, const void *key, void *row) = nullptr;
    std::array<uint32_t, 2> numbers = {}; // that it takes in front of the key, such as an operation; 0 after the last
};

struct Table {
    const char *name; // the words by which users know it: "frr facility"
    const RecordDescription &(*row)();
    const RecordDescription &(*key)(); // null for what is one record
    RowRead first = {};
    RowRead next = {};
    RowRead get = {};
    std::array<KeyPart, 3> ownKey = {}; // where the record itself says what is the key of the next row; else empty

    /** Gives back what a row owns; null where it owns nothing. */
    void (*release)(void *row) = nullptr;

    /** The read with numbers that the library leaves to its caller, where `get` takes the usual ones; else null. */
    uint32_t (*ask)(int32_t fd, uint32_t itemType, uint32_t operation, const void *key, void *row) = nullptr;
};

/** Numbers of message operations, for the functions that take one. */
constexpr uint32_t kGetRow = 3;
constexpr uint32_t kGetFirst = 4;
constexpr uint32_t kGetNext = 5;

/** The item type by which the daemon knows point-to-multipoint path state. */
constexpr uint32_t kP2mpPathStateItem = 11;

/** Reads a row into zeroed memory; `key` is null for the first one. */
uint32_t ReadRow(const Table &table, const RowRead &read, int32_t fd, const void *key, void *row);

/**
 * Where a row holds the key of the next one: what the dictionary says, else the record itself, else the first numbers
 * of the row. Empty if none of these gives a key.
 */
std::vector<KeyPart> KeyPartsOf(const Table &table, const Dictionary &dictionary);

/** Copies the key out of a row, into memory that is 0. */
void CopyKey(std::span<const KeyPart> parts, const void *row, void *key);

/** The names that the row and the dictionary give to the fields of the key. */
KeyAliases AliasesOf(const Table &table, const Dictionary &dictionary);

} // namespace manager

#endif
