// The simulated daemon from the inside: the search of rows at its edges, refusals that must name line and key,
// faults, commands and the reads that show them, what the trace keeps to itself, clients that mean harm, and a start
// without standard streams.
#include "host/daemon/scenario/generator.h"
#include "host/daemon/scenario/scenario.h"
#include "host/daemon/server.h"
#include "host/directory.h"
#include "rsvp_mor.h"
#include "support/program.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <set>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using namespace rsvpsimd;

namespace {

Bytes Hex(std::string_view text)
{
    Bytes bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(std::string(text.substr(i, 2)), nullptr, 16)));
    return bytes;
}

Bytes Request(uint8_t msgClass, uint8_t op, std::string_view body)
{
    return BuildFrame(msgClass, op, 0, Hex(body));
}

std::string Show(const Reply &reply)
{
    return fmt::format("{:02x}", fmt::join(reply.frame, ""));
}

uint64_t StatusOf(const Reply &reply)
{
    return LoadNet(ByteView(reply.frame).subspan(4, 4));
}

// The first fixed value of a reply, one field of it in words.
std::string FieldOf(const Reply &reply, const Layout &layout, std::string_view field)
{
    const ByteView value = ByteView(reply.frame).subspan(kHeaderSize + kItemHeaderSize);
    return ShowField(value, *FindField(layout, field, KindsOf(layout, value)));
}

TEST(WireTables, NoTwoFieldsOfOneFormOverlap)
{
    for (const Layout &layout : AllLayouts()) {
        for (uint64_t kind = 0; kind < 5; ++kind) {
            std::vector<int> used(layout.size);
            const KindLookup kinds = [kind](std::string_view) { return kind; };
            for (const Field &field : layout.fields) {
                const size_t bytes = FindField(layout, field.name, kinds) == &field ? field.Size() : 0;
                for (size_t i = 0; i < bytes; ++i)
                    EXPECT_EQ(++used[field.offset + i], 1) << layout.name << " " << field.name << " kind " << kind;
            }
        }
    }
}

TEST(TableEngine, FindsTheRowAtEveryEdge)
{
    Device device;
    MakeRows(device, "nbr=3"); // keys 1, 2, 3 and a second word that is the same in all
    Table &table = device.Rows("nbr");
    const Bytes second = table.Find(Seek::First, {})->key;
    const auto key = [&](uint32_t word, std::string_view rest = {}) {
        Bytes bytes = rest.empty() ? second : Hex(fmt::format("00000000{}", rest));
        StoreNet(std::span(bytes).first(4), word);
        return bytes;
    };
    Block kept;
    kept.fields = {{"nbrWord0", uint64_t{2}}, {"nbrWord1", uint64_t{0xFFFFFFFF}}};
    ASSERT_TRUE(table.Insert(EncodeRow(table.Kind(), kept))); // between 2 and 3
    EXPECT_FALSE(table.Insert(EncodeRow(table.Kind(), kept)));
    const struct {
        Seek seek;
        Bytes from;
        Bytes expected; // empty: no row
    } rows[] = {
        {Seek::First, {}, key(1)},
        {Seek::Exact, key(0), {}},
        {Seek::Exact, key(3), key(3)},
        {Seek::Exact, key(3, "ffffffff"), {}},
        {Seek::Exact, key(4), {}},
        {Seek::After, key(0), key(1)},
        {Seek::After, key(1, "00000000"), key(1)},
        {Seek::After, key(2), key(2, "ffffffff")},
        {Seek::After, key(2, "ffffffff"), key(3)},
        {Seek::After, key(3), {}},
        {Seek::After, key(0xFFFFFFFF), {}},
    };
    for (const auto &row : rows) {
        const auto found = table.Find(row.seek, row.from);
        EXPECT_EQ(found ? found->key : Bytes{}, row.expected) << &row - rows;
    }
    // A made row that is edited is counted and found once; one that is removed is gone for every seek.
    ASSERT_NE(table.Edit(key(1)), nullptr);
    EXPECT_TRUE(table.Remove(key(1)));
    EXPECT_FALSE(table.Remove(key(1)));
    EXPECT_EQ(table.Size(), 3U);
    EXPECT_EQ(table.Find(Seek::First, {})->key, key(2));
    EXPECT_FALSE(table.Find(Seek::Exact, key(1)));
}

TEST(Scenario, RefusalsNameLineAndKey)
{
    // 440 bytes of value, 213 hops and 6 route entries: one entry too many.
    std::string fullList = "[[psb]]\nrouteList4 = [{}, {}, {}, {}, {}, {}]\nhopList = [";
    for (int i = 0; i < 213; ++i)
        fullList += "{}, ";
    fullList += "]";
    const struct {
        std::string_view text;
        std::string_view expected;
    } rows[] = {
        {"trace = true\nspeed = 3\n", "f.toml:2: speed: there is no such key"},
        {"[[tunnel]]\n\ntunnelWord99 = 1\n", "f.toml:3: tunnelWord99: there is no such key"},
        {"[[tunnel]]\ntunnelShort0 = 65536\n", "f.toml:2: tunnelShort0: 65536 does not fit 16 bits"},
        {"[[tunnel]]\ntunnelRole = -1\n", "f.toml:2: tunnelRole: must not be negative"},
        {"[[psb]]\nsession = { tunnelEndpoint = \"10.0.0.300\" }\n", "f.toml:2: session.tunnelEndpoint: "},
        {"[[psb]]\nwordsA = [1, 2, 3, 4]\n", "f.toml:2: wordsA: has 4 numbers"},
        {"[[psb]]\nflagBytes = \"0g\"\n", "f.toml:2: flagBytes: \"0g\" is not hexadecimal"},
        {"[[psb]]\nsessionAttr = { kind = 7, affinityForm.flags = 1 }\n",
         "f.toml:2: sessionAttr.affinityForm.flags: has no"},
        {"[[psb]]\nhopList = [\n  { kind = 3, label = 5 },\n  { kind = 3, lable = 5 } ]\n", "f.toml:4: lable: "},
        {"[[p2mpCrlsp]]\nrequestKey = { keyShort4 = 1 }\n", "f.toml:2: keyShort4: there is no such key"},
        {"[[psb]]\nsesion = { }\n", "f.toml:2: sesion: there is no such key"},
        {"[[psb]]\nsession = { }\nslots = [{}, {}, {}]\n", "f.toml:3: slots[2]: there is no such key"},
        {"[[p2mpCrlsp]]\nsubLsps = [\n  {},\n  { hopList = [] } ]\n", "f.toml:4: hopList: must have an entry"},
        {"[[nbr]]\n[[nbr]]\n", "f.toml:2: nbr: another row has the same key"},
        {"[rows]\npsbs = 3\n", "f.toml:2: psbs: \"psbs\" is not a kind of row"},
        {"[[fault]]\nkind = \"late\"\nclass = 3\n", "f.toml:1: fault: late needs a number"},
        {"[[refuse]]\nclass = 0\n", "f.toml:1: refuse: needs a status"},
        {"[counters\n", "f.toml:1: "},
        {fullList, "f.toml:1: psb: its items take 8196 bytes, a message has room for 8184"},
    };
    for (const auto &row : rows) {
        Device device;
        try {
            ReadScenarioText(device, row.text, "f.toml");
            ADD_FAILURE() << "taken: " << row.text;
        } catch (const ScenarioError &error) {
            EXPECT_TRUE(std::string_view(error.what()).starts_with(row.expected)) << error.what();
        }
    }
}

// One daemon, one request after the other: what each is answered, and what a read shows afterwards.
TEST(Daemon, TakesCommandsShowsThemAndRefusesTheRest)
{
    const std::string if3 = "0001000400000003", peer9 = "000000040a000009", session = "0a000001000000070a000002";
    const std::string global = "00060000", interface = "0007000400000003", config = "0070000400000003";
    const std::string neighbour = "000300080a00000900000000", debug = "00020000";
    const std::string ones8 = "0101010101010101", zeros8(16, '0');
    const struct {
        uint8_t msgClass, op;
        std::string body;
        uint32_t status = kOk;
        std::string read = {}; // body of the get that shows it
        LayoutRef layout = "none";
        std::string_view field = {}, shown = {}; // shown: empty if the row is gone
    } rows[] = {
        {0, 0, "000f000400200000", kOk, global, "globalInfo", "settingShort", "32"},
        {0, 8, "000a0004a5000000", kOk, global, "globalInfo", "settingBytes", "03a50400"},
        {0, 0, "00080000", kOk, global, "globalInfo", "settingBytes", "03a50401"},
        {0, 1, "00080000", kOk, global, "globalInfo", "settingBytes", "03a50400"},
        {0, 1, "00140000", kOk, global, "globalInfo", "settingBytes2", "0000"},
        {1, 0, if3 + "000e000401020304", kOk, interface, "ifInfo", "ifShort3", "772"},
        {1, 1, if3 + "000e000401020304", kOk, interface, "ifInfo", "ifShort3", "0"},
        {1, 0, if3 + "00120000", kOk, config, "ifConfig", "ifConfig", "1"},
        {1, 0, if3 + "00090000", kOk, config, "ifConfig", "ifConfig", "3"},
        {1, 1, if3 + "00120000", kOk, interface},
        {2, 0, peer9 + "000d0000", kOk, neighbour, "nbr", "nbrBytes", "010000000000"},
        {2, 1, peer9 + "000d0000", kOk, neighbour},
        {0, 0, "00070010" + session + "00000010", kOk, debug, "debugInfo", "session1.tunnelId", "7"},
        {0, 1, "00070010" + session + "00000010", kOk, debug, "debugInfo", "debugFlags", "0"},
        {0, 0, "00070010" + zeros8 + "0000000000000004", kOk, debug, "debugInfo", "debugFlags", "4"},
        {0, 0, "00070010" + session + "00000008", kBadValue, debug, "debugInfo", "debugFlags", "4"},
        {0, 0, "00070010" + session + "00000050", kBadValue},
        {0, 0, "000700100a000001010000070a00000200000040", kBadValue, debug, "debugInfo", "debugFlags", "4"},
        {5, 0, "000100080000000000000000", kOk, global, "globalInfo", "statWord3", "0"},
        {3, 3, "0006", kMalformed},
        {3, 3, "00060001", kMalformed},
        {4, 0, "00060000", kUnknownClass},
        {3, 9, "00650000", kUnknownOp},
        {3, 6, "00080000", kUnknownOp},
        {0, 1, "000f000400200000", kUnknownOp, global, "globalInfo", "settingShort", "32"},
        {3, 3, "00660000", kUnknownItem},
        {0, 0, "000f00020020", kBadLength},
        {3, 5, "00080000", kBadLength},
        {3, 4, "006a0000", kBadLength},
        {0, 0, "000f000400100001", kBadValue, global, "globalInfo", "settingShort", "32"},
        {3, 3, "0068000c000000010000000100000001", kBadValue},
        {3, 4, "00650010" + zeros8 + zeros8, kNoSuchRow},
        {3, 6, "00650010" + zeros8 + "0000000000000001", kBadValue},
        {3, 4, "000b0038" + ones8 + ones8 + ones8 + ones8 + ones8 + ones8 + ones8, kNoSuchRow},
        {3, 3, "", kBadItems},
        {1, 0, "00120000", kBadItems},
        {1, 0, "001200000001000400000001", kBadItems},
    };
    Daemon daemon;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(StatusOf(daemon.Answer(Request(row.msgClass, row.op, row.body))), row.status);
        if (row.read.empty())
            continue;
        const Reply read = daemon.Answer(Request(kShow, kGet, row.read));
        ASSERT_EQ(StatusOf(read), row.shown.empty() ? kNoSuchRow : kOk);
        EXPECT_EQ(row.shown.empty() ? "" : FieldOf(read, *row.layout, row.field), row.shown);
    }
    EXPECT_EQ(StatusOf(daemon.Answer(Hex("030300050000000000060000"))), kMalformed);
    EXPECT_EQ(StatusOf(daemon.Answer(BuildFrame(kShow, kGet, 1, Hex(global)))), kBadValue);
    EXPECT_TRUE(daemon.Answer(Hex("03030000000000")).close);
}

TEST(Daemon, FaultsSpoilWhatTheySelect)
{
    const struct {
        std::string_view fault;
        std::string_view frame; // of the answer to the count of item 100, which is 0
    } rows[] = {
        {"status=0x40010001", "03030008400100010064000400000000"},
        {"item-type=9", "03030008000000000009000400000000"},
        {"short", "030300080000000000640004"},
        {"short=7", "03030008000000"},
        {"long=1", "0303000800000000006400040000000000"},
        {"wrong-body-length", "03030009000000000064000400000000"},
        {"cut-item", "030300070000000000640004000000"},
        {"silent,op=4", "03030008000000000064000400000000"},
        {"silent,item=101", "03030008000000000064000400000000"},
    };
    std::set<FaultKind> covered;
    const auto struck = [&covered](std::string_view fault) {
        Daemon daemon;
        daemon.Add(ParseFault(fault));
        covered.insert(ParseFault(fault).kind);
        return daemon;
    };
    for (const auto &row : rows) {
        Daemon daemon = struck(std::string(row.fault) + ",class=3,once");
        const Reply first = daemon.Answer(Request(3, 3, "00640000"));
        EXPECT_EQ(Show(first), row.frame) << row.fault;
        EXPECT_EQ(Show(daemon.Answer(Request(3, 3, "00640000"))), "03030008000000000064000400000000") << row.fault;
    }
    const struct {
        std::string_view fault;
        int copies, delay;
        bool close, crash;
    } ways[] = {{"late=200", 1, 200, false, false},
                {"silent", 0, 0, false, false},
                {"twice", 2, 0, false, false},
                {"close", 0, 0, true, false},
                {"exit", 0, 0, false, true}};
    for (const auto &way : ways) {
        const Reply reply = struck(way.fault).Answer(Request(3, 3, "00640000"));
        EXPECT_EQ(std::tuple(reply.copies, reply.delay.count(), reply.close, reply.crash),
                  std::tuple(way.copies, way.delay, way.close, way.crash))
            << way.fault;
    }
    for (const auto &[fault, expected] : {std::pair{"stuck", 1U}, std::pair{"shifting", 3U}}) {
        Daemon daemon = struck(fault);
        MakeRows(daemon.GetDevice(), "resource=4");
        const Reply reply = daemon.Answer(Request(3, 5, "0067000400000001"));
        EXPECT_EQ(FieldOf(reply, *LayoutRef("resource"), "resourceIndex"), std::to_string(expected)) << fault;
    }
    for (const FaultName &known : AllFaults())
        EXPECT_TRUE(covered.contains(known.kind)) << known.name << " has no row here";
    for (const auto *wrong :
         {"", "slow", "late", "late=x", "silent,speed=1", "silent,class=256", "silent,once=1", "silent=1", "silent,"})
        EXPECT_THROW(ParseFault(wrong), std::invalid_argument) << wrong;
}

TEST(Trace, ShowsEverythingButTheKey)
{
    Daemon daemon;
    std::string trace;
    daemon.TraceTo([&trace](const std::string &line) { trace += line + "\n"; });
    const std::string secret = "hunter2-hunter2-hunter2";
    const std::string hex = fmt::format("{:02x}", fmt::join(secret, ""));
    const std::string item = "00030044" + hex + std::string(136 - hex.size(), '0');
    for (const uint8_t op : {kSet, kUndo, kSet}) {
        daemon.Answer(Request(kGlobal, op, item));
        daemon.Answer(Request(kInterface, op, "0001000400000001" + item));
        daemon.Answer(Request(kPeer, op, "000000040a000001" + item));
    }
    daemon.Answer(Request(kPeer, kSet, "000000040a000001000400040000003c"));
    daemon.Answer(Request(kPeer, kSet, "000000040a00000100020000"));
    daemon.Answer(Request(kGlobal, kSet, "00030020" + hex + std::string(64 - hex.size(), '0'))); // a bad length
    for (const auto *read : {"00060000", "0007000400000001", "000000080a00000100000000"}) {
        const Reply reply = daemon.Answer(Request(kShow, kGet, read));
        EXPECT_NE(Show(reply).find(hex), std::string::npos) << "the key should be in the answer to " << read;
    }
    EXPECT_EQ(trace.find(secret), std::string::npos);
    EXPECT_EQ(trace.find(hex.substr(0, 14)), std::string::npos);
    EXPECT_NE(trace.find("{authKey=********}"), std::string::npos);
    EXPECT_NE(trace.find("authEntryBytes={authKey=******** authLifeTime=60 authEndBytes=0100}"), std::string::npos);
}

// A server on a socket that has no name in the file system, and its loop in a thread.
struct Running {
    Daemon daemon;
    int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0);
    int stop = eventfd(0, 0);
    sockaddr_un address{};
    socklen_t length = sizeof(address);
    std::thread thread;

    explicit Running(std::string_view fault)
    {
        MakeRows(daemon.GetDevice(), "psb=10");
        daemon.Add(ParseFault(fault));
        address.sun_family = AF_UNIX;
        (void)bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof(sa_family_t));
        listen(listener, 64);
        getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length);
        thread = std::thread([this] { Server(listener, stop, daemon).Run(); });
    }
    ~Running()
    {
        eventfd_write(stop, 1);
        thread.join();
        close(listener);
        close(stop);
    }
    int Connect() const
    {
        const int fd = socket(AF_UNIX, SOCK_SEQPACKET, 0);
        EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr *>(&address), length), 0);
        return fd;
    }
    static ssize_t Ask(int fd, ByteView request)
    {
        Bytes reply(RSVP_MOR_MSG_MAX);
        send(fd, request.data(), request.size(), MSG_NOSIGNAL);
        pollfd polled{fd, POLLIN, 0};
        return poll(&polled, 1, 5000) == 1 ? recv(fd, reply.data(), reply.size(), 0) : -1;
    }
};

TEST(Server, NoClientStopsTheOthers)
{
    const Running running("late=600000,class=0");
    const int greedy = running.Connect(); // asks and never takes an answer
    const Bytes first = Request(kShow, kGetFirst, "00080000");
    while (send(greedy, first.data(), first.size(), MSG_DONTWAIT) > 0)
        continue;
    const int waiting = running.Connect(); // its answer comes in ten minutes
    const Bytes slow = Request(kGlobal, kSet, "00080000");
    send(waiting, slow.data(), slow.size(), 0);
    const int broken = running.Connect();
    EXPECT_EQ(running.Ask(broken, Hex("0303")), 0); // dropped
    const Bytes huge(RSVP_MOR_MSG_MAX + 500);
    const int large = running.Connect();
    EXPECT_EQ(running.Ask(large, huge), static_cast<ssize_t>(kHeaderSize));
    std::vector<int> idle;
    for (int i = 0; i < 300; ++i)
        idle.push_back(running.Connect());
    const int honest = running.Connect();
    EXPECT_EQ(running.Ask(honest, Request(kShow, kGet, "00640000")), 16);
    for (const int fd : idle)
        close(fd);
    for (const int fd : {greedy, waiting, broken, large, honest})
        close(fd);
}

// A trace must not go to whatever else has the number of standard error: the lock file, the sockets.
TEST(Program, StartsWithoutStandardStreams)
{
    for (const auto *closed : {">&- 2>&-", "<&- 2>&-", "<&- >&- 2>&-"}) {
        const program::HostDirectory directory("trace = true");
        directory.Write("start", fmt::format("exec {} \"$@\" {}\n", TEST_RUNNER, closed));
        setenv("RSVP_HOST_RUNNER", ("sh " + directory.PathOf("start")).c_str(), 1);
        ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK) << closed;
        for (uint32_t i = 0; i < 3; ++i)
            EXPECT_EQ(RSVP_MOR_SetDscpValue(i), RSVP_MOR_OK) << closed;
        const std::string lock = directory.Read(rsvp_host::kLockFile);
        EXPECT_EQ(lock.find_first_not_of("0123456789"), lock.size() - 1) << closed << ": " << lock;
    }
}

} // namespace
