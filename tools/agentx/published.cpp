// Handing over of tables.
#include "tools/agentx/published.h"

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

void Published::Done(Snapshot snapshot, Clock::time_point begun)
{
    auto fresh = std::make_shared<const Snapshot>(std::move(snapshot));
    {
        const std::lock_guard lock(mutex_);
        state_.newest.swap(fresh);
        state_.begun = begun;
        ++state_.readsDone;
        isFailing_ = false;
    }
    // The old copy is given back here, where nobody waits.
}

bool Published::Failed(const std::string &error)
{
    const std::lock_guard lock(mutex_);
    const bool isNews = !isFailing_ || state_.lastError != error;
    ++state_.readsFailed;
    state_.lastError = error;
    state_.failed = Clock::now();
    isFailing_ = true;
    return isNews;
}

} // namespace agentx
