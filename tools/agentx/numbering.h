// Numbers of rows that have none of their own: a row has the same one as long as it lives, and no other row gets it
// at once when it is gone.
#ifndef TOOLS_AGENTX_NUMBERING_H
#define TOOLS_AGENTX_NUMBERING_H

#include <cstdint>
#include <map>
#include <set>

namespace agentx {

template <typename Key> class Numbering {
public:
    /** The number of a row; a new one if nobody has asked for it in this round or the one before. */
    uint32_t Of(const Key &key)
    {
        const auto [place, isNew] = numbers_.try_emplace(key);
        if (isNew) {
            do
                last_ = last_ == kMost ? 1 : last_ + 1;
            while (!used_.insert(last_).second);
            place->second.number = last_;
        }
        place->second.round = round_;
        return place->second.number;
    }

    /** Ends a round: rows that nobody has asked for in it are gone. */
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
        ++round_;
    }

private:
    static constexpr uint32_t kMost = 0x7fffffff; // SessionNumber

    struct Numbered {
        uint32_t number = 0;
        uint64_t round = 0;
    };
    std::map<Key, Numbered> numbers_;
    std::set<uint32_t> used_;
    uint32_t last_ = 0;
    uint64_t round_ = 0;
};

} // namespace agentx

#endif
