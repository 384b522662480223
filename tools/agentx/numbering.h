// Numbers of rows that have none of their own: a row has the same one as long as it lives, and no other row gets it
// at once when it is gone. A read of the daemon is a round; one that breaks off changes no number.
#ifndef TOOLS_AGENTX_NUMBERING_H
#define TOOLS_AGENTX_NUMBERING_H

#include <cstdint>
#include <map>
#include <set>
#include <utility>

namespace agentx {

template <typename Key> class Numbering {
public:
    void BeginRound()
    {
        ++round_;
        timesAsked_.clear();
    }

    /** The number of what has this key; a new one if there was nothing of this key in the last whole round. */
    uint32_t Of(const Key &key) { return NumberOf({key, 0}); }

    /** The same for one more row of this key in this round: the first, the second and so on keep theirs. */
    uint32_t OfNext(const Key &key) { return NumberOf({key, timesAsked_[key]++}); }

    /** What nobody has asked for in this round is gone. */
    void EndRound()
    {
        for (auto one = numbers_.begin(); one != numbers_.end();) {
            if (one->second.round == round_) {
                ++one;
                continue;
            }
            used_.erase(one->second.number);
            one = numbers_.erase(one);
        }
    }

private:
    static constexpr uint32_t kMost = 0x7fffffff; // SessionNumber

    struct Numbered {
        uint32_t number = 0;
        uint64_t round = 0;
    };

    uint32_t NumberOf(const std::pair<Key, uint32_t> &row)
    {
        const auto [place, isNew] = numbers_.try_emplace(row);
        if (isNew) {
            do
                last_ = last_ == kMost ? 1 : last_ + 1;
            while (!used_.insert(last_).second);
            place->second.number = last_;
        }
        place->second.round = round_;
        return place->second.number;
    }

    std::map<std::pair<Key, uint32_t>, Numbered> numbers_;
    std::map<Key, uint32_t> timesAsked_;
    std::set<uint32_t> used_;
    uint32_t last_ = 0;
    uint64_t round_ = 0;
};

} // namespace agentx

#endif
