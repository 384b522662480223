// What each `show` gives, as data: the record of its rows and the fields that tell one row from another. The schema
// and `watch` read it; both treat every `show` alike.
#ifndef RSVPCTL_SHOWS_H
#define RSVPCTL_SHOWS_H

#include "records.h"

#include <array>
#include <span>
#include <string_view>

namespace rsvpctl {

enum class ShowForm : uint8_t { Rows, Record, Both };

struct ShowDescription {
    std::string_view command;             // without "show "
    const RecordDescription &(*record)(); // null for `counters`, which is four numbers of four reads
    ShowForm form;
    std::array<std::string_view, 6> keyFields; // fields of the row itself; a record inside it is one field
};

std::span<const ShowDescription> AllShows();

/** By the words of the command ("show psb", "watch show psb"); null for a command that is no `show`. */
const ShowDescription *FindShow(std::string_view command);

} // namespace rsvpctl

#endif
