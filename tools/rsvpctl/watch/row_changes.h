// What changed between two polls of the same `show`: rows by key, fields by path, counters as rates. Most rows are as
// they were, so rows are compared as texts first, and only those that differ are parsed. It has no clock and no input
// of its own, so tests can give it any rows at any time.
#ifndef TOOLS_RSVPCTL_WATCH_ROW_CHANGES_H
#define TOOLS_RSVPCTL_WATCH_ROW_CHANGES_H

#include "manager/record/json.h"
#include "manager/table/table.h"

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
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
    double seconds;    // when the row was read, or the poll ended that did not see it
    manager::Json key; // the key fields of the row
    manager::Json row; // as it is now, or was last
    std::vector<FieldChange> changes;
};

/** Looks at an event; false if no other is wanted. */
using OnRowEvent = std::function<bool(const RowEvent &event)>;

/** What is known of the fields of a row, by JSON pointer. */
struct RowShape {
    std::vector<std::string> key;                     // "/session", "/key/keyWord0"
    std::set<std::string, std::less<>> counters = {}; // 32 bits wide, and only growing
};

class RowChanges {
public:
    static constexpr size_t kMostBytes = size_t{1} << 30;

    explicit RowChanges(const RowShape &shape, size_t mostBytes = kMostBytes);

    /** A row that the poll read at `seconds`, as the text of its JSON object. Throws std::length_error if the rows of
     * this poll and the one before take more than the bytes that may be kept: a table need not have an end. */
    void Row(std::string_view text, double seconds);

    /**
     * Ends a poll and tells what changed since the one before. Only a poll that saw the whole table can tell what is
     * gone. Without `onEvent` the rows become those that the next poll is compared with, and nothing is told.
     */
    void EndPoll(bool complete, double seconds, const OnRowEvent &onEvent);

    size_t Rows() const { return rows_.size(); }

private:
    struct Read {
        double seconds;
        uint64_t poll; // kReplaced for a row that came again with other fields
    };
    struct TextHash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    // What is kept of a table: a parsed row is many times larger than its text.
    using KnownRows = std::unordered_map<std::string, Read, TextHash, std::equal_to<>>;
    using KnownRow = KnownRows::value_type;
    using ByKey = std::multimap<std::string, KnownRow *>;

    static constexpr uint64_t kReplaced = 0;

    manager::Json KeyOf(const manager::Json &row) const;
    ByKey MissingRows();
    void Tell(bool complete, double seconds, const OnRowEvent &onEvent);

    static size_t BytesOf(const KnownRow &row) { return row.first.size() + sizeof(row); }

    std::vector<manager::Json::json_pointer> keyFields_;
    std::set<std::string, std::less<>> counters_;
    KnownRows rows_;
    size_t mostBytes_;
    size_t bytes_ = 0;                  // of rows_
    std::vector<const KnownRow *> new_; // of this poll, in the order of the table
    uint64_t poll_ = kReplaced + 1;
};

} // namespace rsvpctl

#endif
