// LSPs as people read them: one line each, or everything about one on a screen.
#ifndef TOOLS_RSVPCTL_VIEW_VIEWS_H
#define TOOLS_RSVPCTL_VIEW_VIEWS_H

#include <string>

namespace rsvpctl {

/** The two views of a kind of row. Brief lines need no knowledge of other rows, so that they can be streamed. */
struct RowView {
    std::string (*header)() = nullptr; // null, like `brief`, for blocks that are shown one at a time
    std::string (*brief)(const void *row) = nullptr;
    std::string (*detail)(const void *row) = nullptr;
};

/** Makes a view of a function that knows the type of its row. */
template <typename Row, std::string (*Show)(const Row &)> std::string ShowRow(const void *row)
{
    return Show(*static_cast<const Row *>(row));
}

extern const RowView kPsbView;
extern const RowView kRsbView;
extern const RowView kPhsbView;
extern const RowView kCrlspView;
extern const RowView kP2mpPsbView;
extern const RowView kP2mpRsbView;
extern const RowView kP2mpCrlspView;

} // namespace rsvpctl

#endif
