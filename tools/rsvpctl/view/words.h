// Single values as the views show them; what a standard says of a value is in manager/dictionary/standard.h.
#ifndef TOOLS_RSVPCTL_VIEW_WORDS_H
#define TOOLS_RSVPCTL_VIEW_WORDS_H

#include "manager/record/json.h"

#include <cstdint>
#include <string>

namespace rsvpctl {

/** "10.0.0.1"; "-" for 0, which means that there is no neighbour. */
std::string AddressText(uint32_t address);

/** A text of a document, null where there is none. */
manager::Json TextOrNull(const std::string &text);

} // namespace rsvpctl

#endif
