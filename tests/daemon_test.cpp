// The simulated daemon from the inside: the search of rows at its edges, refusals that must name line and key,
// faults, commands and the reads that show them, what the trace keeps to itself, clients that mean harm, a system
// that refuses what the daemon asks for, and the daemon as a program.
#include "host/daemon/capture/capture_file.h"
#include "host/daemon/decode.h"
#include "host/daemon/instance.h"
#include "host/daemon/line_log.h"
#include "host/daemon/sandbox.h"
#include "host/daemon/scenario/generator.h"
#include "host/daemon/scenario/network.h"
#include "host/daemon/scenario/scenario.h"
#include "host/daemon/server.h"
#include "host/directory.h"
#include "rsvp_mor.h"
#include "support/program.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <poll.h>
#include <random>
#include <regex>
#include <set>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
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

// Whatever is done to made rows, and in whatever order, both walks meet the rows that a plain map would have.
TEST(TableEngine, FindsWhatAPlainMapFinds)
{
    Device device;
    MakeRows(device, "tunnel=60");
    Table &table = device.Rows("tunnel");
    std::map<Bytes, Bytes> rows;
    for (auto row = table.Find(Seek::First, {}); row; row = table.Find(Seek::After, row->key))
        rows.emplace(row->key, row->body);
    const auto made = rows;
    const auto expect = [&](const std::optional<EncodedRow> &found, auto wanted, bool ingress) {
        constexpr size_t kRole = kItemHeaderSize + FieldAt("tunnel", "tunnelRole").offset;
        while (ingress && wanted != rows.end() && wanted->second[kRole] != 1)
            ++wanted;
        EXPECT_EQ(found ? found->key : Bytes{}, wanted == rows.end() ? Bytes{} : wanted->first);
        EXPECT_EQ(found ? found->body : Bytes{}, wanted == rows.end() ? Bytes{} : wanted->second);
    };
    std::mt19937 random(1);
    for (int turn = 0; turn < 2000; ++turn) {
        const auto &[key, body] = *std::next(made.begin(), static_cast<ptrdiff_t>(random() % made.size()));
        const auto what = random() % 5;
        if (what < 3) {
            EXPECT_EQ(table.Remove(key), rows.erase(key) == 1);
        } else if (what == 3 && table.Insert({key, body})) {
            rows.insert_or_assign(key, body);
        } else if (Bytes *edited = table.Edit(key)) {
            ++edited->back();
            ++rows.at(key).back();
        }
        const Bytes &from = std::next(made.begin(), static_cast<ptrdiff_t>(random() % made.size()))->first;
        expect(table.Find(Seek::Exact, from), rows.find(from), false);
        for (const bool ingress : {false, true}) {
            expect(table.Find(Seek::First, {}, ingress), rows.begin(), ingress);
            expect(table.Find(Seek::After, from, ingress), rows.upper_bound(from), ingress);
        }
        EXPECT_EQ(table.Size(), rows.size());
    }
}

TEST(Device, StoresNoMoreThanItsBound)
{
    Device device;
    MakeRows(device, "interface=5");
    const auto key = [](uint32_t index) {
        Bytes bytes;
        AppendNet(bytes, index, 4);
        return bytes;
    };
    for (uint32_t i = 0; i < 100'000; ++i)
        device.Rows("interface").Insert({key(1000 + i), i == 1 ? Bytes(4096) : Bytes()});
    const struct {
        uint8_t msgClass;
        uint16_t item;
        uint8_t op;
        uint32_t index;
        uint32_t status;
    } rows[] = {
        {kInterface, 9, kSet, 3, kNoRoom},       {kInterface, 9, kUndo, 3, kNoRoom},
        {kInterface, 18, kUndo, 3, kNoRoom},     {kReset, 1, kSet, 3, kNoRoom},
        {kInterface, 9, kSet, 200'000, kNoRoom}, {kInterface, 9, kUndo, 200'000, kOk},
        {kInterface, 18, kUndo, 200'000, kOk},   {kReset, 1, kSet, 200'000, kNoSuchRow},
        {kInterface, 9, kSet, 1001, kOk},        {kInterface, 18, kUndo, 1000, kOk},
        {kInterface, 9, kSet, 200'000, kOk},     {kInterface, 9, kSet, 200'001, kNoRoom},
        {kInterface, 18, kUndo, 200'000, kOk},   {kInterface, 18, kUndo, 3, kOk},
        {kInterface, 18, kUndo, 5, kNoRoom},
    };
    for (const auto &row : rows) {
        Bytes value = key(row.index);
        value.resize(8);
        EXPECT_EQ(device.Apply(*FindCommand(row.msgClass, row.item), row.op, key(row.index), value), row.status)
            << &row - rows;
    }
}

TEST(Scenario, RefusalsNameLineAndKey)
{
    // 440 bytes of value, 213 hops and 6 route entries: one entry too many.
    std::string fullList = "[[psb]]\nrouteList4 = [{}, {}, {}, {}, {}, {}]\nhopList = [";
    for (int i = 0; i < 213; ++i)
        fullList += "{}, ";
    fullList += "]";
    std::string deep; // 34 levels, behind what looks like the end of a string
    for (int i = 0; i < 33; ++i)
        deep += "\".=\" . ";
    const struct {
        std::string text;
        std::string_view expected;
    } rows[] = {
        {"trace = true\nspeed = 3\n", "f.toml:2: speed: there is no such key"},
        {"[[tunnel]]\n\ntunnelWord99 = 1\n", "f.toml:3: tunnelWord99: there is no such key"},
        {"[[tunnel]]\ntunnelShort0 = 65536\n", "f.toml:2: tunnelShort0: 65536 does not fit 16 bits"},
        {"[[tunnel]]\ntunnelRole = -1\n", "f.toml:2: tunnelRole: must not be negative"},
        {"[[psb]]\nsession = { tunnelEndpoint = \"10.0.0.300\" }\n", "f.toml:2: session.tunnelEndpoint: "},
        {"[[psb]]\nwordsA = [1, 2, 3, 4]\n", "f.toml:2: wordsA: has 4 numbers"},
        {"[[psb]]\nflagBytes = \"0g\"\n", "f.toml:2: flagBytes: character 2 is not a hexadecimal digit"},
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
        {"[[fault]]\nkind = \"late\"\nnumber = 5\nfor = 0\n", "f.toml:1: fault: for: 0 is not a number from 1"},
        {"[generate.net]\n", "f.toml:1: net: there is no such key"},
        {"[generate.network]\nrouters = 1\n", "f.toml:2: routers: must be at least 2"},
        {"[generate.network]\ntunnels = 10001\n", "f.toml:2: tunnels: must be a whole number from 0 to 10000"},
        {"[generate.network]\nspeed = 1\n", "f.toml:2: speed: there is no such key"},
        {"[generate.network]\n[[interface]]\nifWord1 = 1\n", "f.toml:2: interface: another row has the same key"},
        {"[[event]]\n", "f.toml:1: event: needs its time, at or every"},
        {"[[event]]\nat = '1s'\n", "f.toml:1: event: nothing happens in it"},
        {"[[event]]\nat = 1\n", "f.toml:2: at: must be text"},
        {"[[event]]\nat = '1.5s'\n", "f.toml:2: at: must be a time from \"0s\" to a year, as"},
        {"[[event]]\nevery = '0ms'\n", "f.toml:2: every: must be a time from \"1ms\" to a year, as"},
        {"[[event]]\nat = '8761h'\n", "f.toml:2: at: must be a time"},
        {"[[event]]\nat = '1s'\nin = 1\n", "f.toml:3: in: there is no such key"},
        {"[[event]]\nat = '1s'\nfault = 'slow'\n", "f.toml:3: fault: \"slow\" is not a kind of fault"},
        {"[[event]]\nat = '1s'\nend-fault = 5\n", "f.toml:3: end-fault: must be text"},
        {"[[event]]\n[event.add.nbr]\n", "f.toml:2: nbr: must be an array of tables"},
        {"[[event]]\n[[event.add.NBR]]\n", "f.toml:2: NBR: there is no such key"},
        {"[[event]]\n[[event.add.nbr]]\nnbrWord0 = -1\n", "f.toml:3: nbrWord0: must not be negative"},
        {"[[event]]\n[[event.remove.nbr]]\nnbrWord2 = 1\n", "f.toml:3: nbrWord2: is no part of the key"},
        {"[[event]]\n[[event.remove.p2mpRsb]]\nresvState = {}\n", "f.toml:3: resvState: is no part of the key"},
        {"[[event]]\n[[event.change.nbr]]\nnbrWord1 = 1\n", "f.toml:2: nbr: has only the fields of the key"},
        {"[[event]]\n[[event.change.nbr]]\nadd = { nbrWord1 = 1 }\n", "f.toml:3: nbrWord1: is a part of the key"},
        {"[[event]]\n[[event.change.nbr]]\nadd = { nbrBytes = '01' }\n", "f.toml:3: nbrBytes: is no whole number"},
        {"[[event]]\n[[event.change.psb]]\nhop = { hopAddres = 1 }\n", "f.toml:3: hop.hopAddres: there is no such"},
        {"[[event]]\n[event.change.counters]\nadd = { upLsps = 1 }\n", "f.toml:3: upLsps: there is no such count"},
        {"[[event]]\n[event.change.global]\nadd = { authKey = '00' }\n", "f.toml:3: authKey: is no whole number"},
        {"[counters\n", "f.toml:1: "},
        {"[global]\nauthKey = \"secret\"\n", "f.toml:2: authKey: character 1 is not a hexadecimal digit"},
        {"[global]\nauthKey = 73656372657473656372657473\n",
         "f.toml:2: Error while parsing decimal integer: the number is "},
        {"x = '\\'\n" + deep + "x = 1\n", "f.toml:2: keys and brackets nest at most 32 deep"},
        {"x = \"\"\"\\\"\"\"\\\\\"\"\"\"\"\n[" + deep + "x]\n", "f.toml:2: keys and brackets nest at most 32 deep"},
        {"x = " + std::string(33, '{'), "f.toml:1: keys and brackets nest at most 32 deep"},
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

TEST(Scenario, TellsHowToBehave)
{
    Device device;
    Daemon daemon;
    daemon.Add(ReadScenarioText(device,
                                "[[refuse]]\nclass = 3\nop = 4\nstatus = 7\n"
                                "[[fault]]\nkind = 'status'\nnumber = 9\nclass = 3\nitem = 100\nonce = true\n"
                                "[[fault]]\nkind = 'status'\nnumber = 5\nclass = 0\nonce = false\n",
                                "f.toml"));
    const struct {
        uint8_t msgClass, op;
        std::string_view body;
        uint32_t status;
    } rows[] = {{3, 4, "00640000", 9}, {3, 4, "00640000", 7}, {3, 3, "00640000", kOk},
                {3, 4, "00070000", 7}, {0, 0, "00080000", 5}, {0, 0, "00080000", 5}};
    for (const auto &row : rows)
        EXPECT_EQ(StatusOf(daemon.Answer(Request(row.msgClass, row.op, row.body))), row.status) << &row - rows;
}

// Times are made up here; nothing waits for them.
TEST(Events, AreDueInTheirOrderAndAreNotMadeUpFor)
{
    using std::chrono::milliseconds;
    const auto start = Timeline::Time() + std::chrono::hours(5);
    const auto event = [](size_t line, int first, int period) {
        return Event{.line = {line}, .first = milliseconds(first), .period = milliseconds(period)};
    };
    Timeline timeline({event(1, 10, 0), event(2, 5, 5), event(3, 10, 20), event(4, 0, 0)}, start);
    const struct {
        int now;
        std::vector<size_t> lines;
        int next;
    } rows[] = {{0, {4}, 5},      {4, {}, 5},        {5, {2}, 10},       {10, {1, 2, 3}, 15},           {29, {2}, 30},
                {30, {2, 3}, 35}, {99, {2, 3}, 100}, {110, {2, 3}, 115}, {3'600'000, {2, 3}, 3'600'005}};
    for (const auto &row : rows) {
        std::vector<size_t> lines;
        while (const Event *due = timeline.Take(start + milliseconds(row.now)))
            lines.push_back(due->line.number);
        EXPECT_EQ(lines, row.lines) << row.now;
        EXPECT_EQ(timeline.Next(), start + milliseconds(row.next)) << row.now;
    }
    EXPECT_EQ(Timeline().Next(), Timeline::Time::max());
}

// What is told of an event, and a part of what the first row of a table says afterwards.
TEST(Events, ChangeWhatTheyNameAndTellWhatIsNotThere)
{
    const std::string head = R"(
[counters]
upLspNumber = 5
[rows]
tunnel = 3
[[nbr]]
nbrWord0 = 1
nbrWord8 = 0xfffffffe
[[psb]]
session = { tunnelId = 7 }
sessionAttr = { kind = 7, shortForm = { flags = 3 } }
routeList4 = [ { value = 5 } ]
hopList = [ { kind = 3, label = 5 } ]
[[p2mpCrlsp]]
requestKey = { keyWord0 = 9 }
name = "old"
subLsps = [ { subShort = 1, hopList = [ { kind = 3, label = 5 } ] }, { subShort = 2 } ]
[[event]]
at = "0s"
)";
    const std::string nbr = "[[event.change.nbr]]\nnbrWord0 = 1\n";
    const std::string psb = "[[event.change.psb]]\nsession = { tunnelId = 7 }\n";
    const std::string p2mp = "[[event.change.p2mpCrlsp]]\nrequestKey = { keyWord0 = 9 }\n";
    const std::string tunnel = "tunnelWord0 = 1\ntunnelWord2 = '10.0.0.1'\ntunnelWord3 = '10.0.0.2'\n";
    const std::string none = "nbr(3) 48 {nbrWord0=1 nbrWord8=4294967294}";
    const struct {
        std::string event;
        std::string_view told;
        std::string_view item, shown; // of a read behind it
    } rows[] = {
        {nbr + "nbrWord3 = 2\nadd = { nbrWord8 = 3, nbrShort = 4 }", "nbr 1 changed", "0003",
         "nbr(3) 48 {nbrWord0=1 nbrWord3=2 nbrShort=4 nbrWord8=1}"},
        {"[[event.change.nbr]]\nnbrWord0 = 2\nnbrWord3 = 2", "the nbr of line 20 is not there", "0003", none},
        {"[[event.remove.nbr]]\nnbrWord0 = 2", "the nbr of line 20 is not there", "0003", none},
        {"[[event.add.nbr]]\nnbrWord0 = 1\n[[event.add.nbr]]\nnbrWord0 = 2",
         "nbr 1 added; the nbr of line 20 is there already", "0003", none},
        {"[[event.remove.nbr]]\nnbrWord0 = 1\n[[event.add.nbr]]\nnbrWord0 = 1", "nbr 1 added, nbr 1 removed", "0003",
         "nbr(3) 48 {nbrWord0=1}"},
        {psb + "hopList = [ { kind = 3, label = 6 } ]", "psb 1 changed", "0008",
         "[value=5] hopList(7) 38 [kind=3 label=6]"},
        {psb + "sessionAttr = { affinityForm = { flags = 2 }, kind = 1 }", "psb 1 changed", "0008",
         "sessionAttr.affinityForm.flags=2}"},
        {psb + "sessionAttr = { shortForm = { flags = 4 } }", "psb 1 changed", "0008",
         "sessionAttr.kind=7 sessionAttr.shortForm.flags=4}"},
        {p2mp + "name = 'new'", "p2mpCrlsp 1 changed", "0009",
         "{subShort=1} hopList(33) 38 [kind=3 label=5] subLsps(32) 48 {subShort=2} name(34) 3"},
        {p2mp + "subLsps = [ { subShort = 4 } ]", "p2mpCrlsp 1 changed", "0009",
         "84 {} subLsps(32) 48 {subShort=4} name(34) 3"},
        {"[[event.change.tunnel]]\n" + tunnel + "tunnelRole = 2", "the tunnel of line 20 is not there", "0065",
         "101"},
        {"[event.change.counters]\nupLspNumber = 7", "counters 1 changed", "0064", "upLspNumber(100) 4 {count=7}"},
        {"[event.change.counters]\nadd = { upLspNumber = 0xffffffff }", "counters 1 changed", "0064", "{count=4}"},
        {"[event.change.counters]\nadd = { frrIfNum = 2 }", "counters 1 changed", "006d", "{count=2}"},
        {"[event.change.global]\nauthLifeTime = 5\nadd = { counters2 = { countsC = [1, 2] } }", "global 1 changed",
         "0006", "authLifeTime=5"},
        {"[event.change.debug]\ndebugFlags = 5", "debug 1 changed", "0002", "{debugFlags=5}"},
        {"fault = 'silent'\nend-fault = 'close'", "a fault began; there is no such fault to end", "0003",
         "no answer"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.event);
        Daemon daemon;
        const Behaviour behaviour = ReadScenarioText(daemon.GetDevice(), head + row.event, "f.toml");
        std::string trace;
        daemon.TraceTo([&trace](const std::string &line) { trace = line; });
        const bool whole = daemon.Happen(behaviour.events.at(0)).empty();
        EXPECT_EQ(trace, fmt::format("event of line 18: {}", row.told));
        EXPECT_EQ(whole, row.told.find("there") == row.told.npos);
        const RowKind *kind = FindRowKind(static_cast<uint16_t>(std::stoul(std::string(row.item), nullptr, 16)));
        const size_t key = kind == nullptr ? 0 : kind->FirstKeySize();
        daemon.Answer(Request(kShow, kind == nullptr ? kGet : kGetFirst,
                              fmt::format("{}{:04x}{}", row.item, key, std::string(2 * key, '0'))));
        EXPECT_NE(trace.find(row.shown), trace.npos) << trace;
    }
}

// All rows of a device, one after the other.
std::vector<std::pair<std::string_view, EncodedRow>> RowsOf(Device &device)
{
    std::vector<std::pair<std::string_view, EncodedRow>> rows;
    for (const RowKind &kind : AllRowKinds())
        for (auto row = device.Rows(kind).Find(Seek::First, {}); row;
             row = device.Rows(kind).Find(Seek::After, row->key))
            rows.emplace_back(kind.name, *row);
    return rows;
}

TEST(Network, IsTheSameOnEveryMachineAndAsAScenario)
{
    for (const NetworkPlan &plan : {NetworkPlan{2, 30, 3, 1}, NetworkPlan{3, 0, 1, 2}, NetworkPlan{4, 60, 0, 3},
                                    NetworkPlan{20, 200, 20, 7}, NetworkPlan{200, 50, 50, 4}}) {
        SCOPED_TRACE(plan.routers);
        std::string text;
        PrintNetwork(plan, [&text](const std::string &piece) { text += piece; });
        Device made, read, asked;
        AddNetwork(made, plan);
        ReadScenarioText(read, text, "net.toml");
        ReadScenarioText(asked,
                         fmt::format("[generate.network]\nrouters = {}\ntunnels = {}\np2mp = {}\nseed = {}\n",
                                     plan.routers, plan.tunnels, plan.p2mp, plan.seed),
                         "f.toml");
        EXPECT_EQ(RowsOf(read), RowsOf(made));
        EXPECT_EQ(RowsOf(asked), RowsOf(made));
        EXPECT_EQ(read.GivenCounts(), made.GivenCounts());
        EXPECT_EQ(asked.GivenCounts(), made.GivenCounts());
        EXPECT_THROW(AddNetwork(made, plan), std::invalid_argument);
        if (plan.seed == 7) {
            uint64_t hash = 0;
            for (const char letter : text)
                hash = hash * 31 + static_cast<uint8_t>(letter);
            EXPECT_EQ(hash, 12965944240680973454U); // as on the machine where it was written
        }
    }
}

// What each row points at is there: by kind and field, the kind and the field that have the same value.
TEST(Network, JoinsByItsKeys)
{
    constexpr struct {
        const char *from, *field, *to, *key;
    } kJoins[] = {
        {"tunnel", "tunnelWord4", "resource", "resourceIndex"},
        {"tunnel", "tunnelWord5", "arhop", "hopListIndex"},
        {"tunnel", "tunnelWord6", "chop", "hopListIndex"},
        {"arhop", "hopListIndex", "tunnel", "tunnelWord5"},
        {"exthop", "extArHopWord0", "arhop", "hopListIndex"},
        {"general", "frrWord1", "tunnel", "tunnelWord0"},
        {"facility", "facilityWord0", "interface", "ifWord1"},
        {"facility", "facilityWord1", "tunnel", "tunnelWord0"},
        {"facility", "facilityWord2", "crlsp", "key.keyShort0"},
        {"psb", "session.tunnelId", "tunnel", "tunnelWord0"},
        {"psb", "ifRef.ifRefNumber", "interface", "ifWord1"},
        {"psb", "hop.hopAddress", "nbr", "nbrWord0"},
        {"rsb", "session.tunnelId", "psb", "session.tunnelId"},
        {"rsb", "hop.hopAddress", "nbr", "nbrWord0"},
        {"rsb", "hop.logicalIfHandle", "nbr", "nbrWord2"},
        {"phsb", "session.tunnelId", "psb", "session.tunnelId"},
        {"phsb", "hop.hopAddress", "psb", "hop.hopAddress"},
        {"crlsp", "key.keyShort0", "psb", "session.tunnelId"},
        {"crlsp", "key.keyWord0", "psb", "session.tunnelEndpoint"},
        {"crlsp", "path.pathWord0", "nbr", "nbrWord0"},
        {"crlsp", "path.pathWord1", "nbr", "nbrWord0"},
        {"crlsp", "tailWord1", "facility", "facilityWord1"},
        {"nbr", "nbrWord2", "ifconfig", "ifIndex"},
        {"p2mpRsb", "session.tunnelId", "p2mpPsb", "session.tunnelId"},
        {"p2mpPsb", "session.p2mpId", "p2mpCrlsp", "key.keyWord0"},
    };
    std::map<std::pair<std::string_view, std::string_view>, std::set<uint64_t>> values;
    MakeNetwork({.routers = 20, .tunnels = 500, .p2mp = 5, .seed = 7}, [&](RowKindRef kind, const Block &row) {
        const Bytes body = EncodeRow(*kind, row).body;
        for (const auto &join : kJoins)
            for (const auto &[name, field] : {std::pair{join.from, join.field}, std::pair{join.to, join.key}})
                if (kind->name == name) {
                    const Extent place = ExtentOf(kind->RowLayout(), field);
                    values[{name, field}].insert(
                        LoadNet(ByteView(body).subspan(kItemHeaderSize + place.offset, place.size)));
                }
    });
    for (const auto &join : kJoins) {
        const auto &there = values[{join.to, join.key}];
        EXPECT_FALSE(there.empty()) << join.to;
        for (const uint64_t value : values[{join.from, join.field}])
            EXPECT_TRUE(value == 0 || there.contains(value)) << join.from << " " << join.field << " " << value;
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
        {0, 8, "000b0004a7000000", kOk, global, "globalInfo", "settingBytes", "03a5a700"},
        {0, 0, "000c000404000000", kOk, global, "globalInfo", "settingBytes", "04a5a700"},
        {0, 0, "0013000400000021", kOk, global, "globalInfo", "settingWord1", "33"},
        {0, 0, "000400040000003c", kOk, global, "globalInfo", "authLifeTime", "60"},
        {0, 0, "0005000420000000", kOk, global, "globalInfo", "authEndBytes", "0020"},
        {0, 0, "00020000", kOk, global, "globalInfo", "authEndBytes", "0120"},
        {0, 1, "00020000", kOk, global, "globalInfo", "authEndBytes", "0020"},
        {0, 1, "00140000", kOk, global, "globalInfo", "settingBytes2", "0000"},
        {1, 0, if3 + "000e000401020304", kOk, interface, "ifInfo", "ifShort3", "772"},
        {1, 1, if3 + "000e000401020304", kOk, interface, "ifInfo", "ifShort3", "0"},
        {1, 0, if3 + "00020000", kOk, interface, "ifInfo", "authEndBytes", "0100"},
        {1, 0, if3 + "0005000420000000", kOk, interface, "ifInfo", "authEndBytes", "0120"},
        {1, 0, if3 + "000400040000003c", kOk, interface, "ifInfo", "authLifeTime", "60"},
        {1, 0, if3 + "00060000", kOk, interface, "ifInfo", "ifBytes2", "0100"},
        {1, 0, if3 + "00110004a6000000", kOk, interface, "ifInfo", "ifBytes2", "01a6"},
        {1, 0, if3 + "0010000401020000", kOk, interface, "ifInfo", "ifShort4", "258"},
        {1, 0, if3 + "00090000", kOk, interface, "ifInfo", "ifBytes1", "0001"},
        {1, 0, if3 + "00120000", kOk, interface, "ifInfo", "ifBytes1", "0101"},
        {1, 1, if3 + "00120000", kOk, interface},
        {1, 0, if3 + "00120000", kOk, config, "ifConfig", "ifConfig", "1"},
        {1, 0, if3 + "00090000", kOk, config, "ifConfig", "ifConfig", "3"},
        {1, 1, if3 + "00120000", kOk, interface},
        {2, 0, peer9 + "000d0000", kOk, neighbour, "nbr", "nbrBytes", "010000000000"},
        {2, 1, peer9 + "000d0000", kOk, neighbour},
        {2, 0, peer9 + "0005000420000000", kOk, "000000080a00000900000000", "auth", "authEntryBytes",
         "{authKey=******** authEndBytes=0020}"},
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
        {3, 4, "00640000", kUnknownOp},
        {3, 3, "0064000400000000", kBadLength},
        {3, 3, "00060001ff", kBadLength},
        {3, 5, "00020000", kUnknownOp},
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

TEST(Daemon, CountsWhatItDidAndWhatItRefused)
{
    Daemon daemon;
    const struct {
        uint8_t msgClass, op;
        std::string_view body;
        int times;
    } rows[] = {{0, 0, "00080000", 1}, {0, 0, "000f00020020", 2}, {1, 0, "", 1},
                {3, 3, "00640000", 4}, {3, 5, "00640000", 5},     {4, 9, "", 1},
                {3, 3, "0006", 1}};
    for (const auto &row : rows)
        for (int i = 0; i < row.times; ++i)
            daemon.Answer(Request(row.msgClass, row.op, row.body));
    const Reply reply = daemon.Answer(Request(kShow, kGet, "00060000"));
    for (const auto &[field, shown] :
         {std::pair{"statWord1", "1"}, std::pair{"statWord2", "5"}, std::pair{"statWord3", "4"},
          std::pair{"statWord4", "5"}, std::pair{"counters1.countsA", "[5,0,0,4,0,5,0,"},
          std::pair{"counters1.countsB", "[4,1,0,9,1,0,"}})
        EXPECT_TRUE(FieldOf(reply, *LayoutRef("globalInfo"), field).starts_with(shown))
            << field << " is " << FieldOf(reply, *LayoutRef("globalInfo"), field);
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
    // A walk over ten rows that begins again when it has asked four times: the rows that it gets, "x" for a refusal,
    // behind which it goes on as if it had got the next one.
    const struct {
        std::string_view fault, rows;
    } walks[] = {
        {"status=5,op=5,after=1", "12xx1xxx"},
        {"status=5,op=5,after=1,for=1", "12x41234"},
        {"status=5,once", "x2341234"},
        {"status=5,after-rows=3", "123x123x"},
        {"status=5,after-rows=2,after=1,for=2", "123x12x4"},
        {"stuck,after-rows=3", "12331233"},
        {"stuck,op=5,after=2,for=1", "12331234"},
        {"status=5,after-rows=0,item=104", "12341234"},
    };
    for (const auto &walk : walks) {
        Daemon daemon = struck(walk.fault);
        MakeRows(daemon.GetDevice(), "resource=10");
        std::string seen;
        uint64_t last = 0;
        for (int i = 0; i < 8; ++i) {
            const Reply reply = i % 4 == 0 ? daemon.Answer(Request(3, 4, "00670000"))
                                           : daemon.Answer(Request(3, 5, fmt::format("00670004{:08x}", last)));
            last = i % 4 == 0 ? 1 : last + 1;
            const std::string row = FieldOf(reply, *LayoutRef("resource"), "resourceIndex");
            seen += StatusOf(reply) != kOk ? "x" : row;
            if (StatusOf(reply) == kOk)
                last = std::stoul(row);
        }
        EXPECT_EQ(seen, walk.rows) << walk.fault;
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

TEST(Trace, TellsEachFrameInWords)
{
    Device device;
    Daemon daemon;
    daemon.Add(ReadScenarioText(daemon.GetDevice(),
                                "[[crlsp]]\nkey = { keyWord0 = 7 }\nname = 'one'\n"
                                "hopList = [{ kind = 1, address = '10.0.0.2' }, { kind = 3, label = 99 }]\n"
                                "[[fault]]\nkind = 'late'\nnumber = 20\nclass = 2\n"
                                "[[fault]]\nkind = 'twice'\nclass = 2\n"
                                "[[fault]]\nkind = 'short'\nnumber = 5\nclass = 5\n"
                                "[[fault]]\nkind = 'silent'\nop = 8\n"
                                "[[fault]]\nkind = 'exit'\nop = 6\n",
                                "f.toml"));
    std::vector<std::string> lines;
    daemon.TraceTo([&lines](const std::string &line) { lines.push_back(line); });
    const struct {
        Bytes request;
        std::string_view asked, answered; // how the lines begin
    } rows[] = {
        {Request(0, 0, "000f0004002d0000"), "global set refreshInterval(15) 4 {interval=45}",
         "global set status 0x00000000"},
        {Request(2, 0, "000000040a000009000d0000"), "peer set peerKey(0) 4 {peer=10.0.0.9} rsvp(13) 0",
         "peer set status 0x00000000, 20 ms late, twice"},
        {Request(3, 3, "00640000"), "show get upLspNumber(100) 0",
         "show get status 0x00000000 upLspNumber(100) 4 {count=1}"},
        {Request(3, 4, "00010000"), "show get-first crlsp(1) 0", "show get-first status 0x00000000 crlsp(1) "},
        {Request(3, 3, "00020000"), "show get debugInfo(2) 0", "show get status 0x00000000 debugInfo(2) 28 {}"},
        {Request(5, 1, "00270000"), "reset undo ?(39) 0", "5 bytes out of format"},
        {Request(0, 8, "000a000405000000"), "global hello-timer helloInterval(10) 4 {interval=5}", "no answer"},
        {Request(3, 6, "00650000"), "show get-first-ingress tunnel(101) 0", "the daemon ends, as it was told to"},
        {Hex("0303"), "2 bytes that are not a message", "connection closed"},
    };
    for (const auto &row : rows) {
        lines.clear();
        daemon.Answer(row.request, 4);
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_TRUE(lines[0].starts_with(fmt::format("4 > {}", row.asked))) << lines[0];
        EXPECT_TRUE(lines[1].starts_with(fmt::format("4 < {}", row.answered))) << lines[1];
        if (row.asked.starts_with("show get-first crlsp")) {
            EXPECT_TRUE(lines[1].ends_with(" hopList(7) 74 [kind=1 address=10.0.0.2; kind=3 label=99] name(17) 3"))
                << lines[1];
        }
    }
}

// A server on a socket that has no name in the file system, and its loop in a thread.
struct Running {
    Daemon daemon;
    int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0);
    int stop = eventfd(0, EFD_NONBLOCK);
    sockaddr_un address{};
    socklen_t length = sizeof(address);
    std::thread thread;

    std::promise<std::string> told; // what the server said first
    std::atomic<int> tellings = 0;

    explicit Running(std::string_view fault, Places places = {}, bool listens = true)
    {
        MakeRows(daemon.GetDevice(), "psb=10");
        daemon.Add(ParseFault(fault));
        address.sun_family = AF_UNIX;
        (void)bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof(sa_family_t));
        if (listens)
            listen(listener, 64);
        getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length);
        thread = std::thread([this, places] {
            Server server(listener, stop, daemon, places);
            server.TellTo([this](const std::string &sentence) {
                if (++tellings == 1)
                    told.set_value(sentence);
            });
            server.Run();
        });
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
    const Running running("late=600000,class=0", {.idle = std::chrono::milliseconds(0)});
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

const Bytes kQuestion = Request(kShow, kGet, "00640000");
constexpr ssize_t kAnswer = 16;

// Another process takes all the places that a process can have, and is refused more. The sessions of this one
// stay.
TEST(Server, PlacesAreCountedForEachProcess)
{
    const Running running("late=1,class=9", {.ofAll = 5, .ofProcess = 3, .idle = std::chrono::hours(1)});
    const int first = running.Connect();
    EXPECT_EQ(running.Ask(first, kQuestion), kAnswer);
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const pid_t other = fork();
    if (other == 0) {
        close(ends[0]);
        char answered = 0;
        for (int i = 0; i < 4; ++i)
            answered = static_cast<char>(answered + (running.Ask(running.Connect(), kQuestion) == kAnswer));
        _exit(write(ends[1], &answered, 1) == 1 && read(ends[1], &answered, 1) == 0 ? 0 : 1);
    }
    char answered = 0;
    close(ends[1]);
    EXPECT_EQ(read(ends[0], &answered, 1), 1);
    EXPECT_EQ(answered, 3);
    const int second = running.Connect();
    EXPECT_EQ(running.Ask(second, kQuestion), kAnswer);
    const int third = running.Connect(); // one more than all places
    EXPECT_LE(running.Ask(third, kQuestion), 0);
    EXPECT_EQ(running.Ask(first, kQuestion), kAnswer);
    close(ends[0]);
    int status = -1;
    EXPECT_EQ(waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    for (const int fd : {first, second, third})
        close(fd);
}

TEST(Server, TriesAgainWhatTheSystemRefuses)
{
    Running deaf("late=1,class=9", {}, false); // each accept fails, until it listens
    EXPECT_TRUE(deaf.told.get_future().get().starts_with("accept: "));
    listen(deaf.listener, 1);
    const int late = deaf.Connect();
    EXPECT_EQ(deaf.Ask(late, kQuestion), kAnswer);
    EXPECT_EQ(deaf.tellings, 1);
    close(late);

    Running running("late=1,class=9");
    const int fd = running.Connect();
    EXPECT_EQ(running.Ask(fd, kQuestion), kAnswer);
    static std::atomic<int> interruptions;
    interruptions = 0;
    struct sigaction count {};
    count.sa_handler = [](int) { ++interruptions; };
    sigaction(SIGUSR1, &count, nullptr);
    for (int i = 0; i < 100; ++i) { // some of them meet a poll that has nothing to report
        pthread_kill(running.thread.native_handle(), SIGUSR1);
        while (interruptions == i)
            sched_yield();
        EXPECT_EQ(running.Ask(fd, kQuestion), kAnswer);
    }
    EXPECT_EQ(running.tellings, 0);
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{1, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few); // poll takes no more descriptors than a process may have
    pollfd none[2] = {{-1, 0, 0}, {-1, 0, 0}};
    const bool refused = poll(none, 2, 0) < 0; // not under every emulator
    if (refused) {
        send(fd, kQuestion.data(), kQuestion.size(), 0); // wakes the server, if it is in a poll from before
        EXPECT_TRUE(running.told.get_future().get().starts_with("poll: "));
    }
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(running.Ask(fd, kQuestion), kAnswer);
    close(fd);
}

bool Answers(const program::HostDirectory &directory)
{
    const sockaddr_un address = rsvp_host::SocketAddress(directory.PathOf("."));
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    const bool connected = connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    close(fd);
    return connected;
}

// Files of the host directory can vanish at any time, and another daemon may come to own their names.
TEST(Instance, KeepsWhatIsItsOwnAndNothingElse)
{
    const program::HostDirectory directory;
    const std::string path = directory.PathOf(".");
    const std::string lock = directory.PathOf(rsvp_host::kLockFile);
    const std::string socket = directory.PathOf(rsvp_host::kSocketFile);
    auto instance = std::make_unique<Instance>(path);
    const int listener = instance->Listener();
    EXPECT_THROW(Instance{path}, InstanceError);
    EXPECT_EQ(instance->Recover(), "");
    for (const auto &gone : {std::vector{socket}, std::vector{lock}, std::vector{lock, socket}}) {
        for (const std::string &file : gone)
            std::filesystem::remove(file);
        EXPECT_NE(instance->Recover(), "");
        EXPECT_EQ(instance->Listener(), listener);
        EXPECT_TRUE(Answers(directory));
        EXPECT_THROW(Instance{path}, InstanceError);
        EXPECT_EQ(instance->Recover(), "");
    }
    std::filesystem::remove(socket);
    directory.Write(rsvp_host::kSocketFile, "not a socket");
    EXPECT_NE(instance->Recover(), "");
    EXPECT_TRUE(Answers(directory));

    std::filesystem::remove(lock);
    auto other = std::make_unique<Instance>(path);
    EXPECT_THROW(instance->Recover(), InstanceError);
    instance.reset();
    EXPECT_TRUE(Answers(directory)); // the other's socket is still there
    std::filesystem::remove_all(directory.PathOf(""));
    EXPECT_THROW(other->Recover(), InstanceError);
}

TEST(LineLog, CountsWhatItCannotWrite)
{
    const program::HostDirectory directory;
    const std::string path = directory.PathOf("log");
    {
        LineLog log(path, 100);
        log.Write(std::string(80, 'a'));
        log.Write(std::string(30, 'b')); // waits, as the file would grow beyond its bound
        EXPECT_EQ(directory.Read("log"), std::string(80, 'a') + "\n");
        EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
        std::filesystem::resize_file(path, 0);
        log.Flush();
        EXPECT_EQ(directory.Read("log"), std::string(30, 'b') + "\n");
        for (int i = 0; i < 400; ++i)
            log.Write(std::string(1023, 'c')); // room for 256 of them, each with its end
    }
    const std::string rest = directory.Read("log");
    EXPECT_TRUE(rest.ends_with("c\nrsvpsimd: 144 lines were lost\n")) << rest.substr(rest.size() - 50);

    // A pipe that nobody reads, shared with others, so that it must stay as it is.
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int before = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    LineLog log;
    dup2(before, STDERR_FILENO);
    close(before);
    for (int i = 0; i < 1000; ++i)
        log.Write(std::string(1023, 'd'));
    EXPECT_EQ(fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0);
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    std::string seen(4 << 20, '\0');
    size_t size = 0;
    for (ssize_t got; (got = read(ends[0], seen.data() + size, seen.size() - size)) > 0; log.Flush())
        size += static_cast<size_t>(got);
    seen.resize(size);
    const auto lines = std::ranges::count(seen, '\n');
    EXPECT_LT(lines, 1000);
    EXPECT_TRUE(seen.ends_with(fmt::format("d\nrsvpsimd: {} lines were lost\n", 1000 - (lines - 1))));
    EXPECT_EQ(log.Finish(), 0U);
    close(ends[0]);
    close(ends[1]);

    mkfifo(directory.PathOf("fifo").c_str(), 0600);
    ASSERT_EQ(symlink(path.c_str(), directory.PathOf("link").c_str()), 0);
    for (const std::string &refused :
         {directory.PathOf("fifo"), directory.PathOf("link"), directory.PathOf("."), std::string("/dev/null")})
        EXPECT_THROW(LineLog{refused}, std::runtime_error) << refused;
}

// What --decode would print, without the time stamps; and at the end what is wrong with the file.
std::vector<std::string> Decoded(const std::string &path)
{
    std::vector<std::string> lines;
    std::ifstream file(path, std::ios::binary);
    try {
        Decode(file, DecodeForm::Words,
               [&](const std::string &line) { lines.push_back(line.substr(line.find(' ') + 1)); });
    } catch (const CaptureError &error) {
        lines.emplace_back(error.what());
    }
    return lines;
}

TEST(CaptureFile, KeepsWholeFramesWhateverHappensToIt)
{
    const program::HostDirectory directory;
    const std::string path = directory.PathOf("capture");
    const Bytes request = Request(kGlobal, kSet, "00030044" + std::string(136, '7'));
    const CapturedFrame frame{.client = 7, .length = request.size(), .bytes = request};
    const std::string line = "7 > global set authKey(3) 68 {authKey=********}";
    std::optional<CaptureFile> capture(std::in_place, path, "test", false, 400);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
    for (int i = 0; i < 4; ++i)
        capture->Write(frame);
    EXPECT_EQ(Decoded(path), std::vector({line, line}));
    EXPECT_EQ(capture->Loss(false),
              "2 frames are not in the capture " + path + ": a file takes no more than 400 bytes");
    EXPECT_EQ(capture->Loss(false), "");
    EXPECT_EQ(directory.Read("capture").find("wwwwwwww"), std::string::npos);
    std::filesystem::resize_file(path, 0);
    capture->Write(frame);
    EXPECT_EQ(Decoded(path), std::vector({line}));

    EXPECT_THROW(CaptureFile(path, "test", false), std::runtime_error); // one daemon writes to it
    capture.reset();
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 3);
    EXPECT_EQ(Decoded(path).back(), "block 3 at byte 72: the file ends inside the block");
    capture.emplace(path, "test", true);
    capture->Write(frame);
    EXPECT_EQ(Decoded(path), std::vector({line}));
    EXPECT_NE(directory.Read("capture").find("wwwwwwww"), std::string::npos);

    // What the system refuses in the middle of a block leaves none of it there.
    const uint64_t size = std::filesystem::file_size(path);
    const rlimit enough{static_cast<rlim_t>(size + 50), RLIM_INFINITY};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &enough);
    capture->Write(frame);
    constexpr rlimit kUnlimited{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &kUnlimited);
    EXPECT_EQ(std::filesystem::file_size(path), size);
    EXPECT_TRUE(capture->Loss(true).starts_with("1 frames"));

    mkfifo(directory.PathOf("fifo").c_str(), 0600);
    ASSERT_EQ(symlink(path.c_str(), directory.PathOf("link").c_str()), 0);
    directory.Write("notes", "buy milk");
    for (const std::string &refused : {directory.PathOf("fifo"), directory.PathOf("link"), directory.PathOf("."),
                                       std::string("/dev/null"), directory.PathOf("notes")})
        EXPECT_THROW(CaptureFile(refused, "test", false), std::runtime_error) << refused;
    EXPECT_EQ(directory.Read("notes"), "buy milk");
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

bool KernelHasFilters()
{
    return prctl(PR_SET_SECCOMP, 2, nullptr) != 0 && errno == EFAULT;
}

// What the daemon still can do when it serves. A letter stands for each thing that it cannot.
std::string Denied(const program::HostDirectory &directory)
{
    std::string denied;
    const auto note = [&denied](char letter, bool done) {
        if (!done && (errno == EPERM || errno == EACCES))
            denied += letter;
    };
    note('x', execl("/bin/true", "true", nullptr) == 0);
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    note('f', child > 0);
    note('k', kill(getppid(), 0) == 0);
    note('i', socket(AF_INET, SOCK_STREAM, 0) >= 0);
    note('w', open("/tmp/rsvpsimd-was-here", O_WRONLY | O_CREAT, 0600) >= 0);
    note('r', open("/etc/passwd", O_RDONLY) >= 0);
    note('u', socket(AF_UNIX, SOCK_SEQPACKET, 0) >= 0);
    note('l', open(directory.PathOf("lock").c_str(), O_RDWR | O_CREAT, 0600) >= 0);
    note('d', unlink(directory.PathOf("lock").c_str()) == 0);
    note('a', raise(SIGURG) == 0);
    return denied;
}

TEST(Sandbox, KeepsWhatTheDaemonNeeds)
{
    if (kSanitized || !KernelHasFilters())
        GTEST_SKIP() << "a sanitized build and this kernel have no filter of system calls";
    const program::HostDirectory directory;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        std::string report;
        for (const std::string &missing : Confine(directory.PathOf(".")))
            report += missing + "; ";
        report += Denied(directory);
        _exit(write(ends[1], report.data(), report.size()) == static_cast<ssize_t>(report.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::string report(200, '\0');
    report.resize(static_cast<size_t>(std::max<ssize_t>(read(ends[0], report.data(), report.size()), 0)));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(report == "xfkiw" || report.ends_with("; xfki")) << report; // without landlock, files are open to it
}

// Starts the daemon with these words of the shell around its command line.
void StartThrough(const program::HostDirectory &directory, const std::string &before, const std::string &behind)
{
    directory.Write(
        "start", fmt::format("cd {}\n{}\nexec {} \"$@\" {}\n", directory.PathOf("."), before, TEST_RUNNER, behind));
    setenv("RSVP_HOST_RUNNER", ("sh " + directory.PathOf("start")).c_str(), 1);
    ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK) << before << behind;
}

// A trace must not go to whatever else has the number of standard error: the lock file, the sockets. Nor may it
// end the daemon when nobody takes it.
TEST(Program, ServesWhateverItsStandardStreamsAre)
{
    for (const auto &[before, streams] :
         {std::pair{"", ">&- 2>&-"}, std::pair{"", "<&- 2>&-"}, std::pair{"", "<&- >&- 2>&-"},
          std::pair{"", "2>/dev/full"}, std::pair{"ulimit -f 1", ""},
          std::pair{"mkfifo gone; head -c 1 gone >/dev/null &", "2>gone"}}) {
        const program::HostDirectory directory("trace = true");
        StartThrough(directory, before, streams);
        for (uint32_t i = 0; i < 20; ++i)
            EXPECT_EQ(RSVP_MOR_SetDscpValue(i), RSVP_MOR_OK) << before << streams;
        const std::string lock = directory.Read(rsvp_host::kLockFile);
        EXPECT_EQ(lock.find_first_not_of("0123456789"), lock.size() - 1) << streams << ": " << lock;
    }
}

TEST(Program, TracesAndCapturesToFilesIsConfinedAndTidiesUp)
{
    const program::HostDirectory directory;
    StartThrough(directory, "", "--trace trace --capture capture");
    EXPECT_EQ(RSVP_MOR_SetDscpValue(7), RSVP_MOR_OK);
    const std::string pid = directory.Read(rsvp_host::kLockFile);
    std::ifstream file("/proc/" + pid.substr(0, pid.size() - 1) + "/status");
    const std::string status{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(status.find("NoNewPrivs:\t1") != std::string::npos, !kSanitized) << status;
    EXPECT_EQ(status.find("Seccomp:\t2") != std::string::npos, !kSanitized && KernelHasFilters()) << status;
    EXPECT_EQ(RSVP_MOR_SetMplsRsvp(1), RSVP_MOR_OK);
    EXPECT_FALSE(std::filesystem::exists(directory.PathOf(rsvp_host::kSocketFile))); // it ended in order
    // An answer is there before its lines are; at the end all are.
    const std::vector<std::string> frames{"2 > global set dscp(19) 4 {dscp=7}", "2 < global set status 0x00000000",
                                          "3 > global undo globalDisable(20) 0", "3 < global undo status 0x00000000"};
    EXPECT_EQ(Decoded(directory.PathOf("capture")), frames);
    const std::string trace =
        std::regex_replace(directory.Read("trace"), std::regex("20[0-9-]{8}T[0-9:]{8}\\.[0-9]{6}Z "), "then ");
    EXPECT_EQ(trace, fmt::format("then {}\n", fmt::join(frames, "\nthen ")));
}

// The socket of a service manager, with a name that no file has.
class ServiceManager {
public:
    ServiceManager()
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (void)bind(fd_, reinterpret_cast<sockaddr *>(&address), sizeof(sa_family_t)); // the kernel chooses the name
        socklen_t length = sizeof(address);
        getsockname(fd_, reinterpret_cast<sockaddr *>(&address), &length);
        name_ = "@" + std::string(address.sun_path + 1, length - sizeof(sa_family_t) - 1);
    }
    ~ServiceManager() { close(fd_); }
    const std::string &Name() const { return name_; }
    std::string Next() const
    {
        std::string message(200, '\0');
        message.resize(static_cast<size_t>(std::max<ssize_t>(recv(fd_, message.data(), message.size(), 0), 0)));
        return message;
    }

private:
    int fd_ = socket(AF_UNIX, SOCK_DGRAM, 0);
    std::string name_;
};

TEST(Program, TellsThatItListensAndReadsItsScenarioAgain)
{
    const std::string event = "[[event]]\nat = '1h'\nfault = 'silent'\n";
    const program::HostDirectory directory("[[nbr]]\nnbrWord0 = 1\n[[nbr]]\nnbrWord0 = 2\n" + event);
    const ServiceManager manager;
    StartThrough(directory, "export NOTIFY_SOCKET=" + manager.Name(), "--ready-fd 7 7>ready --fault late=1,op=9");
    EXPECT_EQ(manager.Next(), "READY=1");
    EXPECT_EQ(directory.Read("ready"), "READY\n");
    EXPECT_EQ(RSVP_MOR_SetDscpValue(7), RSVP_MOR_OK);
    const std::string added = "[[nbr]]\nnbrWord0 = 2\nnbrWord3 = 1\n[[nbr]]\nnbrWord0 = 3\n";
    const struct {
        std::string scenario; // "": the file is gone
        std::string_view told;
    } rows[] = {
        {added + event, "read again; what changed: nbr 1 added, 1 changed, 1 removed; global settingWord1\n"},
        {"\n" + added + event, "read again; what changed: nothing\n"},
        {added + "speed = 1\n", "scenario.toml:6: speed: there is no such key; nothing changed\n"},
        {added + "x\n", "scenario.toml:6: Error"},
        {"", "scenario.toml: there is no such file to read again; nothing changed\n"},
        {"[counters]\nfrrIfNum = 2\n[rows]\npsb = 5\n[[fault]]\nkind = 'close'\nop = 9\n",
         "nbr 2 removed; psb 5 added; counters; 2 faults instead of 1; 0 events instead of 1\n"},
    };
    const auto pid = static_cast<pid_t>(std::stol(directory.Read(rsvp_host::kLockFile)));
    uint64_t last = 0;
    for (const auto &row : rows) {
        const size_t before = directory.Log().size();
        directory.Write("new", row.scenario);
        if (row.scenario.empty())
            std::filesystem::remove(directory.PathOf(rsvp_host::kScenarioFile));
        else
            std::filesystem::rename(directory.PathOf("new"), directory.PathOf(rsvp_host::kScenarioFile));
        kill(pid, SIGHUP);
        const std::string reloading = manager.Next();
        EXPECT_TRUE(reloading.starts_with("RELOADING=1\nMONOTONIC_USEC=")) << reloading;
        const uint64_t now = std::stoull(reloading.substr(reloading.rfind('=') + 1));
        EXPECT_GT(now, last);
        last = now;
        EXPECT_EQ(manager.Next(), "READY=1");
        EXPECT_NE(directory.Log().substr(before).find(row.told), std::string::npos) << directory.Log();
    }
    EXPECT_EQ(RSVP_MOR_SetMplsRsvp(1), RSVP_MOR_OK);
    EXPECT_EQ(manager.Next(), "STOPPING=1");
    EXPECT_EQ(program::Run(directory, {RSVPSIMD_PATH, "--ready-fd", "77"}).exit, 2);
}

TEST(Program, LetsAWatchSeeItsEvents)
{
    const program::HostDirectory directory("[[nbr]]\nnbrWord0 = 1\n[[event]]\nat = '0s'\nevery = '1ms'\n"
                                           "[[event.change.nbr]]\nnbrWord0 = 1\nadd = { nbrWord8 = 1 }\n");
    ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK);
    const auto watch =
        program::Run(directory, {RSVPCTL_PATH, "watch", "show", "neighbours", "--interval", "100ms", "--count", "3"});
    EXPECT_EQ(watch.exit, 0) << watch.err;
    size_t changes = 0; // one for each poll behind the first
    for (size_t at = 0; (at = watch.out.find("messagesSent", at)) != std::string::npos; ++at)
        ++changes;
    EXPECT_EQ(changes, 2U) << watch.out;
}

TEST(Program, ListsItsLayouts)
{
    const program::HostDirectory directory;
    const std::string out = program::Run(directory, {RSVPSIMD_PATH, "--list-layouts"}).out;
    for (const auto *lines :
         {"debugSwitch (16 bytes)\n      0   4 x  1  address  session.tunnelEndpoint  debugType is 16 or 64\n",
          "      8   4 x  1  raw      label  kind is not 3",
          "    236   8 x  1  raw      labelRequest.rangeBytes  labelRequest.kind is not 2 or 3\n",
          "routeList32 (4 bytes of count, then routeEntry)\n"})
        EXPECT_NE(out.find(lines), std::string::npos) << lines;
}

} // namespace
