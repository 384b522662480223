// What the rows of one table come to: how many there are of each kind, and figures of single rows up to a limit. What
// a word of a row is, whether it counts something and in which unit, is the dictionary's to say.
#ifndef TOOLS_RSVPCTL_METRICS_TABLE_FIGURES_H
#define TOOLS_RSVPCTL_METRICS_TABLE_FIGURES_H

#include "manager/table/table.h"
#include "tools/rsvpctl/metrics/exposition.h"

#include <functional>
#include <map>

namespace rsvpctl {

class TableFigures {
public:
    /** Of at most so many rows there are figures one by one; all are counted. */
    TableFigures(const manager::Table &table, const manager::Dictionary &dictionary, uint64_t mostRows);

    void Take(const void *row);

    uint64_t Rows() const { return rows_; }
    /** The rows that were to have figures of their own, and have none. */
    uint64_t LeftOut() const { return leftOut_; }

    void AddTo(Exposition &document) const;

private:
    struct Label {
        std::string name;
        std::function<std::string(const void *row)> text;
    };

    /** A figure that each row has. */
    struct Quantity {
        manager::PlacedMeaning placed;
        std::vector<double> values; // a row each
    };

    void AddMeaning(const manager::PlacedMeaning &placed, bool isOfKey, bool isColumn);
    void TakeFigures(const void *row);

    const manager::Table &table_;
    uint64_t mostRows_;
    std::vector<Label> identity_; // key and names
    std::vector<Label> words_;
    std::vector<Label> kinds_; // those words that a table shows

    uint64_t rows_ = 0;
    uint64_t leftOut_ = 0;
    std::map<Labels, uint64_t> rowsOfKind_;
    std::set<Labels> identities_;
    std::vector<std::pair<Labels, Labels>> taken_; // identity and words of each row that has figures
    std::vector<Quantity> quantities_;
};

} // namespace rsvpctl

#endif
