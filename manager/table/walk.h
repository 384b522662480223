// Walking a table. The walk keeps one row and two keys, so that its memory does not grow with the table, and it ends
// when the daemon says that there is no further row, when something breaks it, or when the keys do not advance.
#ifndef MANAGER_TABLE_WALK_H
#define MANAGER_TABLE_WALK_H

#include "manager/exchange/exchange.h"
#include "manager/table/table.h"

#include <functional>

namespace manager {

using Bytes = std::vector<std::byte>;

/** Finds a key that comes back, at once or after a round of any length, with two keys for memory: the one before, and
 * one that is replaced each time the number of rows has doubled. */
class RepeatFinder {
public:
    bool Repeats(const Bytes &key);

private:
    Bytes previous_; // empty before the first key, and so unequal to every key
    Bytes kept_;
    uint64_t rows_ = 0;
    uint64_t nextKept_ = 1;
};

enum class WalkEnd : uint8_t {
    EndOfTable,
    Broken,
    Stuck,
    NoKey, // nobody says where a row holds the key of the next one
    Stopped,
};

struct WalkResult {
    WalkEnd end = WalkEnd::EndOfTable;
    uint64_t rows = 0;
    uint32_t status = RSVP_MOR_OK; // what broke it
    const char *function = "";     // the function that was called last
    std::string lastKey;           // key of the last row, as ReadKey takes it; empty before the first
};

/** How the walk of a table ended that was read together with others. */
struct TableEnd {
    const Table *table;
    WalkResult result;
    Exchange exchange; // the last one
};

/** Looks at a row, which is released afterwards; false ends the walk as stopped. */
using OnRow = std::function<bool(void *row)>;

/** Walks a table from its first row, or from the row after the key in `after`, if that is not null. */
WalkResult Walk(const Table &table, const Dictionary &dictionary, int32_t fd, const void *after, const OnRow &onRow);

} // namespace manager

#endif
