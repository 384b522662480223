// Records as people read them: a table whose columns are chosen once, before the first row is there, and the detail
// view with every field. Text only: output.h decides where it goes.
#ifndef TOOLS_RSVPCTL_PRINT_RENDER_H
#define TOOLS_RSVPCTL_PRINT_RENDER_H

#include "manager/record/json.h"
#include "tools/rsvpctl/view/columns.h"

#include <string>
#include <vector>

namespace rsvpctl {

/** The columns that fit into a line. The first one always does. A row with more to tell than its columns have room
 * for goes on in the next line. */
class TableLayout {
public:
    TableLayout(Columns columns, size_t lineWidth);

    std::string Header() const;
    std::string Row(const void *record) const;

    /** The same with commas between them (RFC 4180), and all columns, for which the line must be wide enough. */
    std::string CsvHeader() const;
    std::string CsvRow(const void *record) const;

    /** What no column shows: those that the line has no room for, and lists. */
    size_t Hidden() const { return hidden_; }

private:
    Columns columns_;
    size_t lineWidth_;
    size_t hidden_ = 0;
};

/** A record for people: one line a field, names in dotted form, arrays of numbers eight to a line. */
std::string DetailText(const manager::Json &record);

} // namespace rsvpctl

#endif
