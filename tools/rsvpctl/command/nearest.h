// What a user may have meant by a word that is not known: the known one with the fewest slips between the two.
#ifndef TOOLS_RSVPCTL_COMMAND_NEAREST_H
#define TOOLS_RSVPCTL_COMMAND_NEAREST_H

#include <span>
#include <string>
#include <string_view>

namespace rsvpctl {

/** A word that a user may type, and the one to tell him: they differ for another name of a command. */
struct Spelling {
    std::string typed;
    std::string told;
};

/** "; did you mean 'psb'?" for the spelling nearest to the word; an empty text if none is near. */
std::string DidYouMean(std::string_view word, std::span<const Spelling> known);

} // namespace rsvpctl

#endif
