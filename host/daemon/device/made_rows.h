// Rows that are made from their number are not stored; what is stored is which of them are gone. This keeps track of
// that for one walk over them, in runs of neighbours, so that the next one is found without looking at those between.
#ifndef HOST_DAEMON_DEVICE_MADE_ROWS_H
#define HOST_DAEMON_DEVICE_MADE_ROWS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace rsvpsimd {

class MadeRows {
public:
    MadeRows() = default; // none

    // The rows with a number below `count` whose place in a cycle of `cycle` rows is one of `places` (ascending).
    MadeRows(uint32_t count, uint32_t cycle, std::vector<uint32_t> places);

    // The first one that is not gone, from this number on.
    std::optional<uint32_t> From(uint64_t number) const;

    // How many are not gone.
    uint64_t Size() const { return count_ - gone_; }

    // How many with a smaller number are not gone.
    uint64_t SizeBelow(uint64_t number) const;

    // What it takes to remember those that are gone: one for each run of neighbours.
    size_t Runs() const { return runs_.size(); }

    // The row is gone from now on. Nothing happens if this walk does not meet it.
    void Remove(uint32_t number);

private:
    uint64_t RankFrom(uint64_t number) const;
    uint64_t NumberOf(uint64_t rank) const;

    uint32_t cycle_ = 1;
    std::vector<uint32_t> places_;
    uint64_t count_ = 0; // of the rows that this walk meets; their ranks are 0, 1, 2, ...
    uint64_t gone_ = 0;
    std::map<uint64_t, uint64_t> runs_; // of ranks that are gone: first, and the one behind the last; never adjacent
};

} // namespace rsvpsimd

#endif
