// What changed between two polls of the same `show`: rows by key, fields by path, counters as rates. It has no clock
// and no input of its own, so tests can give it any rows at any time.
#ifndef TOOLS_RSVPCTL_WATCH_ROW_CHANGES_H
#define TOOLS_RSVPCTL_WATCH_ROW_CHANGES_H

#include "manager/record/json.h"
#include "manager/table/table.h"

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace rsvpctl {

struct FieldChange {
    std::string field;               // as a JSON pointer
    manager::Json before;            // null for what was not there
    manager::Json after;             // null for what is gone
    std::optional<double> perSecond; // of a counter that went up
};

struct RowEvent {
    enum class Kind : uint8_t { Added, Changed, Removed };
    Kind kind;
    manager::Json key; // the key fields of the row
    manager::Json row; // as it is now, or was last
    std::vector<FieldChange> changes;
};

class RowChanges {
public:
    explicit RowChanges(std::span<const manager::KeyPart> keyParts);

    void BeginPoll();

    /** A row that was read at `seconds`; an event unless it is as it was. */
    std::optional<RowEvent> Row(const manager::Json &row, double seconds);

    /** Rows that are gone. Only a poll that saw the whole table can tell. */
    std::vector<RowEvent> EndPoll(bool complete);

    size_t Rows() const { return rows_.size(); }

private:
    struct Known {
        std::string row; // its text, which is a fraction of the parsed row in memory
        double seconds;
        uint64_t poll;
    };
    manager::Json KeyOf(const manager::Json &row) const;

    std::vector<std::string> keyFields_;
    std::map<std::string, Known, std::less<>> rows_;
    uint64_t poll_ = 0;
};

} // namespace rsvpctl

#endif
