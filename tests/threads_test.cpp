// Many threads of one management program at once, some on held sessions and some that open one for each call. The
// library keeps nothing between calls, and the thread sanitizer would see if it did.
#include "rsvp_mor.h"
#include "tests/support/program.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kEach = 16;
constexpr int kRounds = 20;
constexpr uint32_t kRows = 8;

// Walks the path state and counts its rows; their keys must grow.
uint32_t WalkPathState()
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    RSVP_MOR_ReplyPsb record = {};
    uint32_t rows = 0;
    uint32_t before = 0;
    for (uint32_t status = RSVP_MOR_GetFirstPsbInfo(fd, &record); status == RSVP_MOR_OK; ++rows) {
        EXPECT_GT(record.session.tunnelEndpoint, before);
        EXPECT_NE(record.hopList.count, 0);
        before = record.session.tunnelEndpoint;
        RSVP_MOR_FreeReplyPsb(&record);
        status = RSVP_MOR_GetNextPsbInfo(fd, &record.session, &record.sender, &record);
    }
    RSVP_MOR_LIPCClose(fd);
    return rows;
}

uint32_t WalkTunnels(uint32_t interface)
{
    EXPECT_EQ(RSVP_MOR_SetHelloEnable(0, interface), RSVP_MOR_OK); // gated: asks the service manager first
    RSVP_MOR_ReplyTunnel row = {};
    uint32_t rows = 0;
    for (uint32_t status = RSVP_GetFirstTunnel(&row); status == RSVP_MOR_OK; ++rows) {
        const RSVP_MOR_TunnelKey key = {row.tunnelWord0, row.tunnelWord1, row.tunnelWord2, row.tunnelWord3};
        status = RSVP_GetNextTunnel(&key, &row);
    }
    return rows;
}

TEST(Threads, AllOperationsAtOnce)
{
    const program::HostDirectory directory("[rows]\npsb = 8\ntunnel = 8\n");
    directory.Use();
    ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK);
    std::atomic<uint32_t> walks = 0;
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < 2 * kEach; ++i)
        threads.emplace_back([&walks, i] {
            for (int round = 0; round < kRounds; ++round)
                walks += (i % 2 == 0 ? WalkPathState() : WalkTunnels(i)) == kRows;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(walks, 2 * kEach * kRounds);
    EXPECT_EQ(RSVP_MOR_SetMplsRsvp(1), RSVP_MOR_OK);
}

} // namespace
