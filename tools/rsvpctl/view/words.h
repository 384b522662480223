// Single values of RSVP in the words that operators know: addresses, rates, styles, flags. Every view of an LSP is
// made of these, so that one thing is written in one way everywhere.
#ifndef TOOLS_RSVPCTL_VIEW_WORDS_H
#define TOOLS_RSVPCTL_VIEW_WORDS_H

#include <cstdint>
#include <string>

namespace rsvpctl {

/** "10.0.0.1"; "-" for 0, which means that there is no neighbour. */
std::string AddressText(uint32_t address);

} // namespace rsvpctl

#endif
