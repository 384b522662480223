// LSPs as people read them: one line each, or everything about one on a screen.
#ifndef TOOLS_RSVPCTL_VIEW_VIEWS_H
#define TOOLS_RSVPCTL_VIEW_VIEWS_H

#include "tools/rsvpctl/view/columns.h"

#include <string>

namespace rsvpctl {

/** The two views of a kind of row: columns of a table, and everything about one row. */
struct RowView {
    Columns (*columns)() = nullptr; // null: those of the dictionary
    std::string (*detail)(const void *row, const manager::RecordMeanings &meanings) = nullptr;
};

/** Makes a view of a function that knows the type of its row. */
template <typename Row, std::string (*Show)(const Row &, const manager::RecordMeanings &)>
std::string ShowRow(const void *row, const manager::RecordMeanings &meanings)
{
    return Show(*static_cast<const Row *>(row), meanings);
}

/** A column whose text a function makes of a row of the type that it knows. */
template <typename Row> Column ViewColumn(const char *name, size_t width, std::string (*text)(const Row &), bool isNumber = false)
{
    return {name, HeadingOf(name), width, isNumber, [text](const void *row) { return text(*static_cast<const Row *>(row)); }};
}

extern const RowView kPsbView;
extern const RowView kRsbView;
extern const RowView kPhsbView;
extern const RowView kP2mpPsbView;
extern const RowView kP2mpRsbView;

} // namespace rsvpctl

#endif
