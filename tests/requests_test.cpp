// The exact bytes of every request: each exported function that sends a message is called, for each `op`, with the
// service running and stopped, and its message compared with literal bytes. A function without a row fails the test.
#include "tests/support/operations.h"

#include <cerrno>
#include <fstream>

using namespace scripted;

namespace {

class Requests : public WorldTest {};

bool SendsOp(Manner manner)
{
    return manner == kSendsOp || manner == kGated || manner == kOnHeldOp;
}

TEST_F(Requests, EveryExportedNameHasARow)
{
    std::set<std::string> covered = Silent();
    for (const Operation &operation : Operations())
        covered.insert(operation.name);
    std::set<std::string> exported;
    std::ifstream list(EXPORTS_PATH);
    for (std::string name; std::getline(list, name);)
        exported.insert(name);
    EXPECT_EQ(covered, exported);
}

TEST_F(Requests, AreTheLiteralBytes)
{
    for (const Operation &operation : Operations())
        for (const uint32_t op : {0u, 1u}) {
            SCOPED_TRACE(operation.name + std::string(" op ") + std::to_string(op));
            Reset();
            Bytes expected = Hex(operation.request);
            if (SendsOp(operation.manner))
                expected[1] = static_cast<char>(op);
            EXPECT_EQ(Perform(operation, Reply(0, GoodBody(operation)), op).status, RSVP_MOR_OK);
            EXPECT_EQ(ToHex(world.request), ToHex(expected));
            std::erase_if(world.calls, [](const std::string &call) { return std::isupper(call[0]) != 0; });
            EXPECT_EQ(CallNames(),
                      OwnSession(operation) ? "socket setsockopt*2 connect send recv close" : "send recv");
            Release(operation);
            EXPECT_TRUE(Clean());
        }
}

// Whatever becomes of the request, and of no other: no key stays on the stack behind the call.
TEST_F(Requests, AreWipedIfTheyCarryAKey)
{
    for (const Operation &operation : Operations())
        for (const char *failing : {"", "socket", "send", "recv"}) {
            SCOPED_TRACE(operation.name + std::string(" ") + failing);
            Reset();
            world.script[failing] = {EPIPE};
            Perform(operation, Reply(0, GoodBody(operation)));
            const Bytes request = Hex(operation.request);
            const bool carriesKey = request.find(Hex("00030044")) != Bytes::npos;
            EXPECT_EQ(carriesKey, std::string(operation.name).ends_with("AuthKey"));
            EXPECT_EQ(world.wiped, carriesKey ? request.size() : 0);
            Release(operation);
        }
}

TEST_F(Requests, OfGatedFunctionsStayBackWhileTheServiceIsStopped)
{
    for (const Operation &operation : Operations())
        for (const uint32_t op : {0u, 1u}) {
            SCOPED_TRACE(operation.name + std::string(" op ") + std::to_string(op));
            Reset();
            world.services[kMaster] = 0;
            const Outcome outcome = Perform(operation, Reply(0, GoodBody(operation)), op);
            const Manner manner = operation.manner;
            const bool gated = manner == kGated || manner == kGatedOnly;
            EXPECT_EQ(outcome.status,
                      manner == kRefused || (gated && op == 0) ? RSVP_MOR_ERR_NOT_ENABLED : RSVP_MOR_OK);
            EXPECT_EQ(world.request.empty(), gated || manner == kRefused || manner == kCounted);
            EXPECT_EQ(world.request.empty(),
                      CallNames().find("socket") == std::string::npos && OwnSession(operation));
            EXPECT_TRUE(manner != kCounted || outcome.after == Bytes(4, '\0')) << "a count of 0";
            Release(operation);
            EXPECT_TRUE(Clean());
        }
}

// The gate compares the whole number; the message has room only for its low byte.
TEST_F(Requests, TakeAWideOpWholeAtTheGateAndCutOnTheWire)
{
    EXPECT_EQ(RSVP_MOR_SetBfdEnable(0x105, 1), RSVP_MOR_ERR_FAIL); // no reply
    EXPECT_EQ(world.request[1], 5);
    world.services[kMaster] = 0;
    EXPECT_EQ(RSVP_MOR_SetBfdEnable(0x101, 1), RSVP_MOR_ERR_NOT_ENABLED);
    const RSVP_MOR_P2mpCrlspKey key = {};
    RSVP_MOR_P2mpCrlspInfo record = {};
    EXPECT_EQ(RSVP_MOR_GetP2mpCrlsp(kHeld, 0x304, &key, &record), RSVP_MOR_ERR_FAIL);
    EXPECT_EQ(world.request[1], 4);
}

TEST_F(Requests, LeaveThePairConvertedInTheCallersMemory)
{
    const auto bytesAfter = [](uint32_t service) {
        world.services[kMaster] = service;
        uint16_t pair[2] = {258, 772};
        RSVP_MOR_SetReduction(0, 1, pair);
        return pair[0] == 258 && pair[1] == 772 ? "host order" : ToHex(Bytes(reinterpret_cast<char *>(pair), 4));
    };
    const uint16_t number = 258;
    const bool bigEndian = *reinterpret_cast<const uint8_t *>(&number) == 1;
    EXPECT_EQ(bytesAfter(0), "host order");                          // the gate stopped the call
    EXPECT_EQ(bytesAfter(1), bigEndian ? "host order" : "01020304"); // even after a failed exchange
}

TEST_F(Requests, GiveTheItemLibraryTheRoomThatIsLeft)
{
    RSVP_MOR_SetRetransInterval(0, 1, 2);
    EXPECT_EQ(world.rooms, (std::vector<uint32_t>{8184, 8176}));
}

TEST_F(Requests, TakeAnyCapabilityButZeroForYes)
{
    for (const uint32_t capability : {0u, 1u, 2u, 0x100u}) {
        RSVP_SetIfCapability(1, capability);
        EXPECT_EQ(world.request[1], capability == 0 ? 1 : 0) << capability;
        world.calls.clear();
        RSVP_SetGlobalCapability(capability);
        EXPECT_EQ(world.calls.front() == "DEV_GetSystemMaster()", capability != 0) << capability; // enables
    }
}

// The key may lie inside the record that takes the answer: it is read before anything is written.
TEST_F(Requests, ReadAKeyThatLiesInTheRecord)
{
    RSVP_MOR_ReplyPsb psb = {};
    psb.session = {1, {2, 3}, 4, 5};
    psb.sender = {6, {7, 8}, 9};
    world.replies = {Reply(0, Body("15"))};
    EXPECT_EQ(RSVP_MOR_GetNextPsbInfo(kHeld, &psb.session, &psb.sender, &psb), RSVP_MOR_OK);
    EXPECT_EQ(ToHex(world.request.substr(12)), "0000000102030004000000050000000607080009");
    EXPECT_EQ(psb.hop.hopAddress, 0x656c737au);

    union {
        RSVP_MOR_NbrKey nbrKey;
        RSVP_MOR_ReplyNbr nbr;
        RSVP_MOR_TunnelKey tunnelKey;
        RSVP_MOR_ReplyTunnel tunnel;
    } memory = {};
    memory.nbrKey = {0x102, 0x304};
    world.replies = {Reply(0, Item(1, Pattern(48)))};
    EXPECT_EQ(RSVP_MOR_GetNextNbr(kHeld, &memory.nbrKey, &memory.nbr), RSVP_MOR_OK);
    EXPECT_EQ(ToHex(world.request.substr(12)), "0000010200000304");
    EXPECT_EQ(memory.nbr.nbrWord0, 0x11181f26u);
    memory.tunnelKey = {1, 2, 3, 4};
    world.replies = {Reply(0, Item(1, Pattern(60)))};
    EXPECT_EQ(RSVP_GetNextTunnel(&memory.tunnelKey, &memory.tunnel), RSVP_MOR_OK);
    EXPECT_EQ(ToHex(world.request.substr(12)), "00000001000000020000000300000004");
    EXPECT_EQ(memory.tunnel.tunnelWord0, 0x11181f26u);
}

// The record of a hop is its own cursor: a second call sends the key of the first answer.
TEST_F(Requests, WalkAHopTableOnOneRecord)
{
    RSVP_MOR_ReplyArHop record = {};
    for (const char *request : {"00000000 00000000 00000000", "9da4abb2 b9c0c7ce 00000000"}) {
        world.replies = {Reply(0, Item(1, Pattern(28)))};
        EXPECT_EQ(RSVP_GetNextArHop(&record), RSVP_MOR_OK);
        EXPECT_EQ(ToHex(world.request.substr(12)), ToHex(Hex(request)));
    }
}

} // namespace
