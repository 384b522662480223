// Single values of RSVP in the words that operators know: addresses, rates, styles, flags. Every view of an LSP is
// made of these, so that one thing is written in one way everywhere.
#ifndef TOOLS_RSVPCTL_VIEW_WORDS_H
#define TOOLS_RSVPCTL_VIEW_WORDS_H

#include <cstdint>
#include <string>

namespace rsvpctl {

/** "10.0.0.1"; "-" for 0, which means that there is no neighbour. */
std::string AddressText(uint32_t address);

/** A rate in bytes a second as operators count it: "1 Mbit/s", "-" for none. */
std::string BandwidthText(float bytesPerSecond);

/** "SE" for the number or "18"; the bits are those of the STYLE object. */
std::string StyleText(uint32_t style);

/** "local protection, node protection"; empty for none. */
std::string SessionFlagsText(uint8_t flags);

std::string LabelText(uint32_t label);

} // namespace rsvpctl

#endif
