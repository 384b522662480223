// What may stand as the value of an option of a show, for the completion of command lines.
#ifndef TOOLS_RSVPCTL_SHOW_SUGGESTIONS_H
#define TOOLS_RSVPCTL_SHOW_SUGGESTIONS_H

#include "tools/rsvpctl/show/shows.h"

#include <string>
#include <vector>

namespace rsvpctl {

/** Columns of the table; keys of rows that are there; words of the dictionary for an option with the name of an
 * enumeration, and values of rows that are there for one with the name of any other column. Rows are read for a
 * second at most, and a daemon that does not answer gives none. */
std::vector<std::string> Suggest(const ShowSpec &show, const std::string &option, const std::string &typed);

/** The same for rows with columns of their own, which are made of the rows of a show. */
std::vector<std::string> Suggest(const ShowSpec &show, const Columns &shown, const std::string &option,
                                 const std::string &typed);

} // namespace rsvpctl

#endif
