// What one thread hands over to the other: the newest complete copy of each table, and what became of the reads. A
// copy is never changed after that, so nobody waits for longer than a pointer takes to be copied.
#ifndef TOOLS_AGENTX_PUBLISHED_H
#define TOOLS_AGENTX_PUBLISHED_H

#include "tools/agentx/snapshot.h"

#include <chrono>
#include <memory>
#include <mutex>

namespace agentx {

using Clock = std::chrono::steady_clock;

class Published {
public:
    explicit Published(const MibTable &table) : table_(table) {}

    const MibTable &Table() const { return table_; }

    /** What the last reads came to. */
    struct State {
        std::shared_ptr<const Snapshot> newest; // null before the first complete one
        Clock::time_point begun;                // when the reading of it began
        uint32_t readsDone = 0;
        uint32_t readsFailed = 0;
        std::string lastError;
        Clock::time_point failed; // when that was
    };
    State Now() const;

    /** The newest copy, unless it is older than that; else null. */
    std::shared_ptr<const Snapshot> NotOlderThan(Clock::duration age) const;

    /** The newest copy if the last read made it; null if that failed. */
    std::shared_ptr<const Snapshot> NewestIfWell() const;

    /** Of two copies that of the later reading stays, whichever comes first. True if the reads before had failed. */
    bool Done(Snapshot snapshot, Clock::time_point begun);

    /** A copy that is there stays. True if the reads before had gone well. */
    bool Failed(const std::string &error);

private:
    const MibTable &table_;
    mutable std::mutex mutex_;
    State state_;
    bool isFailing_ = false;
};

} // namespace agentx

#endif
