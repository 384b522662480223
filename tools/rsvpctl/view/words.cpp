// Words for single values that need no standard.
#include "tools/rsvpctl/view/words.h"

#include "manager/record/text.h"

#include <nlohmann/json.hpp>

namespace rsvpctl {

std::string AddressText(uint32_t address)
{
    return address == 0 ? "-" : manager::DottedText(address);
}

manager::Json TextOrNull(const std::string &text)
{
    return text.empty() ? manager::Json() : manager::Json(text);
}

} // namespace rsvpctl
