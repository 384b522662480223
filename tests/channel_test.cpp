// The channel and what needs only the platform: the calls that open a session, every outcome of an exchange, the
// counters, the presence of the service, the option file, and the switch of the service on all nodes.
#include "channel/exchange.h"
#include "channel/presence.h"
#include "tests/support/operations.h"

#include <algorithm>
#include <cerrno>

using namespace scripted;

namespace {

class Channel : public WorldTest {};
using Lines = std::vector<std::string>;
using Results = std::deque<int>;

Results Repeat(size_t count, int error, Results then = {})
{
    then.insert(then.begin(), count, error);
    return then;
}

TEST_F(Channel, OpensWithTheseCallsAndArguments)
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    const std::string session = std::to_string(fd);
    EXPECT_EQ(world.calls, (Lines{"socket(37,2,1)", "setsockopt(" + session + ",1,4101,10,0,8)",
                                  "setsockopt(" + session + ",1,4102,10,0,8)",
                                  "connect(" + session + ",10250ae1800000000000000000000000)"}));
    EXPECT_EQ(RSVP_MOR_LIPCClose(fd), 0);
}

TEST_F(Channel, OpensOrLeavesNothingOpen)
{
    const struct {
        const char *call;
        Results results;
        bool opens;
        const char *calls;
    } rows[] = {
        {"socket", {EMFILE}, false, "socket"},
        {"setsockopt", {EINVAL}, false, "socket setsockopt close"},
        {"setsockopt", {0, EINVAL}, false, "socket setsockopt*2 close"},
        {"connect", {ECONNREFUSED}, false, "socket setsockopt*2 connect close"},
        {"connect", {EISCONN}, true, "socket setsockopt*2 connect"},
        {"connect", {EINTR}, true, "socket setsockopt*2 connect*2"},
        {"connect", {EINTR, EISCONN}, true, "socket setsockopt*2 connect*2"},
        {"connect", {EINTR, ETIMEDOUT}, false, "socket setsockopt*2 connect*2 close"},
        {"connect", Repeat(1000, EINTR), true, "socket setsockopt*2 connect*1001"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.calls);
        Reset();
        world.script[row.call] = row.results;
        const int32_t fd = RSVP_MOR_LIPCOpen();
        EXPECT_EQ(fd >= 0, row.opens);
        EXPECT_TRUE(row.opens || fd == -1);
        EXPECT_EQ(CallNames(), row.calls);
        if (row.opens)
            RSVP_MOR_LIPCClose(fd);
        EXPECT_TRUE(Clean());
    }
}

// A program that has closed its standard input gets the number 0 for a session.
TEST_F(Channel, TakesZeroForASession)
{
    for (const Operation &operation : Operations()) {
        SCOPED_TRACE(operation.name);
        Reset();
        world.zeroIsFree = OwnSession(operation);
        EXPECT_EQ(Perform(operation, Reply(0, GoodBody(operation))).status, RSVP_MOR_OK);
        Release(operation);
        EXPECT_TRUE(Clean());
    }
    world.zeroIsFree = true;
    EXPECT_EQ(RSVP_MOR_LIPCOpen(), 0);
    EXPECT_EQ(RSVP_MOR_LIPCClose(0), 0);
}

TEST_F(Channel, ExchangesOneRequestForOneReply)
{
    const Bytes body12 = Pattern(12);
    Bytes tooMuch = Reply(0, Pattern(8185));
    const struct {
        const char *what;
        Results send;
        Results recv;
        Bytes reply;
        uint32_t status;
        const char *calls = "send recv";
    } rows[] = {
        {"good", {}, {}, Reply(0, body12), 0},
        {"status alone", {}, {}, Reply(0x12345678, ""), 0x12345678},
        {"largest", {}, {}, Reply(0, Pattern(8184)), 0},
        {"one byte more", {}, {}, tooMuch, RSVP_MOR_ERR_FAIL},
        {"cut, which is not seen", {}, {}, Reply(0, Pattern(8184)) + Pattern(5000), 0},
        {"signal in send", {EINTR}, {}, Reply(0, ""), 0, "send*2 recv"},
        {"signals in send", Repeat(1000, EINTR), {}, Reply(0, ""), 0, "send*1001 recv"},
        {"send fails", {EPIPE}, {}, Reply(0, ""), RSVP_MOR_ERR_FAIL, "send"},
        {"signal, then send fails", {EINTR, EPIPE}, {}, Reply(0, ""), RSVP_MOR_ERR_FAIL, "send*2"},
        {"short send", {-1}, {}, Reply(0, ""), RSVP_MOR_ERR_FAIL, "send"},
        {"nothing sent", {-8}, {}, Reply(0, ""), RSVP_MOR_ERR_FAIL, "send"},
        {"signal in recv", {}, {EINTR}, Reply(0, ""), 0, "send recv*2"},
        {"signals in recv", {}, Repeat(1000, EINTR), Reply(0, ""), 0, "send recv*1001"},
        {"time-out", {}, {EAGAIN}, Reply(0, ""), RSVP_MOR_ERR_FAIL},
        {"signal, then time-out", {}, {EINTR, EAGAIN}, Reply(0, ""), RSVP_MOR_ERR_FAIL, "send recv*2"},
        {"length says 11", {}, {}, Hex("0303 000b 00000000") + body12, RSVP_MOR_ERR_FAIL},
        {"length says 13", {}, {}, Hex("0303 000d 00000000") + body12, RSVP_MOR_ERR_FAIL},
        {"length says 12 in the other order", {}, {}, Hex("0303 0c00 00000000") + body12, RSVP_MOR_ERR_FAIL},
        {"status of a broken reply", {}, {}, Hex("0303 000d 12345678") + body12, RSVP_MOR_ERR_FAIL},
    };
    const Bytes request = Hex("0303 0000 00000000");
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Reset();
        world.script = {{"send", row.send}, {"recv", row.recv}};
        world.replies = {row.reply};
        Bytes reply(RSVP_MOR_MSG_MAX, '\0');
        EXPECT_EQ(RSVP_MOR_Exchange(kHeld, request.data(), 8, reply.data()), row.status);
        EXPECT_EQ(CallNames(), row.calls);
        EXPECT_EQ(world.calls.front(), "send(2000,8,0)");
        EXPECT_EQ(world.calls.back(), world.calls.back()[0] == 'r' ? "recv(2000,8192,256)" : "send(2000,8,0)");
        EXPECT_TRUE(row.status != 0 || reply.starts_with(row.reply.substr(0, RSVP_MOR_MSG_MAX)))
            << "the reply is passed on as it came";
        EXPECT_TRUE(Clean());
    }
    for (size_t size = 0; size < 8; ++size) {
        world.replies = {Reply(0, "").substr(0, size)};
        Bytes reply(RSVP_MOR_MSG_MAX, '\0');
        EXPECT_EQ(RSVP_MOR_Exchange(kHeld, request.data(), 8, reply.data()), RSVP_MOR_ERR_FAIL) << size;
    }
}

// The plain counters refuse a value of fewer than four bytes; the count of LSPs takes it over the front of the word.
TEST_F(Channel, CountsFromTheFirstItem)
{
    const struct {
        const char *value;
        uint32_t plain;
        uint32_t plainCount;
        uint32_t lspCount;
    } rows[] = {
        {"00000102", RSVP_MOR_OK, 258, 258},
        {"8000000102", RSVP_MOR_OK, 0x80000001, 0x80000001},
        {"800001", RSVP_MOR_ERR_FAIL, 0, 0x80000100},
        {"", RSVP_MOR_ERR_FAIL, 0, 0},
    };
    for (const auto &row : rows) {
        const Bytes reply = Reply(0, Item(200, Hex(row.value)) + Item(109, Hex("ffffffff")));
        for (const auto function : {RSVP_MOR_GetFrrIfNum, RSVP_MOR_GetFrrActiveIfNum, RSVP_MOR_GetActBypassTunnels}) {
            uint32_t count = 0;
            world.replies = {reply};
            EXPECT_EQ(function(&count), row.plain) << row.value;
            EXPECT_EQ(count, row.plainCount) << row.value;
        }
        uint32_t count = 0;
        world.replies = {reply};
        EXPECT_EQ(RSVP_GetUpLspNumber(&count), RSVP_MOR_OK) << row.value;
        EXPECT_EQ(count, row.lspCount) << row.value;
    }
}

// Stands for the status of a node that cannot be asked.
constexpr uint32_t kMute = 99;

using Statuses = std::vector<uint32_t>;

void SetNodes(uint32_t master, const std::optional<Statuses> &standby)
{
    world.services.clear();
    if (master != kMute)
        world.services[kMaster] = master;
    if (!standby)
        return;
    world.standby.emplace();
    for (const uint32_t status : *standby) {
        const uint16_t node = static_cast<uint16_t>(11 + world.standby->size());
        world.standby->push_back(node);
        if (status != kMute)
            world.services[node] = status;
    }
}

TEST_F(Channel, FindsTheServiceOnAnyNode)
{
    const struct {
        uint32_t master;
        std::optional<Statuses> standby;
        uint32_t runs;
        const char *calls;
    } rows[] = {
        {1, Statuses{1}, 1, "DEV_GetSystemMaster SERVICE_GetStatus"},
        {2, Statuses{1}, 1, "DEV_GetSystemMaster SERVICE_GetStatus"},
        {0, {}, 0, "DEV_GetSystemMaster SERVICE_GetStatus DEV_GetAllStandbyNodes"},
        {3, Statuses{}, 0, "DEV_GetSystemMaster SERVICE_GetStatus DEV_GetAllStandbyNodes"},
        {0, Statuses{0, 1, 0}, 1, "DEV_GetSystemMaster SERVICE_GetStatus DEV_GetAllStandbyNodes SERVICE_GetStatus*2"},
        {kMute, Statuses{kMute, 3, 4, 2}, 1,
         "DEV_GetSystemMaster SERVICE_GetStatus DEV_GetAllStandbyNodes SERVICE_GetStatus*4"},
        {4, Statuses{0, 3, 4}, 0, "DEV_GetSystemMaster SERVICE_GetStatus DEV_GetAllStandbyNodes SERVICE_GetStatus*3"},
    };
    for (const auto &row : rows)
        for (const auto function : {RSVP_MOR_IsServiceRunning, RSVP_IsGlobalEnabled}) {
            Reset();
            SetNodes(row.master, row.standby);
            EXPECT_EQ(function(), row.runs) << row.calls;
            EXPECT_EQ(CallNames(), row.calls);
            EXPECT_EQ(world.calls[1], "SERVICE_GetStatus(1,RSVP,0)");
            EXPECT_TRUE(Clean()) << row.calls;
        }
    world.script["SERVICE_GetStatus"] = {5}; // a status that comes with a failure does not count
    world.services[kMaster] = 1;
    world.standby.reset();
    EXPECT_EQ(RSVP_IsGlobalEnabled(), 0u);
}

TEST_F(Channel, FiltersStandbyNodesInPlace)
{
    const struct {
        uint32_t mode;
        Statuses statuses;
        std::vector<uint16_t> nodes; // after the call
        uint32_t kept;
    } rows[] = {
        {1, {1, 0, 2, 3}, {12, 14, 13, 14}, 2},
        {0, {1, 0, 2, 3}, {11, 13, 13, 14}, 2},
        {7, {1, 0, 2, 3}, {11, 13, 13, 14}, 2},
        {1, {kMute, 0, kMute}, {12, 12, 13}, 1},
        {0, {kMute, 1, kMute}, {12, 12, 13}, 1},
        {1, {4, 1}, {11, 12}, 1},
        {0, {4, 0}, {11, 12}, 1},
        {1, {}, {}, 0},
    };
    for (const auto &row : rows) {
        Reset();
        SetNodes(1, row.statuses);
        std::vector<uint16_t> nodes = *world.standby;
        EXPECT_EQ(rsvp_mor_FilterStandbyNodes(row.mode, static_cast<uint32_t>(nodes.size()), nodes.data()), row.kept);
        EXPECT_EQ(nodes, row.nodes);
        EXPECT_EQ(world.calls.size(), nodes.size());
        EXPECT_TRUE(nodes.empty() || world.calls[0] == "SERVICE_GetStatus(11,RSVP,-1)");
    }
}

TEST_F(Channel, ParsesTheFirstOptionOfTheFile)
{
    const struct {
        const char *failing;
        int result;
        uint32_t status;
        std::vector<size_t> calls; // of those below
    } rows[] = {{"PLUGIN_OptInit", 1, RSVP_MOR_ERR_NOT_EXIST, {0}},
                {"PLUGIN_GetNextPlugOpt", 1, RSVP_MOR_ERR_FAIL, {0, 1, 3}},
                {"OPT_ParseEx", 0, 0, {0, 1, 2, 3}},
                {"OPT_ParseEx", 5, 5, {0, 1, 2, 3}}};
    const char *lines[] = {"PLUGIN_OptInit(/etc/te.conf)", "PLUGIN_GetNextPlugOpt(0x70,0,0)",
                           "OPT_ParseEx(9,0x71,0x22,0x11)", "PLUGIN_OptFini(0x70)"};
    for (const auto &row : rows) {
        Reset();
        world.script[row.failing] = {row.result};
        EXPECT_EQ(RSVP_Opt_Parse(reinterpret_cast<void *>(0x11), reinterpret_cast<void *>(0x22)), row.status);
        Lines calls;
        for (const size_t call : row.calls)
            calls.push_back(lines[call]);
        EXPECT_EQ(world.calls, calls);
    }
}

// The rows of the global switch write calls in these words, so that a row reads as the story of one switch.
const std::map<std::string, std::string> kWords = {
    {"master", "DEV_GetSystemMaster()"},
    {"nodes", "DEV_GetAllStandbyNodes()"},
    {"ask", "SERVICE_GetStatus(1,RSVP,0)"},
    {"ask11", "SERVICE_GetStatus(11,RSVP,-1)"},
    {"ask12", "SERVICE_GetStatus(12,RSVP,-1)"},
    {"ask13", "SERVICE_GetStatus(13,RSVP,-1)"},
    {"start", "SERVICE_Start(1,RSVP,0,0)"},
    {"stop", "SERVICE_Stop(1,RSVP,0,3)"},
    {"start11+13", "SERVICE_BatchStart(11 13,RSVP,0,0)"},
    {"stop12", "SERVICE_BatchStop(12,RSVP,0,3)"},
    {"tell", "send(2001,12,0)"},
    {"probe", "DBM_Open(eRSVP,RSVP,1,10100000,-1)"},
    {"done", "DBM_Close(7)"},
};

struct Switch {
    uint32_t op;
    uint32_t master;
    std::optional<Statuses> standby;
    std::map<std::string, Results> script;
    uint32_t status;
    const char *calls;
};

const Statuses kMixed = {0, 1, 3};
const Statuses kRunning = {1, 2};
const int kNotExist = static_cast<int>(RSVP_MOR_ERR_NOT_EXIST);
constexpr uint32_t kFail = RSVP_MOR_ERR_FAIL;

TEST_F(Channel, SwitchesTheServiceOverAllNodesInOrder)
{
    const Switch rows[] = {
        {0, 0, kMixed, {}, 0, "master ask start nodes ask11 ask12 ask13 start11+13"},
        {0, 3, {}, {}, 0, "master ask start nodes"},
        {0, 1, kRunning, {}, 0, "master ask nodes ask11 ask12"},
        {0, 4, {}, {}, 0, "master ask nodes"},
        {0, kMute, kMixed, {}, kFail, "master ask"},
        {0, kMute, {}, {{"SERVICE_GetStatus", {kNotExist}}}, 0, "master ask start nodes"},
        {0, 0, kMixed, {{"SERVICE_Start", {9}}}, kFail, "master ask start"},
        {0, 0, kMixed, {{"SERVICE_BatchStart", {9}}}, kFail, "master ask start nodes ask11 ask12 ask13 start11+13"},
        {1, 1, kMixed, {}, 0, "tell master nodes ask11 ask12 ask13 stop12 ask stop"},
        {9, 2, {}, {}, 0, "tell master nodes ask stop"},
        {1, 1, Statuses{0, 3}, {}, 0, "tell master nodes ask11 ask12 ask stop"},
        {1, 0, {}, {}, 0, "tell master nodes ask"},
        {1, 3, {}, {}, 0, "tell master nodes ask"},
        {1, kMute, {}, {}, 0, "tell master nodes ask"},
        {1, 4, {}, {}, 0, "tell master nodes ask stop"},
        {1, 1, kMixed, {{"SERVICE_BatchStop", {9}}}, 0, "tell master nodes ask11 ask12 ask13 stop12 ask stop"},
        {1, 1, {}, {{"SERVICE_Stop", {9}}}, 0, "tell master nodes ask stop"},
        {1, 1, kMixed, {{"send", {EPIPE}}}, kFail, "tell probe done"},
        {1, 1, {}, {{"recv", {EAGAIN}}, {"DBM_Open", {9}}}, 0, "tell probe master nodes ask stop"},
        {1, 1, {}, {{"socket", {EMFILE}}}, kFail, "probe done"},
    };
    for (const Switch &row : rows) {
        SCOPED_TRACE(std::to_string(row.op) + " " + row.calls);
        Reset();
        SetNodes(row.master, row.standby);
        world.script = row.script;
        world.replies = {Reply(0, "")};
        EXPECT_EQ(RSVP_MOR_SetMplsRsvp(row.op), row.status);
        std::string words;
        for (const std::string &call : PlatformCalls()) {
            const auto word =
                std::find_if(kWords.begin(), kWords.end(), [&](auto &pair) { return pair.second == call; });
            words += " " + (word == kWords.end() ? call : word->first);
        }
        EXPECT_EQ(words.substr(1), row.calls);
        EXPECT_TRUE(Clean());
    }
}

} // namespace
