// The library's surroundings in its unit tests: a scripted operating system, platform and daemon, which note every
// call in order. The linker puts them in the place of the real ones for the objects of a test program alone.
#pragma once

#include "rsvp_mor.h"
#include "support/bytes.h"

#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace scripted {

constexpr int32_t HELD = 2000; // a session that the test holds open
constexpr uint32_t MASTER = 1; // the system master's node

struct World {
    // What the next calls of a name give, in order; after that they succeed. A socket call takes an errno, or minus
    // the bytes that a send leaves out. A platform call takes its result. For STLV_Get see Lie.
    std::map<std::string, std::deque<int>> script;
    std::deque<Bytes> replies;                    // none left: the receive times out
    std::map<uint32_t, uint32_t> services;        // status by node; a node that is not here cannot be asked
    std::optional<std::vector<uint16_t>> standby; // without a value there is no list
    size_t failingAllocation = 0;                 // the n-th one gives null; 0 for none

    std::vector<std::string> calls; // all but those of the item library
    std::vector<uint32_t> rooms;    // of the items written
    Bytes request;                  // the last message sent
    std::set<int> descriptors;
    std::map<void *, size_t> blocks; // on the heap, with their sizes
    std::set<void *> freed;          // kept back until the next Reset, so that a second free is seen
    size_t allocations = 0;
    size_t releases = 0; // calls of free with a block
    size_t misuses = 0;  // freed twice, closed twice, a session used that is not open
};

// How the platform's item library can answer wrongly where it has bytes left.
enum Lie { READS_NOTHING = 1, TAKES_TOO_MUCH, VALUE_TOO_LONG, VALUE_BEFORE_BUFFER, VALUE_NULL, LIE_END };

extern World world;

// A world where the master runs the service, nothing stands by and only HELD is open.
void Reset();

// The noted calls: names alone, with repeats counted ("send recv*3"); and the platform's calls with the sends.
std::string CallNames();
std::vector<std::string> PlatformCalls();

// Nothing is open but what the test holds, nothing is left on the heap and nothing was given back twice.
::testing::AssertionResult Clean();

// Every test begins in a fresh world and must leave it clean.
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
