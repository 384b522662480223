// Records as people read them: a table whose columns are chosen once, before the first row is there, and the detail
// view with every field. Text only; where it goes is output.h's matter.
#ifndef RSVPCTL_RENDER_H
#define RSVPCTL_RENDER_H

#include "records.h"

#include <string>
#include <vector>

namespace rsvpctl {

/** The columns that fit into a line: the fields of `keyColumns`, then the others in their order. Widths come from the
 * fields' types, not from the rows, so that a row can be printed when it comes. */
class TableLayout {
public:
    TableLayout(const RecordDescription &description, std::span<const char *const> keyColumns, size_t lineWidth);

    std::string Header() const;
    std::string Row(const void *record) const;

    /** Fields that the table has no room for or that are lists. */
    size_t HiddenFields() const { return hiddenFields_; }

private:
    struct Column {
        Leaf leaf;
        size_t width;
    };
    std::vector<Column> columns_;
    size_t hiddenFields_ = 0;
};

/** A record for people: one line a field, names in dotted form, arrays of numbers eight to a line. */
std::string DetailText(const nlohmann::ordered_json &record);

/** "1 row", "2 rows". */
std::string CountText(uint64_t count, const char *noun);

} // namespace rsvpctl

#endif
