// Rows by the thousand, for walks that are worth measuring. What a row holds follows from its number alone.
#pragma once

#include "device.h"

namespace rsvpsimd {

inline constexpr std::uint32_t kMostRows = 10'000'000;

// "psb=100000", or "psb-plain=100000" for rows without lists. Throws std::invalid_argument with what is wrong.
void MakeRows(Device &device, std::string_view specification);

} // namespace rsvpsimd
