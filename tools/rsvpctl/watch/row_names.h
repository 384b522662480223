// Which named values of a row's document say in words what which raw one holds, so that people are told once.
#ifndef TOOLS_RSVPCTL_WATCH_ROW_NAMES_H
#define TOOLS_RSVPCTL_WATCH_ROW_NAMES_H

#include "manager/dictionary/dictionary.h"

#include <string>
#include <utility>
#include <vector>

namespace rsvpctl {

class RowNames {
public:
    RowNames() = default; // nothing has a name
    RowNames(const manager::RecordDescription &row, const manager::RecordMeanings &meanings)
    {
        Add(row, meanings, "");
    }

    /** The pointers of the named values that say what lies at a raw pointer: "/named/switches" for "/ifConfig". */
    std::vector<std::string> Of(const std::string &pointer) const;

private:
    void Add(const manager::RecordDescription &record, const manager::RecordMeanings &meanings,
             const std::string &prefix);

    std::vector<std::pair<std::string, std::string>> names_; // raw and named pointer, * for the index of a list
};

/** A pointer in the words of people: without "named", which only tells them apart. */
std::string WordsOf(const std::string &pointer);

} // namespace rsvpctl

#endif
