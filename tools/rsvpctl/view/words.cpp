// Words for the single values: addresses, rates, styles, flags. The objects made of them are in detail_lines.cpp.
#include "tools/rsvpctl/view/words.h"

#include "manager/record/text.h"

#include <cmath>
#include <fmt/format.h>

namespace rsvpctl {
namespace {

struct Bit {
    uint8_t mask;
    const char *name;
};

constexpr Bit kSessionFlags[] = {
    {0x01, "local protection"},     {0x02, "label recording"}, {0x04, "SE style"},
    {0x08, "bandwidth protection"}, {0x10, "node protection"},
};

} // namespace

std::string AddressText(uint32_t address)
{
    return address == 0 ? "-" : manager::DottedText(address);
}

std::string BandwidthText(float bytesPerSecond)
{
    if (bytesPerSecond == 0)
        return "-";
    if (!std::isfinite(bytesPerSecond))
        return std::isnan(bytesPerSecond) ? "no number" : bytesPerSecond > 0 ? "unlimited" : "negative";
    double bits = double{bytesPerSecond} * 8;
    static constexpr const char *kUnits[] = {"bit/s", "kbit/s", "Mbit/s", "Gbit/s", "Tbit/s"};
    size_t unit = 0;
    while (std::fabs(bits) >= 1000 && unit + 1 < std::size(kUnits)) {
        bits /= 1000;
        ++unit;
    }
    return fmt::format("{:.4g} {}", bits, kUnits[unit]);
}

// The option vector of the STYLE object: two bits of sharing, three of sender selection.
std::string StyleText(uint32_t style)
{
    switch (style & 0xffffff) {
    case 0x0a:
        return "FF";
    case 0x11:
        return "WF";
    case 0x12:
        return "SE";
    default:
        return fmt::format("{:#x}", style);
    }
}

std::string SessionFlagsText(uint8_t flags)
{
    std::string text;
    for (const Bit &bit : kSessionFlags) {
        if ((flags & bit.mask) != 0)
            text += fmt::format("{}{}", text.empty() ? "" : ", ", bit.name);
    }
    return text;
}

// The reserved labels that an operator meets are better known by name.
std::string LabelText(uint32_t label)
{
    switch (label) {
    case 0:
        return "0 (explicit null)";
    case 3:
        return "3 (implicit null)";
    default:
        return fmt::format("{}", label);
    }
}

} // namespace rsvpctl
