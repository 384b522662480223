// Single values as the views show them; what a standard says of a value is in manager/dictionary/standard.h.
#ifndef TOOLS_RSVPCTL_VIEW_WORDS_H
#define TOOLS_RSVPCTL_VIEW_WORDS_H

#include <cstdint>
#include <string>

namespace rsvpctl {

/** "10.0.0.1"; "-" for 0, which means that there is no neighbour. */
std::string AddressText(uint32_t address);

} // namespace rsvpctl

#endif
