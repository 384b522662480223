// The two kinds of workers.
#include "tools/agentx/workers.h"

#include "manager/exchange/exchange.h"
#include "tools/agentx/log.h"

#include <fmt/format.h>
#include <system_error>
#include <utility>

namespace agentx {
namespace {

// Twelve times what a call takes: sanitizers want more than the library.
constexpr size_t kStackSize = 256 * 1024;

// A master waits for a second if its agentXTimeout says nothing else. After that it takes no answer, and the undo
// that it asks for is lost.
constexpr auto kLongestSet = std::chrono::milliseconds(800);

void RunAndTell(Job &job, const manager::Cancel &cancel)
{
    if (const std::string news = job.Run(); !news.empty() && !cancel.IsGiven())
        Log(Level::Warning, news);
}

} // namespace

Thread::Thread(std::function<void()> run) : run_(std::move(run))
{
    pthread_attr_t attributes;
    int error = pthread_attr_init(&attributes);
    if (error == 0) {
        error = pthread_attr_setstacksize(&attributes, kStackSize);
        const auto start = [](void *self) -> void * {
            static_cast<Thread *>(self)->run_();
            return nullptr;
        };
        if (error == 0)
            error = pthread_create(&thread_, &attributes, start, this);
        pthread_attr_destroy(&attributes);
    }
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "a thread cannot be started");
}

Thread::~Thread()
{
    pthread_join(thread_, nullptr);
}

// ---- Refresher ----

Refresher::Refresher(std::span<const std::unique_ptr<Job>> jobs, Clock::duration pause, const manager::Cancel &cancel)
    : jobs_(jobs), pause_(pause), cancel_(cancel), thread_([this] { Work(); })
{
}

Refresher::~Refresher()
{
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_all();
}

void Refresher::Work()
{
    const manager::Deadline deadline(cancel_);
    std::unique_lock lock(mutex_);
    while (!isEnding_) {
        lock.unlock();
        for (const auto &job : jobs_) {
            if (cancel_.IsGiven())
                break;
            RunAndTell(*job, cancel_);
        }
        lock.lock();
        wake_.wait_for(lock, pause_, [this] { return isEnding_; });
    }
}

// ---- Setter ----

Setter::Setter(Job *interfaces, const manager::Cancel &cancel, std::function<void()> changed)
    : interfaces_(interfaces), cancel_(cancel), changed_(std::move(changed)), thread_([this] { Work(); })
{
}

Setter::~Setter()
{
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_all();
}

void Setter::Ask(void *ticket, std::vector<Change> changes)
{
    {
        const std::lock_guard lock(mutex_);
        orders_.push_back({ticket, std::move(changes)});
    }
    wake_.notify_all();
}

std::vector<Setter::Outcome> Setter::TakeOutcomes()
{
    const std::lock_guard lock(mutex_);
    return std::exchange(outcomes_, {});
}

void Setter::Work()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return isEnding_ || !orders_.empty(); });
        if (isEnding_)
            return;
        const Order order = std::move(orders_.front());
        orders_.pop_front();
        lock.unlock();
        bool isDone = true;
        {
            const manager::Deadline deadline(kLongestSet, cancel_);
            for (const Change &change : order.changes)
                isDone = isDone && Give(change);
            if (isDone && interfaces_ != nullptr) // who asks after the answer sees what was set
                RunAndTell(*interfaces_, cancel_);
        }
        lock.lock();
        outcomes_.push_back({order.ticket, isDone});
        lock.unlock();
        changed_();
        lock.lock();
    }
}

bool Setter::Give(const Change &change)
{
    manager::ForgetExchange();
    const uint32_t status = RSVP_SetIfCapability(change.ifIndex, change.enabled ? 1 : 0);
    if (status == RSVP_MOR_OK) {
        Log(Level::Info, fmt::format("RSVP is {} on interface {}", change.enabled ? "on" : "off", change.ifIndex));
        return true;
    }
    const manager::Exchange &exchange = manager::LastExchange();
    Log(Level::Warning, fmt::format("RSVP could not be set on interface {}: 0x{:08x}, {}", change.ifIndex, status,
                                    manager::TextOf(manager::FaultOf(status, exchange), exchange)));
    return false;
}

} // namespace agentx
