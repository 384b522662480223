// Any operation with any reply, in the scripted world of the unit tests. Input: the operation, its `op`, what fails,
// and then the reply: a whole frame, or a body that gets a good header.
#include "promise.h"

#include "tests/support/operations.h"

#include <cerrno>

using namespace scripted;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr size_t kFront = 6;
    if (size < kFront)
        return 0;
    ::testing::GTEST_FLAG(break_on_failure) = true; // a failed check of the table ends the process too
    const Operation &operation = Operations()[data[0] % Operations().size()];
    const Bytes rest(reinterpret_cast<const char *>(data + kFront), size - kFront);
    const uint8_t flags = data[2];

    Reset();
    world.services[kMaster] = (flags & 2) != 0 ? 0 : 1;
    world.failingAllocation = data[3];
    constexpr const char *kCalls[] = {"socket", "setsockopt", "connect", "send", "recv", "STLV_Get"};
    if (const uint8_t failing = data[4] % 8; failing < std::size(kCalls)) {
        const bool lies = failing == 5;
        world.script[kCalls[failing]] = {lies ? data[5] % kLieEnd : (flags & 4) != 0 ? EINTR : ECONNRESET};
    }
    const Outcome outcome =
        Perform(operation, (flags & 1) != 0 ? rest : Reply(RSVP_MOR_OK, rest.substr(0, 8184)), data[1]);
    if (outcome.status == RSVP_MOR_OK)
        Release(operation);
    else if (operation.answer.reader != kLists)
        Must(outcome.before == outcome.after, "a failed read leaves its record unchanged");
    // A failed call has released what it built; some records then hold stale pointers.
    Must(Clean(), "every session is closed, every block is released once");
    Reset(); // which lets go of the freed blocks
    return 0;
}
