// Every operation, every failure: the table of operations runs with each call failing, with each prefix of its good
// reply, with each length off by one and with each allocation failing. Nothing may be left over, whatever the status.
#include "tests/support/operations.h"

#include <cerrno>

using namespace scripted;

namespace {

class Failures : public WorldTest {
protected:
    // Runs a test on every operation, with the body of a good reply to it.
    template <typename Test> static void ForEach(Test test)
    {
        for (const Operation &operation : Operations()) {
            SCOPED_TRACE(operation.name);
            test(operation, GoodBody(operation));
        }
    }

    // A call whose status is known before it looks at the body.
    static void ExpectRefused(const Operation &operation, const Bytes &reply, uint32_t status)
    {
        const Outcome outcome = Perform(operation, reply);
        EXPECT_EQ(outcome.status, operation.manner == kDisables ? RSVP_MOR_ERR_FAIL : status);
        EXPECT_EQ(outcome.after, outcome.before) << "the record is unchanged";
        EXPECT_TRUE(Clean());
        Reset();
    }

    // A call that looks at the body: it must return 0 or RSVP_MOR_ERR_FAIL. Returns that status.
    static uint32_t RunBody(const Operation &operation, const Bytes &body)
    {
        const Outcome outcome = Perform(operation, Reply(0, body));
        const bool failed = outcome.status != RSVP_MOR_OK;
        EXPECT_TRUE(!failed || outcome.status == RSVP_MOR_ERR_FAIL) << outcome.status;
        if (failed) {
            EXPECT_TRUE(operation.answer.reader == kLists || outcome.after == outcome.before);
            EXPECT_TRUE(Clean()) << "a failed call leaves nothing to release";
        }
        if (!failed || operation.answer.resets) // slots of a failed call are null: a release finds nothing
            Release(operation);
        EXPECT_TRUE(Clean());
        Reset();
        return outcome.status;
    }
};

struct ItemAt {
    size_t offset;
    uint32_t type;
    uint32_t length;
};

std::vector<ItemAt> ItemsOf(const Bytes &body)
{
    std::vector<ItemAt> items;
    for (size_t at = 0; at < body.size(); at += 4 + items.back().length)
        items.push_back({at, GetNet16(body, at), GetNet16(body, at + 2)});
    return items;
}

TEST_F(Failures, OfEachSystemCall)
{
    const struct {
        const char *call;
        std::deque<int> results;
        bool opening;
    } faults[] = {
        {"socket", {EMFILE}, true},        {"setsockopt", {EINVAL}, true}, {"setsockopt", {0, EINVAL}, true},
        {"connect", {ECONNREFUSED}, true}, {"send", {EPIPE}, false},       {"send", {-1}, false},
        {"recv", {EAGAIN}, false},
    };
    ForEach([&](const Operation &operation, const Bytes &body) {
        for (const auto &fault : faults) {
            if (fault.opening && !OwnSession(operation))
                continue;
            SCOPED_TRACE(fault.call);
            world.script[fault.call] = fault.results;
            ExpectRefused(operation, Reply(0, body), fault.opening ? RSVP_MOR_ERR_LIPC : RSVP_MOR_ERR_FAIL);
        }
    });
}

TEST_F(Failures, OfTheFrame)
{
    ForEach([](const Operation &operation, const Bytes &body) {
        const Bytes good = Reply(0, body);
        for (size_t size = 0; size < good.size(); ++size)
            ExpectRefused(operation, good.substr(0, size), RSVP_MOR_ERR_FAIL);
        for (const size_t length : {body.size() - 1, body.size() + 1}) {
            Bytes reply = good;
            PutNet(reply, 2, 2, length);
            ExpectRefused(operation, reply, RSVP_MOR_ERR_FAIL);
        }
        for (const uint32_t status : {1u, 0x60010002u, RSVP_MOR_ERR_LIPC, 0xffffffffu})
            ExpectRefused(operation, Reply(status, body), status);
    });
}

// What a reader returns for a body that ends inside an item.
uint32_t CutBodyStatus(Reader reader)
{
    return reader == kDropped || reader == kTaken ? RSVP_MOR_OK : RSVP_MOR_ERR_FAIL;
}

TEST_F(Failures, OfEachPrefixOfTheBody)
{
    ForEach([](const Operation &operation, const Bytes &body) {
        std::set<size_t> ends; // of whole items: a walk may end there too
        for (const ItemAt &item : ItemsOf(body))
            ends.insert(item.offset);
        for (size_t size = 0; size < body.size(); ++size) {
            const bool whole = operation.answer.reader == kLists && ends.contains(size);
            EXPECT_EQ(RunBody(operation, body.substr(0, size)),
                      whole ? RSVP_MOR_OK : CutBodyStatus(operation.answer.reader))
                << size << " bytes";
        }
    });
}

// Whether an item of this type must be refused if its value is a byte too long or too short.
bool MustFail(Reader reader, uint32_t type, bool longer)
{
    switch (reader) {
    case kExact:
        return true;
    case kNeedsCount:
        return !longer;
    case kLists: // names and unknown items have any length; of items 35 to 39 only the front is read
        return type != 17 && type != 34 && type != 99 && !(type >= 35 && type <= 39 && longer);
    default:
        return false;
    }
}

TEST_F(Failures, OfEachItemLength)
{
    ForEach([](const Operation &operation, const Bytes &body) {
        for (const ItemAt &item : ItemsOf(body))
            for (const bool longer : {false, true}) {
                SCOPED_TRACE("item " + std::to_string(item.type) + (longer ? " longer" : " shorter"));
                Bytes claimed = body; // the length alone: what follows the item is read in the wrong place
                PutNet(claimed, item.offset + 2, 2, longer ? item.length + 1 : item.length - 1);
                RunBody(operation, claimed);

                Bytes resized = claimed; // and the value with it: the item is whole, its value is not
                const size_t end = item.offset + 4 + item.length;
                longer ? resized.insert(end, "\x66") : resized.erase(end - 1, 1);
                EXPECT_EQ(RunBody(operation, resized),
                          MustFail(operation.answer.reader, item.type, longer) ? RSVP_MOR_ERR_FAIL : 0);
            }
    });
}

TEST_F(Failures, OfEachAllocation)
{
    ForEach([](const Operation &operation, const Bytes &body) {
        Perform(operation, Reply(0, body));
        const size_t allocations = world.allocations;
        EXPECT_EQ(allocations != 0, operation.answer.reader == kLists) << "the heap is only for lists";
        Release(operation);
        Reset();
        for (size_t n = 1; n <= allocations; ++n) {
            world.failingAllocation = n;
            EXPECT_EQ(RunBody(operation, body), RSVP_MOR_ERR_FAIL) << "allocation " << n;
        }
    });
}

// The platform's item library is not trusted: an item that it reports must lie inside what is left of the body.
TEST_F(Failures, OfTheItemLibrary)
{
    ForEach([](const Operation &operation, const Bytes &body) {
        const size_t items = operation.answer.reader == kLists ? ItemsOf(body).size() : 1;
        for (int lie = kReadsNothing; lie < kLieEnd; ++lie)
            for (size_t n = 0; n < items; ++n) {
                world.script["STLV_Get"] = std::deque<int>(n, 0);
                world.script["STLV_Get"].push_back(lie);
                const bool taken = operation.answer.reader == kExact; // whose body had the right length
                EXPECT_EQ(RunBody(operation, body), taken ? RSVP_MOR_OK : CutBodyStatus(operation.answer.reader))
                    << "lie " << lie << " about item " << n;
            }
    });
}

} // namespace
