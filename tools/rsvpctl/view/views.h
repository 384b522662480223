// LSPs as people read them: one line each, or everything about one on a screen.
#ifndef TOOLS_RSVPCTL_VIEW_VIEWS_H
#define TOOLS_RSVPCTL_VIEW_VIEWS_H

#include "tools/rsvpctl/view/columns.h"
#include "tools/rsvpctl/view/words.h"

#include <algorithm>
#include <string>

namespace rsvpctl {

/** The two views of a kind of row: columns of a table, and everything about one row. */
struct RowView {
    Columns (*columns)() = nullptr; // null: those of the dictionary
    std::string (*detail)(const void *row, const manager::RecordMeanings &meanings) = nullptr;
};

/** Makes a view of a function that knows the type of its row. */
template <typename Row, std::string (*Show)(const Row &, const manager::RecordMeanings &)>
std::string ShowRow(const void *row, const manager::RecordMeanings &meanings)
{
    return Show(*static_cast<const Row *>(row), meanings);
}

/** A column whose text a function makes of a row of the type that it knows. */
template <typename Row> Column ViewColumn(const char *name, size_t width, std::string (*text)(const Row &))
{
    return {name,
            HeadingOf(name),
            width,
            false,
            [text](const void *row) { return text(*static_cast<const Row *>(row)); },
            nullptr};
}

/** A column of a number. */
template <typename Row> Column NumberColumn(const char *name, size_t width, uint64_t (*number)(const Row &))
{
    return {name,
            HeadingOf(name),
            width,
            true,
            [number](const void *row) { return std::to_string(number(*static_cast<const Row *>(row))); },
            [number](const void *row) { return number(*static_cast<const Row *>(row)); }};
}

/** A column of an address, "-" for 0. */
template <typename Row> Column AddressColumn(const char *name, uint64_t (*address)(const Row &))
{
    return {name,
            HeadingOf(name),
            kAddressWidth,
            false,
            [address](const void *row) {
                return AddressText(static_cast<uint32_t>(address(*static_cast<const Row *>(row))));
            },
            [address](const void *row) { return address(*static_cast<const Row *>(row)); }};
}

/** A column of a rate in bytes a second, as it is signalled. */
template <typename Row> Column BandwidthColumn(float (*rate)(const Row &))
{
    return {
        "bandwidth",
        HeadingOf("bandwidth"),
        kBandwidthWidth,
        false,
        [rate](const void *row) { return manager::BandwidthText(double{rate(*static_cast<const Row *>(row))} * 8); },
        [rate](const void *row) {
            return static_cast<uint64_t>(std::max(rate(*static_cast<const Row *>(row)), 0.0F));
        }};
}

extern const RowView kPsbView;
extern const RowView kRsbView;
extern const RowView kPhsbView;
extern const RowView kP2mpPsbView;
extern const RowView kP2mpRsbView;

} // namespace rsvpctl

#endif
