// Handing over of tables.
#include "tools/agentx/published.h"

#include <utility>

namespace agentx {

Published::State Published::Now() const
{
    const std::lock_guard lock(mutex_);
    return state_;
}

std::shared_ptr<const Snapshot> Published::NotOlderThan(Clock::duration age) const
{
    const std::lock_guard lock(mutex_);
    return state_.newest != nullptr && Clock::now() - state_.begun <= age ? state_.newest : nullptr;
}

std::shared_ptr<const Snapshot> Published::NewestIfWell() const
{
    const std::lock_guard lock(mutex_);
    return isFailing_ ? nullptr : state_.newest;
}

bool Published::Done(Snapshot snapshot, Clock::time_point begun)
{
    auto fresh = std::make_shared<const Snapshot>(std::move(snapshot));
    bool wasFailing = false;
    {
        const std::lock_guard lock(mutex_);
        if (begun >= state_.begun) {
            state_.newest.swap(fresh);
            state_.begun = begun;
        }
        ++state_.readsDone;
        wasFailing = std::exchange(isFailing_, false);
    }
    return wasFailing; // the other copy is given back here, where nobody waits
}

bool Published::Failed(const std::string &error)
{
    const std::lock_guard lock(mutex_);
    ++state_.readsFailed;
    state_.lastError = error;
    state_.failed = Clock::now();
    return !std::exchange(isFailing_, true);
}

} // namespace agentx
