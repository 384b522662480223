// Finds a kind by the name that people use, or by the number that requests use.
#include "host/daemon/device/row_kinds.h"

#include <strings.h>

namespace rsvpsimd {

namespace {

template <typename Matches> const RowKind *FindKind(const Matches &matches)
{
    const auto *found = std::ranges::find_if(kRowKinds, matches);
    return found == kRowKinds.end() ? nullptr : found;
}

} // namespace

std::span<const RowKind> AllRowKinds()
{
    return kRowKinds;
}

const RowKind *FindRowKind(std::string_view name)
{
    return FindKind([&](const RowKind &kind) {
        return kind.name.size() == name.size() && strncasecmp(kind.name.data(), name.data(), name.size()) == 0;
    });
}

const RowKind *FindRowKind(uint16_t requestItem)
{
    return FindKind([&](const RowKind &kind) { return kind.requestItem == requestItem; });
}

} // namespace rsvpsimd
