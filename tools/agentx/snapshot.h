// One whole table of a MIB at one moment: sorted by its index, never changed. A walk of the daemon fills a builder,
// which sorts; the agent answers from what comes out, by binary search.
#ifndef TOOLS_AGENTX_SNAPSHOT_H
#define TOOLS_AGENTX_SNAPSHOT_H

#include "tools/agentx/mib.h"

#include <stdexcept>
#include <string>
#include <variant>

namespace agentx {

/** A number of any syntax, the bytes of an OCTET STRING or BITS, or an OBJECT IDENTIFIER. */
using Cell = std::variant<uint32_t, std::string, Oid>;

/** Why a table could not be read as a whole. */
struct ReadError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Snapshot {
public:
    size_t RowCount() const { return indexes_.size(); }
    const Oid &IndexOf(size_t row) const { return indexes_[row]; }

    /** The first row whose index is not before this one, or RowCount(). */
    template <typename Number> size_t NotBefore(std::span<const Number> index) const
    {
        size_t first = 0;
        for (size_t count = indexes_.size(); count > 0;) {
            const size_t half = count / 2;
            const Oid &middle = indexes_[first + half];
            if (std::lexicographical_compare(middle.begin(), middle.end(), index.begin(), index.end())) {
                first += half + 1;
                count -= half + 1;
            } else {
                count = half;
            }
        }
        return first;
    }

    /** The columns that have a cell in some row, by their place among the table's objects, in ascending order. */
    std::span<const size_t> Columns() const { return columns_; }

    /** A column's cell in the first row that has one, from `row` on, which becomes that row. Null if there is none.
     */
    const Cell *Next(size_t column, size_t &row) const;

private:
    friend class Builder;
    struct Column {
        std::vector<uint32_t> rows; // ascending
        std::vector<Cell> cells;
        bool isEverywhere = false; // one cell for all rows
    };

    std::vector<Oid> indexes_;
    std::vector<Column> cells_; // by the place among the table's objects
    std::vector<size_t> columns_;
};

class Builder {
public:
    explicit Builder(const MibTable &table);

    /** Begins a row; what is put from here on is in it. */
    void Begin(Oid index);

    /** Puts a cell into the row that was begun last. The first one of a column stays. */
    void Put(const Object &object, Cell cell);

    size_t RowCount() const { return result_.indexes_.size(); }

    /** The whole table. Throws ReadError if two rows have the same index. */
    Snapshot Finish();

private:
    const MibTable &table_;
    Snapshot result_;
};

} // namespace agentx

#endif
