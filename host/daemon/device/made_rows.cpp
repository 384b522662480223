// A walk that meets every row and one that meets some of each cycle differ only in how ranks become numbers.
#include "host/daemon/device/made_rows.h"

#include <algorithm>
#include <iterator>

namespace rsvpsimd {

MadeRows::MadeRows(uint32_t count, uint32_t cycle, std::vector<uint32_t> places)
    : cycle_(cycle), places_(std::move(places)), count_(RankFrom(count))
{
}

std::optional<uint32_t> MadeRows::From(uint64_t number) const
{
    uint64_t rank = RankFrom(number);
    const auto behind = runs_.upper_bound(rank);
    if (behind != runs_.begin())
        rank = std::max(rank, std::prev(behind)->second);
    if (rank >= count_)
        return std::nullopt;
    return static_cast<uint32_t>(NumberOf(rank));
}

uint64_t MadeRows::SizeBelow(uint64_t number) const
{
    const uint64_t rank = std::min(RankFrom(number), count_);
    uint64_t left = rank;
    for (auto run = runs_.begin(); run != runs_.end() && run->first < rank; ++run)
        left -= std::min(run->second, rank) - run->first;
    return left;
}

void MadeRows::Remove(uint32_t number)
{
    if (From(number) != number)
        return;
    const uint64_t rank = RankFrom(number);
    ++gone_;
    auto after = runs_.upper_bound(rank);
    uint64_t end = rank + 1;
    if (after != runs_.end() && after->first == end) {
        end = after->second;
        after = runs_.erase(after);
    }
    if (after != runs_.begin() && std::prev(after)->second == rank)
        std::prev(after)->second = end;
    else
        runs_.emplace_hint(after, rank, end);
}

// The rank of the first row that has this number or a greater one.
uint64_t MadeRows::RankFrom(uint64_t number) const
{
    const auto place = std::ranges::lower_bound(places_, number % cycle_);
    return number / cycle_ * places_.size() + static_cast<uint64_t>(place - places_.begin());
}

uint64_t MadeRows::NumberOf(uint64_t rank) const
{
    return rank / places_.size() * cycle_ + places_[static_cast<size_t>(rank % places_.size())];
}

} // namespace rsvpsimd
