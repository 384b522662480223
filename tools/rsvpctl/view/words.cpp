// Words for single values that need no standard.
#include "tools/rsvpctl/view/words.h"

#include "manager/record/text.h"

namespace rsvpctl {

std::string AddressText(uint32_t address)
{
    return address == 0 ? "-" : manager::DottedText(address);
}

} // namespace rsvpctl
