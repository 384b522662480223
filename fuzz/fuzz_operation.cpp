// Any operation against any reply, in the scripted world of the unit tests. Input: the operation, its `op`, what
// fails, and then the reply: a whole frame, or a body that gets a good header.
#include "promise.h"

#include "support/operations.h"

#include <cerrno>

using namespace scripted;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr size_t front = 6;
    if (size < front)
        return 0;
    ::testing::GTEST_FLAG(break_on_failure) = true; // the table's own checks end the process too
    const Operation &operation = Operations()[data[0] % Operations().size()];
    const Bytes rest(reinterpret_cast<const char *>(data + front), size - front);
    const uint8_t flags = data[2];

    Reset();
    world.services[MASTER] = (flags & 2) != 0 ? 0 : 1;
    world.failingAllocation = data[3];
    constexpr const char *calls[] = {"socket", "setsockopt", "connect", "send", "recv", "STLV_Get"};
    if (const uint8_t failing = data[4] % 8; failing < std::size(calls)) {
        const bool lies = failing == 5;
        world.script[calls[failing]] = {lies ? data[5] % LIE_END : (flags & 4) != 0 ? EINTR : ECONNRESET};
    }
    const Outcome outcome =
        Perform(operation, (flags & 1) != 0 ? rest : Reply(RSVP_MOR_OK, rest.substr(0, 8184)), data[1]);
    if (outcome.status == RSVP_MOR_OK)
        Release(operation);
    else if (operation.answer.reader != LISTS)
        Must(outcome.before == outcome.after, "a failed read leaves its record as it was");
    // What a failed call has built it has released; some records then hold pointers that nobody may follow.
    Must(Clean(), "every session that was opened is closed, every block is given back once");
    Reset(); // the world keeps freed blocks until then
    return 0;
}
