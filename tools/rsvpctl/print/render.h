// Records as people read them: a table whose columns are chosen once, before the first row is there, and the detail
// view with every field. Text only: output.h decides where it goes.
#ifndef TOOLS_RSVPCTL_PRINT_RENDER_H
#define TOOLS_RSVPCTL_PRINT_RENDER_H

#include "manager/record/json.h"
#include "manager/table/table.h"

#include <string>
#include <vector>

namespace rsvpctl {

/** The columns that fit into a line: the fields of the key, then the others in their order. Widths come from the
 * fields' types, not from the rows, so that a row can be printed when it comes. */
class TableLayout {
public:
    TableLayout(const manager::Table &table, size_t lineWidth);

    std::string Header() const;
    std::string Row(const void *record) const;

    /** Fields that the table has no room for or that are lists. */
    size_t HiddenFields() const { return hiddenFields_; }

private:
    struct Column {
        manager::Leaf leaf;
        size_t width;
    };
    std::vector<Column> columns_;
    size_t hiddenFields_ = 0;
};

/** A record for people: one line a field, names in dotted form, arrays of numbers eight to a line. */
std::string DetailText(const manager::Json &record);

} // namespace rsvpctl

#endif
