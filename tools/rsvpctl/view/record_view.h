// Any record for people, whatever it is: one line a value, under the name that the dictionary gives it, or under that
// of its field.
#ifndef TOOLS_RSVPCTL_VIEW_RECORD_VIEW_H
#define TOOLS_RSVPCTL_VIEW_RECORD_VIEW_H

#include "manager/dictionary/dictionary.h"

#include <span>
#include <string>
#include <utility>
#include <vector>

namespace rsvpctl {

/** Names with their values. A break inside a value is a line end and a tab. */
using Lines = std::vector<std::pair<std::string, std::string>>;

/** The hops of a recorded route. */
std::span<const RSVP_MOR_HopEntry> HopsIn(const RSVP_MOR_HopList &list);

/** The same, a line each, a label after the address that it leads to. */
std::vector<std::string> HopTexts(std::span<const RSVP_MOR_HopEntry> entries);

/** The addresses of a route. */
std::string RouteText(const RSVP_MOR_RouteList &list);

/** The lines with their values below each other. */
std::string AlignedText(const Lines &lines);

/** Adds the values of a document, one that is not a record of the library's, with their paths as names. */
void AddValues(const manager::Json &value, const std::string &path, Lines &lines);

/** Parts of a record that a view has shown already. */
class ShownParts {
public:
    void Note(const void *part, size_t size);
    bool Contain(const void *part, size_t size) const;

private:
    std::vector<std::pair<const std::byte *, size_t>> parts_;
};

/** Adds every value of a record, but for what is shown already. What a dictionary says of some bytes of a field comes
 * before the field itself. */
void AddRecord(const manager::RecordDescription &description, const void *record,
               const manager::RecordMeanings &meanings, const std::string &prefix, const ShownParts &shown,
               Lines &lines);

/** The same as text. */
std::string RecordText(const manager::RecordDescription &description, const void *record,
                       const manager::RecordMeanings &meanings);

} // namespace rsvpctl

#endif
