// What a table shows of its rows: columns whose widths come from the types of their values, not from the rows, so
// that a row can be printed when it comes.
#ifndef TOOLS_RSVPCTL_VIEW_COLUMNS_H
#define TOOLS_RSVPCTL_VIEW_COLUMNS_H

#include "manager/table/table.h"

#include <functional>
#include <string>
#include <vector>

namespace rsvpctl {

inline constexpr size_t kAddressWidth = 15;   // "255.255.255.255"
inline constexpr size_t kBandwidthWidth = 12; // "999.9 Mbit/s"

struct Column {
    std::string name;    // by which users ask for it
    std::string heading; // above its values
    size_t width;        // of the widest value; a text of the daemon's may be wider and then shifts its own row alone
    bool isNumber;       // set to the right
    std::function<std::string(const void *row)> text;
    std::function<uint64_t(const void *row)> number; // by which rows are sorted; null: by the text
};

struct Columns {
    std::vector<Column> all; // those that matter most come first

    /** What a row holds beside them, at the end of its line: words that have no name and are not 0. */
    std::function<std::string(const void *row)> rest = nullptr;

    size_t fieldsLeftOut = 0; // of a row, which no column shows: lists, arrays, and what only some rows have
};

/** The columns that a dictionary gives to a table: its choice, else the key and everything that has a name. Where
 * nothing has one, the fields of the record. */
Columns ColumnsOf(const manager::Table &table, const manager::Dictionary &dictionary);

/** "END POINT" for "endPoint". */
std::string HeadingOf(const std::string &name);

} // namespace rsvpctl

#endif
