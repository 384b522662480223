// Calls of the library that wait for a daemon in each of their steps, and end when a deadline or another thread says
// so: with the reason noted, every descriptor given back, and the session of the caller still his own.
#include "manager/exchange/exchange.h"

#include "host/directory.h"
#include "rsvp_mor.h"
#include "tests/support/program.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using manager::Cancel, manager::Deadline, manager::Exchange, manager::GivenUp, manager::LastExchange;
using std::chrono::milliseconds, std::chrono::hours;

constexpr milliseconds kSoon(50);

// In the daemon's place: it takes no session and reads nothing, as a daemon that a signal has stopped.
class StoppedDaemon {
public:
    explicit StoppedDaemon(const program::HostDirectory &directory)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        directory.PathOf(rsvp_host::kSocketFile).copy(address.sun_path, sizeof(address.sun_path) - 1);
        listener_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
        EXPECT_EQ(listen(listener_, 0), 0); // room for one that it does not accept
        directory.Use();
    }
    ~StoppedDaemon() { close(listener_); }
    StoppedDaemon(const StoppedDaemon &) = delete;
    StoppedDaemon &operator=(const StoppedDaemon &) = delete;

private:
    int listener_;
};

size_t Descriptors()
{
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(files), end(files)));
}

uint32_t AskOnOwnSession()
{
    RSVP_MOR_ReplyTunnel row = {};
    return RSVP_GetFirstTunnel(&row);
}

uint32_t AskOnHeldSession(int32_t fd)
{
    RSVP_MOR_ReplyPsb record = {};
    return RSVP_MOR_GetFirstPsbInfo(fd, &record);
}

uint32_t AskOnFullSession(int32_t fd)
{
    while (send(fd, "message", 7, MSG_DONTWAIT | MSG_NOSIGNAL) > 0)
        continue;
    return AskOnHeldSession(fd);
}

struct Waiting {
    Exchange::Stage stage;
    const char *name;
    uint32_t status;
};

// Runs a call that waits, in each stage of its exchange.
void ExpectEnd(GivenUp why,
               const std::function<void(const Waiting &, int32_t held, const std::function<void()> &)> &within)
{
    const Waiting rows[] = {{Exchange::Stage::Receive, "receive", RSVP_MOR_ERR_FAIL},
                            {Exchange::Stage::Send, "send", RSVP_MOR_ERR_FAIL},
                            {Exchange::Stage::Open, "open", RSVP_MOR_ERR_LIPC}};
    const program::HostDirectory directory;
    for (const Waiting &row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(directory.PathOf(rsvp_host::kSocketFile));
        const StoppedDaemon daemon(directory);
        const int32_t held = RSVP_MOR_LIPCOpen();
        ASSERT_GE(held, 0);
        within(row, held, [&] {
            const size_t before = Descriptors();
            const uint32_t status = row.stage == Exchange::Stage::Open      ? AskOnOwnSession()
                                    : row.stage == Exchange::Stage::Receive ? AskOnHeldSession(held)
                                                                            : AskOnFullSession(held);
            EXPECT_EQ(status, row.status);
            EXPECT_EQ(Descriptors(), before) << "its own session is closed";
            EXPECT_EQ(LastExchange().stage, row.stage);
            EXPECT_EQ(LastExchange().givenUp, why);
            EXPECT_STREQ(NameOf(FaultOf(status, LastExchange())), row.name);
        });
        EXPECT_EQ(fcntl(held, F_GETFL) & O_NONBLOCK, 0) << "the session is as it was";
        RSVP_MOR_LIPCClose(held);
    }
}

TEST(Deadline, EndsTheCallInEachOfItsSteps)
{
    ExpectEnd(GivenUp::TimeOver, [](const auto &, int32_t, const auto &call) {
        const auto end = Deadline::Clock::now() + kSoon;
        const Deadline deadline(end);
        EXPECT_EQ(deadline.State(), GivenUp::No);
        call();
        EXPECT_GE(Deadline::Clock::now(), end);
        EXPECT_EQ(deadline.State(), GivenUp::TimeOver);
        EXPECT_GE(LastExchange().seconds, 0);
        EXPECT_NE(TextOf(FaultOf(RSVP_MOR_ERR_FAIL, LastExchange()), LastExchange()).find("its time was over"),
                  std::string::npos);
    });
}

TEST(Deadline, NearestHolds)
{
    ExpectEnd(GivenUp::TimeOver, [](const auto &, int32_t, const auto &call) {
        const Deadline outer(hours(1));
        const Deadline inner(kSoon);
        const Deadline innermost(Deadline::Clock::duration::max());
        call();
    });
}

TEST(Deadline, SignalsDoNotProlongIt)
{
    static volatile sig_atomic_t signals;
    signals = 0;
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { signals = signals + 1; };
    sigaction(SIGALRM, &action, &before); // without SA_RESTART
    const itimerval often = {{0, 10000}, {0, 10000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    ExpectEnd(GivenUp::TimeOver, [](const auto &, int32_t, const auto &call) {
        const Deadline deadline(kSoon);
        call();
    });
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_GT(signals, 0);
}

TEST(Deadline, AnotherThreadCancels)
{
    ExpectEnd(GivenUp::Cancelled, [](const Waiting &row, int32_t held, const auto &call) {
        Cancel cancel;
        std::thread worker([&] {
            const Deadline deadline(cancel);
            const Deadline inner(hours(1));
            call();
            EXPECT_EQ(inner.State(), GivenUp::Cancelled);
            EXPECT_EQ(AskOnOwnSession(), RSVP_MOR_ERR_LIPC) << "what begins afterwards ends at once";
        });
        // Given before the request is out, it would end the call in its send.
        int unread = row.stage == Exchange::Stage::Receive ? 0 : 1;
        while (unread == 0)
            ASSERT_EQ(ioctl(held, SIOCOUTQ, &unread), 0);
        cancel.Give();
        worker.join();
    });
}

// A deadline makes no call longer, and one that has gone leaves nothing behind.
TEST(Deadline, LeavesTheSessionItsOwnTimeout)
{
    const program::HostDirectory directory;
    const StoppedDaemon daemon(directory);
    const int32_t held = RSVP_MOR_LIPCOpen();
    ASSERT_GE(held, 0);
    const timeval own = {0, 50000};
    ASSERT_EQ(setsockopt(held, SOL_SOCKET, SO_RCVTIMEO, &own, sizeof(own)), 0);
    for (const bool within : {true, false}) {
        SCOPED_TRACE(within);
        const Deadline past(Deadline::Clock::now() + (within ? hours(1) : hours(0)));
        EXPECT_EQ(AskOnHeldSession(held), RSVP_MOR_ERR_FAIL);
        EXPECT_EQ(LastExchange().givenUp, within ? GivenUp::No : GivenUp::TimeOver);
        EXPECT_EQ(LastExchange().stage, within ? Exchange::Stage::Receive : Exchange::Stage::Send)
            << "what begins too late sends nothing";
    }
    EXPECT_EQ(Deadline::Current(), nullptr);
    EXPECT_EQ(AskOnHeldSession(held), RSVP_MOR_ERR_FAIL);
    EXPECT_EQ(LastExchange().error, EAGAIN);
    RSVP_MOR_LIPCClose(held);
}

// As the platform asks whether the daemon answers: what never waits is not made to, nor refused.
TEST(Deadline, LeavesAloneWhatNeverWaits)
{
    const program::HostDirectory directory;
    const StoppedDaemon daemon(directory);
    const int32_t held = RSVP_MOR_LIPCOpen();
    ASSERT_GE(held, 0);
    ASSERT_EQ(fcntl(held, F_SETFL, O_NONBLOCK), 0);
    for (const auto time : {hours(0), hours(1)}) {
        const Deadline deadline(time);
        EXPECT_EQ(AskOnHeldSession(held), RSVP_MOR_ERR_FAIL);
        EXPECT_EQ(LastExchange().stage, Exchange::Stage::Receive);
        EXPECT_EQ(LastExchange().error, EAGAIN);
        EXPECT_EQ(LastExchange().givenUp, GivenUp::No);
    }
    RSVP_MOR_LIPCClose(held);
}

TEST(Deadline, AnAnswerInTimeIsAnAnswer)
{
    const program::HostDirectory directory("[rows]\npsb = 8\ntunnel = 8\n");
    ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK);
    const Deadline deadline(hours(1));
    EXPECT_EQ(AskOnOwnSession(), RSVP_MOR_OK);
    const int32_t held = RSVP_MOR_LIPCOpen();
    RSVP_MOR_ReplyPsb record = {};
    EXPECT_EQ(RSVP_MOR_GetFirstPsbInfo(held, &record), RSVP_MOR_OK);
    RSVP_MOR_FreeReplyPsb(&record);
    RSVP_MOR_LIPCClose(held);
    EXPECT_EQ(LastExchange().givenUp, GivenUp::No);
    EXPECT_EQ(RSVP_MOR_SetMplsRsvp(1), RSVP_MOR_OK);
}

} // namespace
