// Counts the slips of a typist: a letter too many, too few, another one, or two that changed places.
#include "tools/rsvpctl/command/nearest.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>
#include <vector>

namespace rsvpctl {
namespace {

size_t Slips(std::string_view a, std::string_view b)
{
    // Three rows of the usual table: slips between the first i letters of a and the first j of b.
    std::vector<size_t> before(b.size() + 1);
    std::vector<size_t> above(b.size() + 1);
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        before = std::exchange(above, row);
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t other = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, other});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row[b.size()];
}

} // namespace

std::string DidYouMean(std::string_view word, std::span<const Spelling> known)
{
    size_t fewest = word.size() / 3 + 1; // beyond that it is another word
    const Spelling *nearest = nullptr;
    for (const Spelling &spelling : known) {
        const size_t slips = Slips(word, spelling.typed);
        if (slips < fewest || (slips == fewest && nearest == nullptr)) {
            fewest = slips;
            nearest = &spelling;
        }
    }
    return nearest == nullptr ? std::string() : fmt::format("; did you mean '{}'?", nearest->told);
}

} // namespace rsvpctl
