// The library's surroundings in its unit tests: a scripted operating system, platform and daemon, which record every
// call in order. Only in these test programs does the linker put them in the place of the real ones.
#ifndef TESTS_SUPPORT_WORLD_H
#define TESTS_SUPPORT_WORLD_H

#include "rsvp_mor.h"
#include "tests/support/bytes.h"

#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace scripted {

constexpr int32_t kHeld = 2000; // a session that the test holds open
constexpr uint32_t kMaster = 1; // the system master's node

struct World {
    // The results of the next calls, by name and in order; after that, calls succeed. For a socket call this is an
    // errno, or minus the number of bytes that a send leaves out; for a platform call its result; for STLV_Get a Lie.
    std::map<std::string, std::deque<int>> script;
    std::deque<Bytes> replies;                    // if none is left, the receive times out
    std::map<uint32_t, uint32_t> services;        // status by node; a node that is missing cannot be asked
    std::optional<std::vector<uint16_t>> standby; // no value: there is no list
    size_t failingAllocation = 0;                 // the n-th allocation fails; 0 for none
    bool zeroIsFree = false;                      // the next session has the number 0

    std::vector<std::string> calls; // all except those of the item library
    std::vector<uint32_t> rooms;    // of the items written
    Bytes request;                  // the last message sent
    void *area = nullptr;           // where the request is built
    size_t wiped = 0;               // bytes of it, when it was built
    std::set<int> descriptors;
    std::map<void *, size_t> blocks; // on the heap, with their sizes
    std::set<void *> freed;          // kept until the next Reset, so that a second free is seen
    size_t allocations = 0;
    size_t releases = 0; // calls of free with a block
    size_t misuses = 0;  // double free, double close, use of a session that is not open
};

// The ways in which the platform's item library can give a wrong answer.
enum Lie { kReadsNothing = 1, kTakesTooMuch, kValueTooLong, kValueBeforeBuffer, kValueNull, kLieEnd };

extern World world;

// Makes a fresh world: the master runs the service, there are no standby nodes and only kHeld is open.
void Reset();

// The recorded calls: names only, with repeats counted ("send recv*3"); and the platform's calls and the sends in
// full.
std::string CallNames();
std::vector<std::string> PlatformCalls();

// Only the test's own session is open, nothing is left on the heap and nothing was released twice.
::testing::AssertionResult Clean();

// Every test starts in a fresh world and must leave it clean.
class WorldTest : public ::testing::Test {
protected:
    void SetUp() override { Reset(); }
    void TearDown() override
    {
        EXPECT_TRUE(Clean());
        Reset();
    }
};

} // namespace scripted

#endif
