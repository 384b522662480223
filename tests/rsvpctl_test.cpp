// rsvpctl as its users meet it: a program with a command line, two streams and an exit status, in front of a real
// daemon that is well, that misbehaves, or that is not there.
#include "host/daemon/instance.h"
#include "host/daemon/wire/frame.h"
#include "host/directory.h"
#include "manager/record/text.h"
#include "tests/support/program.h"
#include "tools/rsvpctl/command/batch.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/commands.h"
#include "tools/rsvpctl/print/statuses.h"
#include "tools/rsvpctl/set/settings.h"
#include "tools/rsvpctl/watch/row_changes.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <set>
#include <sstream>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using nlohmann::json;
using program::HostDirectory;
using program::Result;

Result Ctl(const HostDirectory &directory, const std::string &line, const std::string &input = "",
           program::Output output = program::Output::Kept)
{
    std::vector<std::string> words = rsvpctl::SplitWords(line);
    words.insert(words.begin(), RSVPCTL_PATH);
    return program::Run(directory, words, input, output);
}

// One document, in which the exit status stands as well.
json Document(const Result &result)
{
    json document = json::parse(result.out, nullptr, false);
    EXPECT_TRUE(document.is_object()) << result.out << result.err;
    if (!document.is_object())
        return json::object();
    EXPECT_EQ(document["schemaVersion"], 1);
    EXPECT_EQ(document["exitStatus"], result.exit);
    EXPECT_TRUE(document["operation"].is_string() && document["status"].is_number()) << document;
    const bool isSaid = result.exit == 0 || (document["operation"] == "status" && result.exit != 6);
    EXPECT_EQ(isSaid, result.err.empty()) << result.err;
    return document;
}

json CtlJson(const HostDirectory &directory, const std::string &line, const std::string &input = "")
{
    SCOPED_TRACE(line);
    return Document(Ctl(directory, line + " --json", input));
}

constexpr auto kRows = R"(
trace = true
[rows]
interface = 2
ifconfig = 2
nbr = 2
auth = 2
facility = 2
general = 2
tunnel = 3
chop = 2
arhop = 2
exthop = 2
resource = 2
psb = 2
rsb = 2
phsb = 2
crlsp = 2
p2mpPsb = 2
p2mpRsb = 2
p2mpCrlsp = 2
[[refuse]]
class = 0
item = 19
status = 0x60010006
[[fault]]
kind = "close"
class = 0
item = 15
)";

TEST(Rsvpctl, SaysWhatItDidAndWhyNot)
{
    const HostDirectory directory(kRows);
    directory.Write("key.txt", "short key");
    const struct {
        const char *line;
        int exit;
        const char *out;
        const char *err;
    } cases[] = {
        {"status", 5, "stopped", ""},
        {"show global", 3, "", "RSVP_MOR_LIPCOpen gave 0x2001000e"},
        {"show tunnels", 3, "", "broken after 0 rows"},
        {"set dscp 5", 3, "", "RSVP_MOR_ERR_LIPC"},
        {"set bfd --interface 3", 5, "", "RSVP_MOR_SetBfdEnable for interface 3 gave 0x6001001a"},
        {"undo bfd --interface 3", 0, "done", ""},
        {"enable", 0, "done", ""},
        {"status", 0, "running", ""},
        {"set interface 3", 0, "set interface 3: done", ""},
        {"show interfaces 3 --detail", 0, "retransmissionInterval", ""},
        {"show interfaces 99", 1, "", "0x40010005 RSVP_MOR_ERR_NOT_EXIST"},
        {"undo interface 3", 0, "done", ""},
        {"show interfaces 3", 1, "", "likely cause"},
        {"set peer 10.0.0.9", 0, "done", ""},
        {"show neighbours", 0, "ADDRESS", "3 rows, end of table"},
        {"show neighbor", 0, "ADDRESS", "3 rows, end of table"},
        {"show nieghbors", 2, "", "did you mean 'neighbours'?"},
        {"show psb --tunel-id 3", 2, "", "'--tunel-id' is not expected here; did you mean '--tunnel-id'?"},
        {"set dscp 5", 1, "", "set dscp: RSVP_MOR_SetDscpValue for 5 gave 0x60010006"},
        {"set refresh-interval 30", 4, "", "0x40010001 RSVP_MOR_ERR_FAIL"},
        {"set dscp 64", 2, "", "takes a number from 0 to 63, not '64'"},
        {"set auth-window 256", 2, "", "takes a number of messages from 0 to 255"},
        {"set dscp 5 --detail", 2, "", "--detail changes nothing here"},
        {"set hello-interval 300", 2, "", "interval: takes a number from 0 to 255, not '300'"},
        {"set bfd", 2, "", "--interface"},
        {"watch status --interval 99ms", 2, "", "takes a duration from 100ms to 24h"},
        {"set bfd --interface 3 --interface 4", 2, "", "--interface"},
        {"set auth-window 5 --interface 3 --peer 10.0.0.9", 2, "", "--peer"},
        {"set peer 10.0.0", 2, "", "10.0.0.9"},
        {"set auth-key --key-file nothing.txt", 2, "", "nothing.txt"},
        {"undo dscp", 2, "", "cannot take it back"},
        {"debug set 16", 2, "", "--endpoint"},
        {"debug set 16 --endpoint 10.0.0.4 --tunnel-id 7 --extended-tunnel-id 10.0.0.1", 0, "type 16", ""},
        {"debug show --detail", 0, "10.0.0.4", ""},
        {"debug undo 16 --endpoint 10.0.0.4 --tunnel-id 65536 --extended-tunnel-id 10.0.0.1", 2, "", "65535"},
        {"show tunnels", 0, "INGRESS", "3 rows, end of table"},
        {"show tunnels --dictionary none", 0, "tunnelWord2", "words have no names"},
        {"show tunnels --dictionary nothing.toml", 2, "", "nothing.toml: No such file"},
        {"show tunnels index=1,instance=2,tunnelWord2=167772161,egress=10.0.0.2", 0, "10.0.0.1", ""},
        {"dictionary check", 2, "", "takes a file"},
        {"show tunnels --columns egress,index --no-headers", 0, "10.0.0.2                  1\n",
         "3 rows, end of table"},
        {"show tunnels --columns egress,indx", 2, "", "there is no column 'indx'; did you mean 'index'?"},
        {"show tunnels --columns egress --json", 2, "", "are for tables"},
        {"set dscp 5 -o xml", 2, "", "takes table or wide or csv or json, not 'xml'"},
        {"show tunnels --json -o csv", 2, "\"exitStatus\":2", "--json contradicts --output csv"},
        {"show tunnels --detail -o table", 2, "", "--detail contradicts --output table"},
        {"show global --output=wide", 2, "", "--output wide changes nothing here"},
        {"show tunnels 1,2,0.0.0.3,10.0.0.2 -o csv", 2, "", "not for one row by its key"},
        {"show tunnels --limit 1 -o json", 0, "\"end\":\"limit\"", ""},
        {"status -ojson --json", 0, "\"service\":\"running\"", ""},
        {"show nieghbors -o json", 2, "\"exitStatus\":2", "did you mean"},
        {"show tunnels --sort role --columns index --no-headers", 0, "1\n         3\n         2\n", "3 rows"},
        {"show tunnels --limit 0", 2, "", "--limit takes a number from 1 on"},
        {"show tunnels 1,2,0.0.0.3,10.0.0.2 --sort index", 2, "", "--sort"},
        {"show tunnels --limit 2 --json", 0, "\"complete\":false,\"end\":\"limit\"", ""},
        {"show tunnels --sort index --limit 2", 0, "", "2 rows, limit"},
        {"show tunnels -o csv --limit 1", 0, "index,instance,ingress,egress,role", "1 row, limit"},
        {"show tunnels 1,2", 2, "", "tunnelIndex,tunnelInstance,ingressLsrId,egressLsrId"},
        {"show tunnels --key tunnelIndex=1,size=2,ingressLsrId=3,egressLsrId=4", 2, "", "'size'"},
        {"show tunnels --after 4294967295,0,0.0.0.0,0", 0, "", "0 rows, end of table"},
        {"show tunnels --json --detail", 2, "\"exitStatus\":2", "excludes JSON"},
        {"show counters", 0, "upLsps", ""},
        {"reset statistics 0,0", 0, "done", ""},
        {"reset statistics 77,0", 1, "", "RSVP_MOR_ResetStatistics"},
        {"capability interface 4 on", 0, "done", ""},
        {"options a", 4, "", "/etc/te.conf is missing"},
        {"options", 2, "", "names"},
        {"explain 0x6001001A", 0, "RSVP_MOR_ERR_NOT_ENABLED", ""},
        {"explain RSVP_MOR_ERR_LIPC", 0, "0x2001000e", ""},
        {"explain RSVP_MOR_ERR_LPIC", 2, "", "did you mean 'RSVP_MOR_ERR_LIPC'?"},
        {"explain 4294967296", 2, "", "4294967295"},
        {"batch nothing.txt", 2, "", "nothing.txt"},
        {"", 2, "", "subcommand"},
        {"sett", 2, "", "sett"},
        {"--help", 0, "Exit status", ""},
        {"--version", 0, "rsvpctl ", ""},
        {"help show neighbors", 0, "Usage: rsvpctl show neighbours", ""},
        {"help show shwo", 2, "", "show: 'shwo' is not expected here"},
        {"set --help", 0, "Examples:", ""},
        {"set auth-key --help", 0, "--key-file FILE", ""},
        {"disable", 0, "done", ""},
        {"status", 5, "stopped", ""},
    };
    for (const auto &row : cases) {
        const Result result = Ctl(directory, row.line);
        EXPECT_EQ(result.exit, row.exit) << row.line << "\n" << result.err;
        EXPECT_NE(result.out.find(row.out), std::string::npos) << row.line << "\n" << result.out;
        EXPECT_NE(result.err.find(row.err), std::string::npos) << row.line << "\n" << result.err;
    }
}

// The words of every command and of every group of them.
std::set<std::string> EveryPath()
{
    rsvpctl::CommandLine line;
    AddCommands(line);
    std::set<std::string> paths{""};
    for (const rsvpctl::Command *command : line.CommandsBelow("")) {
        const std::string &name = command->name;
        for (size_t end = name.find(' '); end != std::string::npos; end = name.find(' ', end + 1))
            paths.insert(name.substr(0, end));
        paths.insert(name);
    }
    return paths;
}

// Every command there is, with nothing after it, and each of its own examples.
std::set<std::string> EveryLine()
{
    rsvpctl::CommandLine line;
    AddCommands(line);
    std::set<std::string> lines;
    for (const rsvpctl::Command *command : line.CommandsBelow("")) {
        lines.insert(command->name);
        std::istringstream examples(command->examples);
        for (std::string text; std::getline(examples, text);)
            if (text.starts_with("  rsvpctl "))
                lines.insert(text.substr(10, text.find(" #", 10) - 10));
    }
    // What has no end, what changes the service under the other lines, and what is made for other programs.
    std::erase_if(lines, [](const std::string &text) {
        return text.starts_with("watch") || text.starts_with("completion") || text == "schema" ||
               text.starts_with("enable") || text.starts_with("disable") || text.starts_with("capability global") ||
               text.find_first_of("|>") != std::string::npos;
    });
    return lines;
}

// The lines of a trace without time and client.
std::string Messages(const std::string &trace)
{
    std::istringstream lines(trace);
    std::string messages;
    for (std::string text; std::getline(lines, text);) {
        const size_t begin = std::min(text.find(" > "), text.find(" < "));
        if (begin == std::string::npos || begin == 0 || std::isdigit(text[begin - 1]) == 0)
            continue;
        const size_t time = text.ends_with(" ms)") ? text.rfind(" (") : text.size();
        messages += text.substr(begin, time - begin) + "\n";
    }
    EXPECT_NE(messages, "");
    return messages;
}

TEST(Rsvpctl, EveryCommandGivesOneJsonDocument)
{
    const HostDirectory directory(kRows);
    directory.Write("key.txt", "short key");
    directory.Write("settings.txt", "set interface 3\n");
    std::string documents;
    std::set<int> exits;
    const auto runAll = [&](const std::string &more = "") {
        for (const std::string &line : EveryLine()) {
            const json document = CtlJson(directory, line + more);
            documents += document.dump() + "\n";
            exits.insert(document.value("exitStatus", -1));
        }
    };
    runAll();
    ASSERT_EQ(Ctl(directory, "enable --trace=trace").exit, 0);
    runAll(" --trace=trace");
    EXPECT_EQ(exits, (std::set<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(Messages(directory.Read("trace")), Messages(directory.Log()))
        << "both ends tell of the same in the same words";
    const pid_t daemon = std::stoi(directory.Read(rsvp_host::kLockFile));
    kill(daemon, SIGSTOP);
    std::filesystem::create_directory(directory.PathOf("etc"));
    directory.Write(rsvp_host::kOptionFile, "plugin-option refresh=30 dscp=48\n");
    exits.clear();
    runAll(" --timeout 5ms");
    EXPECT_EQ(exits, (std::set<int>{0, 2, 6})) << "what asks the daemon, and only that, gives up";
    kill(daemon, SIGCONT);

    // Today's schema is closed, so that a key that it does not tell is noticed; the one that is kept is the promise
    // to programs. Where no validator is installed, the rest of this test has to do.
    directory.Write("today.json", Ctl(directory, "schema").out);
    directory.Write("documents", documents);
    directory.Write("validate.py",
                    "import json, sys, jsonschema\n"
                    "for name in sys.argv[2:]:\n"
                    "    schema = json.load(open(name))\n"
                    "    validator = jsonschema.validators.validator_for(schema)(schema)\n"
                    "    for line in open(sys.argv[1]):\n"
                    "        document = json.loads(line)\n"
                    "        for error in validator.iter_errors(document):\n"
                    "            sys.exit(name + ': ' + document['operation'] + ': ' + error.message)\n");
    if (system("python3 -c 'import jsonschema' 2>/dev/null") != 0)
        GTEST_SKIP() << "no validator";
    const std::string validate =
        fmt::format("cd {} && python3 validate.py documents today.json ", directory.PathOf(""));
    EXPECT_EQ(system((validate + SCHEMA_PATH).c_str()), 0);
}

// The lines below "Examples:", up to an empty one.
std::string ExamplesOf(const std::string &help)
{
    std::istringstream text(help);
    std::string line;
    std::string examples;
    while (std::getline(text, line) && line != "Examples:") {
    }
    while (std::getline(text, line) && !line.empty())
        examples += line + "\n";
    return examples;
}

TEST(Rsvpctl, ExamplesInTheHelpRunAsTheyStand)
{
    std::stringstream demo;
    for (const char *name : {"demo.toml", "p2mp.toml"})
        demo << std::ifstream(std::string(SCENARIOS_PATH) + name).rdbuf();
    const HostDirectory directory(demo.str());
    std::filesystem::create_directory(directory.PathOf("etc"));
    directory.Write("etc/te.conf", "plugin-option refresh=30 dscp=48\n");
    // A watch has no end of its own.
    const std::string head = "set -euo pipefail\nrsvpctl() {\n[ \"$1\" != watch ] || set -- \"$@\" --count 1\n"
                             "command " TEST_RUNNER " " RSVPCTL_PATH " \"$@\"\n}\nrsvpctl enable\n";
    for (const std::string &path : EveryPath()) {
        const std::string examples = ExamplesOf(CtlJson(directory, "help " + path)["record"].value("help", ""));
        EXPECT_NE(examples, "") << path;
        directory.Write("examples", head + examples);
        EXPECT_EQ(system(fmt::format("cd {} && bash examples >said 2>&1", directory.PathOf("")).c_str()), 0)
            << examples << directory.Read("said");
    }
}

TEST(Rsvpctl, OtherNamesAreTheSameCommand)
{
    const HostDirectory directory(kRows);
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    std::string lines;
    std::vector<std::string> names;
    constexpr std::string_view kOthers = "Other names: ";
    for (const std::string &path : EveryPath()) {
        const std::string help = Ctl(directory, "help " + path).out;
        const size_t at = help.find(kOthers);
        if (at == std::string::npos || path.starts_with("watch") || path.starts_with("show p2mp"))
            continue;
        const std::string others = help.substr(at + kOthers.size(), help.find('\n', at) - at - kOthers.size());
        for (std::string_view other : manager::Split(others, ',')) {
            other.remove_prefix(other.starts_with(' ') ? 1 : 0);
            const std::string line = path.substr(0, path.rfind(' ') + 1) + std::string(other);
            EXPECT_EQ(CtlJson(directory, line)["operation"], path);
            lines += line + "\n";
            names.push_back(path);
        }
    }
    EXPECT_GE(names.size(), 5U);
    const json batch = CtlJson(directory, "batch -", lines);
    ASSERT_EQ(batch["rows"].size(), names.size());
    for (size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(batch["rows"][i]["operation"], names[i]);
}

// docs/protocol.md is made from the daemon's own list.
TEST(Rsvpctl, KnowsTheStatusesOfTheSimulatedDaemon)
{
    std::ifstream page(PROTOCOL_PATH);
    std::vector<std::string> told;
    bool inList = false;
    for (std::string line; std::getline(page, line);) {
        inList = line == "Statuses of the simulated daemon:" || (inList && (line.empty() || line.starts_with("|")));
        if (inList && line.starts_with("| 0x6"))
            told.push_back(line);
    }
    std::vector<std::string> known;
    for (const rsvpctl::SimulatedStatus &own : rsvpctl::SimulatedStatuses())
        known.push_back(fmt::format("| {:#010x} | {} |", own.status, own.meaning));
    EXPECT_EQ(known, told);
}

TEST(Rsvpctl, TellsTheEndsOfAWalkApart)
{
    const struct {
        const char *fault;
        int exit;
        size_t rows;
        const char *end;
        const char *message;
    } cases[] = {
        {"", 0, 3, "end of table", "3 rows, end of table"},
        {"kind = \"close\"", 4, 1, "broken", "walk broken after 1 row"},
        {"kind = \"short\"", 4, 1, "broken", "walk broken after 1 row"},
        {"kind = \"wrong-body-length\"", 4, 1, "broken", "walk broken after 1 row"},
        {"kind = \"exit\"", 4, 1, "broken", "walk broken after 1 row"},
        {"kind = \"status\"\nnumber = 0x60010099", 4, 1, "broken", "0x60010099"},
        {"kind = \"stuck\"", 4, 1, "stuck", "walk stuck after 1 row"},
        {"kind = \"shifting\"\nonce = true", 0, 2, "end of table", "2 rows, end of table"},
    };
    for (const auto &row : cases) {
        for (const auto &[table, item, key] :
             {std::tuple("tunnels", 101, "tunnelWord0"), std::tuple("interfaces", 7, "ifWord1")}) {
            SCOPED_TRACE(std::string(table) + ": " + row.fault);
            const std::string fault =
                *row.fault == '\0' ? ""
                                   : fmt::format("[[fault]]\nclass = 3\nop = 5\nitem = {}\n{}\n", item, row.fault);
            for (const bool asJson : {false, true}) {
                const HostDirectory directory("[rows]\ntunnel = 3\ninterface = 3\n" + fault);
                ASSERT_EQ(Ctl(directory, "enable").exit, 0);
                const Result result = Ctl(directory, fmt::format("show {}{}", table, asJson ? " --json" : ""));
                EXPECT_EQ(result.exit, row.exit);
                if (!asJson) {
                    EXPECT_NE(result.err.find(row.message), std::string::npos) << result.err;
                    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), row.rows + 1) << result.out;
                    continue;
                }
                const json document = Document(result);
                EXPECT_EQ(document["rows"].size(), row.rows);
                EXPECT_EQ(document["count"], row.rows);
                EXPECT_EQ(document["end"], row.end);
                EXPECT_EQ(document["complete"], row.end == std::string("end of table"));
                EXPECT_EQ(document["rows"][0][key], 1);
                EXPECT_EQ(document.contains("after"), document["complete"] == false);
                EXPECT_EQ(document.contains("whatToDo"), document["complete"] == false);
            }
        }
    }
}

// A fault of the scenario for every question.
std::string FaultTable(const std::string &fault)
{
    const size_t equals = fault.find('=');
    const std::string number = equals == std::string::npos ? "" : "number = " + fault.substr(equals + 1) + "\n";
    return fmt::format("[[fault]]\nkind = \"{}\"\n{}class = 3\n", fault.substr(0, equals), number);
}

TEST(Rsvpctl, AFailureTellsHowFarItCame)
{
    const struct {
        const char *fault;
        int exit;
        const char *stage;
        const char *happened;
    } cases[] = {
        {"close", 4, "receive", "the daemon closed the session after"},
        {"short=3", 4, "reply", "expected at least the 8 bytes of a header, 3 came"},
        {"wrong-body-length", 4, "reply", "its header announces"},
        {"cut-item", 4, "reply", "bytes of items are not those of the answer"},
        {"status=0x60010099", 1, "refused", "the daemon answered with this status"},
        {"status=0x40010001", 1, "refused", "the daemon answered"}, // numbers of the library's own
        {"status=0x2001000e", 1, "refused", "the daemon answered"},
        {"status=0x6001001a", 1, "refused", "the daemon answered"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.fault);
        const HostDirectory directory(FaultTable(row.fault));
        ASSERT_EQ(Ctl(directory, "enable").exit, 0);
        const json document = CtlJson(directory, "show counters");
        EXPECT_EQ(document["exitStatus"], row.exit);
        EXPECT_EQ(document.value("stage", ""), row.stage) << document;
        EXPECT_NE(document.value("whatHappened", "").find(row.happened), std::string::npos) << document;
    }
}

// The daemon is stopped, or silent after a row, or its backlog is full; and what waits need not be a call on a
// session.
TEST(Rsvpctl, GivesUpWhenItsTimeIsOver)
{
    const HostDirectory directory("[rows]\nchop = 3\n[[fault]]\nkind = 'silent'\nop = 5\nitem = 105\n");
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    const auto givesUp = [&](const std::string &line, const std::string &says, const std::string &input = "") {
        SCOPED_TRACE(line);
        const Result result = Ctl(directory, line, input);
        EXPECT_EQ(result.exit, 6);
        EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
        return result;
    };
    givesUp("show hops computed --timeout 1s", "walk broken after 1 row; '--after 1,");
    givesUp("show hops computed --timeout 1s --sort hopIndex", "RSVP_GetNextCHop gave");
    const json rows = Document(givesUp("show hops computed --timeout 1s --json", "its time was over"));
    EXPECT_EQ(rows["rows"].size(), 1U);
    EXPECT_FALSE(rows["complete"]);
    // A line has a time of its own; that of the whole ends it, whatever may go on.
    const std::string lines = "show hops computed --timeout 50ms\nshow global\nshow hops computed\nshow global\n";
    const json batch =
        Document(givesUp("batch - --keep-going --timeout 2s --json", "4: batch: the time was over before", lines));
    EXPECT_EQ(batch["rows"][0]["exitStatus"], 6);
    EXPECT_EQ(batch["rows"][1]["exitStatus"], 0);
    EXPECT_EQ(batch["rows"].size(), 4U);
    EXPECT_FALSE(batch["complete"]);

    const pid_t daemon = std::stoi(directory.Read(rsvp_host::kLockFile));
    kill(daemon, SIGSTOP);
    givesUp("set interface 3 --timeout 50ms", "RSVP_MOR_SetRsvpEnable for 3 gave");
    givesUp("status --timeout=50ms", "RSVP_MOR_GetRsvpDebug: no answer after");
    givesUp("enable --timeout 50ms", "the daemon does not answer RSVP_MOR_GetRsvpDebug: no answer");
    givesUp("watch show psb --timeout 50ms --count 1", "failed");
    givesUp("watch status --timeout 50ms --count 1", "");
    mkfifo(directory.PathOf("pipe").c_str(), 0600);
    const std::string noKey = "set auth-key --key-file pipe --timeout 10ms";
    EXPECT_EQ(Document(givesUp(noKey + " --json", "given up after 10ms, waiting for"))["error"], "the time was over");
    givesUp("batch pipe --timeout 10ms", "given up after 10ms");

    sockaddr_un address{AF_UNIX, {}};
    directory.PathOf(rsvp_host::kSocketFile).copy(address.sun_path, sizeof(address.sun_path) - 1);
    std::vector<int> sessions;
    do
        sessions.push_back(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    while (connect(sessions.back(), reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0);
    EXPECT_EQ(errno, EAGAIN);
    givesUp("show psb --timeout 50ms", "connecting failed after");
    givesUp("set interface 3 --timeout 50ms", "connecting failed after");
    std::for_each(sessions.begin(), sessions.end(), close);
    kill(daemon, SIGCONT);

    directory.Write("slow", "#!/bin/sh\nwhile [ -e $2 ]; do sleep 0.1; done\n"); // a daemon that never gets ready
    chmod(directory.PathOf("slow").c_str(), 0700);
    EXPECT_EQ(Ctl(directory, "disable").exit, 0);
    setenv("RSVP_SIMD", directory.PathOf("slow").c_str(), 1);
    setenv("RSVP_HOST_RUNNER", "", 1);
    givesUp("enable --timeout 50ms", "given up after 50ms, waiting for RSVP_MOR_SetMplsRsvp(0)");
    for (const char *wrong : {"", "0", "-1s", "1 s", "2y"})
        EXPECT_EQ(Ctl(directory, fmt::format("status --timeout '{}'", wrong)).exit, 2) << wrong;
}

TEST(Rsvpctl, TheOptionFileIsReadByTheNamesOfItsOptions)
{
    const HostDirectory directory;
    std::filesystem::create_directory(directory.PathOf("etc"));
    const struct {
        const char *file;
        const char *names;
        int exit;
        const char *values;
    } cases[] = {
        {"plugin-option a=1 b=0x30\n", "a b c", 0, R"({"a":1,"b":48,"c":null})"},
        {"# only this\nplugin-option a=4294967295\n", "a", 0, R"({"a":4294967295})"},
        {"plugin-option\n", "a", 0, R"({"a":null})"},
        {"plugin-option a=1 b=2\n", "a", 4, "null"},
        {"plugin-option a=one\n", "a", 4, "null"},
        {"another word\n", "a", 4, "null"},
    };
    for (const auto &row : cases) {
        directory.Write("etc/te.conf", row.file);
        const json document = CtlJson(directory, std::string("options ") + row.names);
        EXPECT_EQ(document["exitStatus"], row.exit) << row.file;
        EXPECT_EQ(document.value("record", json()).dump(), row.values) << row.file;
    }
}

TEST(Rsvpctl, NothingIsDoneOrStoppedWhereTheStateCannotBeAsked)
{
    const HostDirectory directory;
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    const std::string nodes = directory.Read("nodes");
    for (const std::string &harm : {std::string("mode"), std::string("nodes")}) {
        if (harm == "mode")
            chmod(directory.PathOf("").c_str(), 0755);
        else
            directory.Write("nodes", "no such word\n");
        for (const char *line : {"status", "disable", "undo interface 3", "capability global off"}) {
            const Result result = Ctl(directory, line);
            EXPECT_EQ(result.exit, 4) << harm << ": " << line << "\n" << result.out << result.err;
            EXPECT_EQ(result.out.find("done"), std::string::npos) << result.out;
            EXPECT_EQ(result.out.find("stopped"), std::string::npos) << result.out;
        }
        chmod(directory.PathOf("").c_str(), 0700);
        directory.Write("nodes", nodes);
    }
    // What could not be asked was not touched: the daemon lives, and it is what "done" is about.
    EXPECT_EQ(Ctl(directory, "status").exit, 0);
    EXPECT_EQ(Ctl(directory, "disable").exit, 0);
}

TEST(Rsvpctl, WhatIsNotTextOrCannotBeWrittenIsNotSilence)
{
    const HostDirectory directory("[rows]\ntunnel = 2\n");
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    for (const std::string &line : {std::string("show glob\xff"), std::string("set peer \xff"),
                                    std::string("batch \xff"), std::string("show tunnels --after \xc3")}) {
        const json document = CtlJson(directory, line);
        EXPECT_EQ(document["exitStatus"], 2) << line;
    }
    const json batch = CtlJson(directory, "batch - --keep-going", "set peer \xff\nset peer 10.0.0.9\n");
    ASSERT_EQ(batch["rows"].size(), 2);
    EXPECT_EQ(batch["rows"][1]["exitStatus"], 0);
    // A descriptor that the caller closed is not the session's: the daemon gets requests and nothing else.
    for (const char *line : {"show tunnels", "show tunnels --json", "show global", "--help"}) {
        const Result result = Ctl(directory, line, "", program::Output::Closed);
        EXPECT_EQ(result.exit, 7) << line;
        EXPECT_NE(result.err.find("could not be written"), std::string::npos) << line << result.err;
    }
}

std::string TextOf(const std::string &path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    EXPECT_FALSE(text.str().empty()) << path;
    return text.str();
}

// A page is commands, each behind "$ rsvpctl ", and what they print.
TEST(Rsvpctl, ShowsEveryLineOfAPage)
{
    const std::string folder = PAGES_PATH;
    const std::string scenarios = SCENARIOS_PATH;
    const std::string made = TextOf(folder + "scenario.toml") + TextOf(scenarios + "p2mp.toml");
    for (const auto &[name, scenario] : {std::pair<std::string, std::string>{"details.txt", made},
                                         {"tree.txt", made},
                                         {"lsp.txt", TextOf(scenarios + "demo.toml")}}) {
        const HostDirectory directory(scenario);
        ASSERT_EQ(Ctl(directory, "enable").exit, 0);
        const std::string page = TextOf(folder + name);
        std::istringstream lines(page);
        std::string printed;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("$ rsvpctl "))
                printed += line + "\n" + Ctl(directory, line.substr(10)).out;
        }
        std::ofstream(name) << printed;
        EXPECT_EQ(printed, page) << "if this is meant: cp " << std::filesystem::absolute(name).string() << " "
                                 << folder;
    }
}

TEST(Rsvpctl, ShowsTheRowsThatAllOfItsOptionsChoose)
{
    const HostDirectory directory("[rows]\npsb = 3\nrsb = 2\nphsb = 2\ncrlsp = 2\n"
                                  "[[psb]]\nsession = { tunnelEndpoint = \"10.0.0.2\", tunnelId = 4, "
                                  "extendedTunnelId = \"10.0.0.4\" }\n"
                                  "sender = { senderAddress = \"10.0.0.10\", lspId = 13 }\n");
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    const struct {
        const char *line;
        size_t rows;
    } cases[] = {
        {"show psb", 4},
        {"show psb --end-point 10.0.0.2", 2},
        {"show psb --end-point 10.0.0.2 --tunnel-id 3", 1},
        {"show psb --end-point 10.0.0.2 --lsp-id 13", 1},
        {"show psb --end-point 10.0.0.1 --lsp-id 13", 0},
        {"show psb --sender 10.0.0.10 --tunnel-id 4", 1},
        {"show psb --sender 10.0.0.11 --tunnel-id 4", 0},
        {"show psb --sender 10.0.0.10 --lsp-id 12", 3},
        {"show rsb --end-point 10.0.0.2 --lsp-id 3", 1}, // of one of its filters
        {"show rsb --end-point 10.0.0.2 --lsp-id 5", 0},
        {"show phsb --sender 10.0.0.3 --lsp-id 5", 1},
        {"show phsb --sender 10.0.0.3 --lsp-id 4", 0}, // each of another filter
        {"show crlsp --sender 10.0.0.2 --tunnel-id 4 --lsp-id 5", 2},
        {"show crlsp --sender 10.0.0.2 --end-point 0.0.0.2", 1},
        {"show crlsp --sender 10.0.0.2 --tunnel-id 4 --lsp-id 6", 0},
        {"show crlsp --after 0.0.0.1,10.0.0.1,10.0.0.2,4,5,06060605", 2}, // the bytes belong to the key
        {"show crlsp --after 0.0.0.1,10.0.0.1,10.0.0.2,4,5,06060606", 1},
    };
    for (const auto &row : cases)
        EXPECT_EQ(CtlJson(directory, row.line)["rows"].size(), row.rows) << row.line;
    for (const char *bytes : {"060606", "0606060606", "0606060g", "0x060606"}) {
        const Result result = Ctl(directory, fmt::format("show crlsp --after 1,2,3,4,5,{}", bytes));
        EXPECT_EQ(result.exit, 2) << bytes;
        EXPECT_NE(result.err.find("keyTail takes 8 hex digits"), std::string::npos) << result.err;
    }
}

std::set<std::string> NamesOf(const json &document)
{
    std::set<std::string> names;
    for (const json &row : document["rows"])
        names.insert(row["name"].is_null() ? row["endPoint"] : row["name"]);
    return names;
}

TEST(Rsvpctl, AnLspIsChosenByWhatIsKnownOfIt)
{
    const HostDirectory directory(TextOf(std::string(SCENARIOS_PATH) + "demo.toml"));
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    const std::set<std::string> all{"bypass-900", "tunnel-100", "tunnel-200", "tunnel-300"};
    const struct {
        const char *options;
        std::set<std::string> names;
    } cases[] = {
        {"", all},
        {"tunnel-100", {"tunnel-100"}},
        {"--name 'tunnel-[12]*'", {"tunnel-100", "tunnel-200"}},
        {"--end-point 10.0.0.4 --sender 10.0.0.1", {"tunnel-100"}},
        {"--tunnel-id 200 --lsp-id 1", {"tunnel-200"}},
        {"--interface 2", {"bypass-900"}},
        {"--role head", {"bypass-900", "tunnel-100"}},
        {"--role tail", {"tunnel-300"}},
        {"--protected", {"tunnel-100", "tunnel-200"}},
        {"--up", all},
        {"--down", {}},
        {"--role head --protected", {"tunnel-100"}},
        // Without the words of a daemon: the hops alone tell what begins here and what passes.
        {"--dictionary none", {"10.0.0.1", "10.0.0.2", "10.0.0.4"}},
        {"--dictionary none --role head", {"10.0.0.2", "10.0.0.4"}},
        {"--dictionary none --role transit", {"10.0.0.4"}},
    };
    for (const auto &row : cases)
        EXPECT_EQ(NamesOf(CtlJson(directory, fmt::format("show lsp {}", row.options))), row.names) << row.options;
    const struct {
        const char *options;
        int exit;
        const char *message;
    } refused[] = {
        {"tunel-100", 1, "there is no LSP 'tunel-100'; did you mean 'tunnel-100'?"},
        {"tunnel-100 --limit 1", 2, "excludes --limit"},
        {"--role middle", 2, "takes head or transit or tail, not 'middle'"},
        {"--up --down", 2, "excludes"},
        {"--dictionary none tunnel-100", 2, "no name for the key of CR-LSPs"},
        {"--dictionary none --name 't*'", 2, "no name for the key of CR-LSPs"},
        {"--dictionary none --interface 1", 2, "no name for the 'interface' of CR-LSPs"},
        {"--dictionary none --protected", 2, "no name for the 'protection' of CR-LSPs"},
        {"--dictionary none --down", 2, "no name for 'down'"},
        {"--dictionary none --role tail", 2, "no name for 'tail'"},
    };
    for (const auto &row : refused) {
        const Result result = Ctl(directory, fmt::format("show lsp {}", row.options));
        EXPECT_EQ(result.exit, row.exit) << row.options;
        EXPECT_NE(result.err.find(row.message), std::string::npos) << result.err;
    }
}

TEST(Rsvpctl, AnLspIsShownWithoutTheTableThatBroke)
{
    // The table by its item, and what of tunnel 200, and of nothing else, it alone tells.
    const struct {
        const char *table;
        int item;
        const char *fault;
        const char *end;
        std::vector<const char *> lost;
    } cases[] = {
        {"crlsp", 1, "status=0x60010099", "broken", {"name", "interface", "upTime", "protection", "bypassName"}},
        {"psb", 8, "close", "broken", {"askedRate", "setupPriority", "holdingPriority", "attributes"}},
        {"rsb", 5, "stuck", "stuck", {"labelOut"}},
        {"phsb", 4, "short=3", "broken", {"labelIn"}},
    };
    const std::string demo = TextOf(std::string(SCENARIOS_PATH) + "demo.toml");
    for (const auto &row : cases) {
        SCOPED_TRACE(row.table);
        const HostDirectory directory(demo + FaultTable(row.fault) + fmt::format("item = {}\n", row.item));
        ASSERT_EQ(Ctl(directory, "enable").exit, 0);
        const json document = CtlJson(directory, "show lsp --tunnel-id 200");
        EXPECT_EQ(document["exitStatus"], 4);
        EXPECT_EQ(document["complete"], false);
        ASSERT_EQ(document["rows"].size(), 1U);
        EXPECT_EQ(document["tables"].size(), 7U);
        for (const json &table : document["tables"]) {
            const bool broke = table["table"] == row.table;
            EXPECT_EQ(table["end"], broke ? row.end : "end of table") << table;
            EXPECT_EQ(table["whatToDo"].is_null(), !broke);
        }
        const json &lsp = document["rows"][0];
        EXPECT_EQ(lsp["role"], "transit");
        for (const char *member : row.lost)
            EXPECT_TRUE(lsp[member].is_null()) << member << lsp;
        EXPECT_EQ(std::count_if(lsp.begin(), lsp.end(), [](const json &value) { return value.is_null(); }),
                  row.lost.size());
    }
}

TEST(Rsvpctl, ATreeFindsItsKey)
{
    const auto lsp = [](const char *name, int p2mpId, int tunnel) {
        return fmt::format("[[p2mpCrlsp]]\nrequestKey = {{ keyWord0 = {0}, keyShort0 = {1} }}\n"
                           "key = {{ keyWord0 = {0}, keyShort0 = {1} }}\nname = \"{2}\"\n",
                           p2mpId, tunnel, name);
    };
    const HostDirectory directory(lsp("news", 1, 7) + lsp("sport", 2, 8) + lsp("sport", 3, 9) + lsp("films", 4, 7));
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    const struct {
        const char *options;
        int exit;
        const char *text;
    } cases[] = {
        {"news", 0, "news, P2MP 1, tunnel 7"},
        {"sport --tunnel-id 9", 0, "sport, P2MP 3, tunnel 9"},
        {"--tunnel-id 8", 0, "sport, P2MP 2, tunnel 8"},
        {"new", 1, "no point-to-multipoint LSP with the name 'new'; did you mean 'news'?"},
        {"--tunnel-id 6", 1, "no point-to-multipoint LSP of tunnel 6"},
        {"sport", 2,
         "there are 2 point-to-multipoint LSPs with the name 'sport'; type one of 'tree --key 2,0,0,8,0,0,0,0"},
        {"--tunnel-id 7", 2, " for films"},
        {"news --key 1", 2, "excludes --key"},
        {"", 2, "NAME, --tunnel-id, --key or --key-file is needed"},
        {"news --dictionary none", 2, "give --key"},
    };
    for (const auto &row : cases) {
        const Result result = Ctl(directory, fmt::format("tree {}", row.options));
        EXPECT_EQ(result.exit, row.exit) << row.options;
        EXPECT_NE((result.out + result.err).find(row.text), std::string::npos) << result.out << result.err;
    }
}

TEST(Rsvpctl, NothingFromOutsideSteersTheTerminal)
{
    const struct {
        const char *text;
        const char *shown;
    } cases[] = {
        {"plain", "plain"},
        {"\x1b[2J\n\t\x7f", "\\x1b[2J\\x0a\\x09\\x7f"},
        {"\xc2\x9b", "\\xc2\\x9b"}, // what begins a sequence in eight bits
        {"\x9b \xff", "\\x9b \\xff"},
        {"\xc1\x9b\xe0\x82\x9b\xf0\x80\x82\x9b",
         "\\xc1\\x9b\\xe0\\x82\\x9b\\xf0\\x80\\x82\\x9b"}, // longer than need be
        {"\xf8\x90\x80\x80\x80\xf4\x90\x80\x80", "\\xf8\\x90\\x80\\x80\\x80\\xf4\\x90\\x80\\x80"},
        {"\xc2\xa0\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80", "\xc2\xa0\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"},
        {"\xe2\x82", "\\xe2\\x82"}, // cut
    };
    for (const auto &row : cases)
        EXPECT_EQ(manager::HarmlessText(row.text), row.shown);

    const HostDirectory directory;
    const std::string hostile = "x\x1b[2J\xc2\x9b\x7fy";
    directory.Write("key.json", "{\"x\\u001b[2J\xc2\x9b\x7fy\\nrsvpctl: z\": 1}");
    directory.Write("commands", "set '" + hostile + "'\n");
    std::filesystem::create_directory(directory.PathOf("etc"));
    directory.Write("etc/te.conf", "plugin-option " + hostile + "=1\n");
    for (const std::string &line :
         {std::string("tree --key-file key.json"), std::string("batch commands"), "options '" + hostile + "'"}) {
        for (const char *style : {"", " --json"}) {
            const Result result = Ctl(directory, line + style);
            const std::string all = result.out + result.err;
            EXPECT_NE(all.find("[2J"), std::string::npos) << line;
            EXPECT_EQ(all.find_first_of("\x1b\x9b\x7f"), std::string::npos) << line << style;
            EXPECT_EQ(all.find("\nrsvpctl: z"), std::string::npos) << "a name is no message";
        }
    }
}

TEST(Rsvpctl, InputWithoutAnEndIsRefused)
{
    const HostDirectory directory;
    const struct {
        const char *line;
        int exit;
        const char *err;
    } cases[] = {
        {"tree --key-file /dev/zero", 2, "/dev/zero: has more than 65536 bytes"},
        {"set auth-key --key-file /dev/zero", 2, "/dev/zero: a key has at most 68 bytes"},
        {"batch /dev/zero --keep-going", 4, "/dev/zero:1: batch: the line has more than 65536 bytes"},
        {"batch . --keep-going", 4, "the file cannot be read: Is a directory"},
    };
    for (const auto &row : cases) {
        const Result result = Ctl(directory, row.line);
        EXPECT_EQ(result.exit, row.exit) << row.line;
        EXPECT_NE(result.err.find(row.err), std::string::npos) << row.line << "\n" << result.err;
    }
    const std::string cut("set peer 10.0.0.9\0x\n", 20);
    EXPECT_EQ(CtlJson(directory, "batch -", cut)["rows"][0]["exitStatus"], 2)
        << "what is behind a byte 0 is not dropped";
    directory.Write("key.json", R"({"keyWord0": "10.0.0.9\u0000x"})");
    EXPECT_NE(Ctl(directory, "tree --key-file key.json").err.find("keyWord0 takes"), std::string::npos);
}

TEST(Rsvpctl, ABatchIsNotTheKeyOfItsOwnLines)
{
    const HostDirectory directory;
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    directory.Write("key.txt", "a key\n");
    ASSERT_EQ(symlink("commands", directory.PathOf("other").c_str()), 0);
    for (const char *name : {"-", "/dev/stdin", "/proc/self/fd/0"}) {
        const json document =
            CtlJson(directory, "batch -", std::string("set auth-key --key-file ") + name + "\nset interface 3\n");
        EXPECT_EQ(document["exitStatus"], 2) << name;
        EXPECT_EQ(document["rows"].size(), 1) << "the next line was not taken for the key";
    }
    const std::pair<const char *, const char *> others[] = {
        {"completion bash", "completion bash"}, {"batch other", "batch"}, {"watch status --count 1", "watch status"}};
    for (const auto &[line, name] : others)
        EXPECT_EQ(CtlJson(directory, "batch -", line)["rows"][0]["error"],
                  std::string(name) + ": cannot be used in a batch");
    directory.Write("commands", "set auth-key --key-file key.txt\nset auth-key --key-file other\n");
    EXPECT_EQ(CtlJson(directory, "batch commands")["rows"][1]["exitStatus"], 2);
}

TEST(Rsvpctl, BatchNamesTheLineAndStopsWhereItIsTold)
{
    const std::string text = "# what the line numbers count\n\nset interface 3\nset interface 4 # and a comment\n\n"
                             "set peer '10.0.0.9'\nset hello-interval 300\nset interface 5\nshow interfaces 77\n";
    const struct {
        const char *options;
        int exit;
        const char *stoppedBehind; // line numbers that have a document
        size_t interfaces;
    } cases[] = {
        {"", 2, "[3,4,6,7]", 2},
        {"--keep-going", 2, "[3,4,6,7,8,9]", 3},
        {"--dry-run", 2, "[3,4,6,7,8,9]", 0},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.options);
        const HostDirectory directory;
        directory.Write("commands", text);
        ASSERT_EQ(Ctl(directory, "enable").exit, 0);
        const json document = CtlJson(directory, fmt::format("batch commands {}", row.options));
        json lines = json::array();
        for (const json &line : document["rows"])
            lines.push_back(line["line"]);
        EXPECT_EQ(document["exitStatus"], row.exit);
        EXPECT_EQ(lines.dump(), row.stoppedBehind);
        EXPECT_EQ(document["rows"][3]["exitStatus"], 2);
        EXPECT_EQ(CtlJson(directory, "show interfaces")["rows"].size(), row.interfaces);
        const Result plain = Ctl(directory, fmt::format("batch - {}", row.options), text);
        EXPECT_NE(plain.err.find("standard input:7: set hello-interval"), std::string::npos) << plain.err;
    }
}

// A daemon that says yes to everything and keeps what it was sent.
class Recorder {
public:
    explicit Recorder(const std::string &directory) : instance_(directory), thread_([this] { Serve(); }) {}
    ~Recorder() { Stop(); }

    std::vector<rsvpsimd::Bytes> Stop()
    {
        if (thread_.joinable()) {
            eventfd_write(stop_, 1);
            thread_.join();
            close(stop_);
        }
        return frames_;
    }

private:
    void Serve()
    {
        pollfd watched[] = {{instance_.Listener(), POLLIN, 0}, {stop_, POLLIN, 0}};
        while (poll(watched, 2, -1) > 0 && watched[1].revents == 0) {
            const int client = accept(instance_.Listener(), nullptr, nullptr);
            rsvpsimd::Bytes frame(RSVP_MOR_MSG_MAX);
            for (ssize_t got; (got = recv(client, frame.data(), frame.size(), 0)) > 0;) {
                frames_.emplace_back(frame.begin(), frame.begin() + got);
                const rsvpsimd::Bytes reply = rsvpsimd::BuildFrame(frame[0], frame[1], 0, {});
                send(client, reply.data(), reply.size(), MSG_NOSIGNAL);
            }
            close(client);
        }
    }

    rsvpsimd::Instance instance_;
    int stop_ = eventfd(0, EFD_NONBLOCK);
    std::vector<rsvpsimd::Bytes> frames_;
    std::thread thread_;
};

// A line for each setting at each level, and for each way of taking it back.
std::string EverySetting()
{
    std::string lines;
    for (const rsvpctl::Setting &setting : rsvpctl::AllSettings()) {
        const std::string_view name = setting.name;
        std::string where;
        if (setting.level == rsvpctl::Level::Interface)
            where = name == "interface" ? " 66051" : " --interface 66051";
        else if (setting.level == rsvpctl::Level::Peer)
            where = name == "peer" ? " 10.0.0.9" : " --peer 10.0.0.9";
        constexpr const char *kValues[] = {"", " 0xab", " 0x1234", " 0x12345678", " 0x1234 0x5678"};
        const std::string value = setting.kind == rsvpctl::ValueKind::Key
                                      ? " --key-file key.txt"
                                      : kValues[static_cast<size_t>(setting.kind)];
        const std::string fitting = setting.most == 0 ? value : fmt::format(" {:#x}", setting.most);
        lines += fmt::format("set {}{}{}\n", name, fitting, where);
        if (setting.undo != rsvpctl::Undo::None)
            lines += fmt::format("undo {}{}{}\n", name, fitting, where);
    }
    return lines;
}

TEST(Rsvpctl, ADryRunPrintsWhatIsSent)
{
    const HostDirectory directory;
    directory.Write("key.txt", "a key that nobody sees\n");
    const std::string session = " --endpoint 10.0.0.4 --tunnel-id 4660 --extended-tunnel-id 10.0.0.1\n";
    directory.Write("commands", EverySetting() + "debug set 4\ndebug undo 0x12345678\ndebug set 16" + session +
                                    "debug undo 64" + session +
                                    "capability interface 66051 on\ncapability interface 66051 off\n"
                                    "reset statistics 66051,4660\nreset auth 66051,66052,4660,4661\n");
    const std::string batch = "batch commands";
    const json planned = CtlJson(directory, batch + " --dry-run"); // nobody is there to be asked

    std::vector<rsvpsimd::Bytes> frames;
    {
        Recorder recorder(directory.PathOf(""));
        EXPECT_EQ(CtlJson(directory, batch)["exitStatus"], 0);
        frames = recorder.Stop();
    }
    ASSERT_GE(frames.size(), 2 * rsvpctl::AllSettings().size() - 12);
    ASSERT_EQ(planned["rows"].size(), frames.size());
    for (size_t i = 0; i < frames.size(); ++i) {
        const auto message = rsvpsimd::ReadMessage(frames[i]);
        ASSERT_TRUE(message) << i;
        json items = json::array();
        for (const rsvpsimd::Item &item : message->items) {
            const bool key = item.value.size() == RSVP_MOR_AUTH_KEY_SIZE;
            items.push_back({{"type", item.type},
                             {"length", item.value.size()},
                             {"value", key ? "hidden" : fmt::format("{:02x}", fmt::join(item.value, ""))}});
        }
        const json sent = {{"class", message->msgClass}, {"op", message->op}, {"items", items}};
        json request = planned["rows"][i]["requests"].at(0);
        for (json &item : request["items"])
            EXPECT_NE(item["meaning"].get<std::string>(), "") << item;
        for (json &item : request["items"])
            item.erase("meaning");
        EXPECT_EQ(request, sent) << planned["rows"][i];
    }
}

TEST(Rsvpctl, ATraceGoesToAFileOfItsOwn)
{
    const HostDirectory directory;
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    directory.Write("kept", "");
    std::filesystem::create_symlink("kept", directory.PathOf("link"));
    mkfifo(directory.PathOf("pipe").c_str(), 0600);
    for (const char *wrong : {"link", "pipe", "/dev/full", "no/file", "."}) {
        const Result result = Ctl(directory, fmt::format("set interface 3 --trace={}", wrong));
        EXPECT_EQ(result.exit, 2) << wrong;
        EXPECT_NE(result.err.find("--trace: " + std::string(wrong)), std::string::npos) << result.err;
    }
    EXPECT_EQ(CtlJson(directory, "show interfaces")["rows"].size(), 0U) << "nothing was sent before";
    EXPECT_EQ(Ctl(directory, "set interface 3 --trace=new").exit, 0);
    EXPECT_EQ(Ctl(directory, "watch status --count 1 --trace=new").exit, 0);
    EXPECT_EQ(std::filesystem::status(directory.PathOf("new")).permissions(), std::filesystem::perms(0600));
    const std::string trace = directory.Read("new");
    EXPECT_NE(trace.find(" 1 > interface set "), std::string::npos) << trace;
    EXPECT_NE(trace.find(" 2 < show get status 0x00000000 upLspNumber"), std::string::npos) << trace;
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{directory.Read("new").size() + 20, before.rlim_max};
    EXPECT_EQ(Ctl(directory, "set interface 3 --trace-hex").exit, 2);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    (void)std::signal(SIGXFSZ, SIG_IGN);
    const Result cut = Ctl(directory, "show global --trace=new");
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(cut.exit, 7) << cut.err;
    EXPECT_NE(cut.err.find("the trace could not be written"), std::string::npos) << cut.err;
}

TEST(Rsvpctl, KeysAreNeverSeen)
{
    const HostDirectory directory("trace = true");
    const std::string secret = "hunter2-hunter2";
    directory.Write("key.txt", secret + "\n");
    std::string seen;
    for (const std::string line :
         {"enable", "set auth-key --key-file key.txt", "set interface 3",
          "set auth-key --interface 3 --key-file key.txt", "set auth-key --peer 10.0.0.9 --key-file -", "show global",
          "show interfaces", "show auth", "undo auth-key --key-file key.txt"}) {
        for (const char *style : {"", " --json", " --detail", " --trace --trace-hex"}) {
            const Result result = Ctl(directory, line + style, secret);
            const bool unknown = *style != '\0' && style == std::string(" --detail") && !line.starts_with("show");
            EXPECT_EQ(result.exit, unknown ? 2 : 0) << line << result.err;
            seen += result.out + result.err;
        }
    }
    // Where a user takes the key for an argument, nothing repeats it.
    for (const char *wrong :
         {"{}", "--key {}", "--{}", "--kye-file={}", "--interface {}", "--peer={}", "--color {}",
          "--interface 3 --key-file key.txt {}", "-- {}", "--json={}", "--timeout {}", "--timeout={}"}) {
        const std::string line = "set auth-key " + fmt::format(fmt::runtime(wrong), secret);
        for (const Result &result : {Ctl(directory, line), Ctl(directory, line + " --json"),
                                     Ctl(directory, "batch -", line + "\nundo" + line.substr(3) + "\n"),
                                     Ctl(directory, "batch -", "sett" + line.substr(3) + "\n")}) {
            EXPECT_EQ(result.exit, 2) << line;
            seen += result.out + result.err;
        }
    }
    seen += Ctl(directory, "batch - --dry-run", "set auth-key --key-file key.txt\n").out;
    EXPECT_NE(seen.find("hidden"), std::string::npos);
    seen += directory.Log();
    EXPECT_NE(seen.find("authKey=********"), std::string::npos);
    EXPECT_EQ(seen.find(secret.substr(0, 7)), std::string::npos);
    EXPECT_EQ(seen.find("68756e746572"), std::string::npos); // the same in hex
    EXPECT_NE(seen.find("2a 2a 2a 2a"), std::string::npos);
    EXPECT_EQ(seen.find("68 75 6e"), std::string::npos);

    // A key goes in through a file alone, is padded with zeros, and is refused if it is too long or missing.
    EXPECT_EQ(Ctl(directory, "set auth-key " + secret).exit, 2);
    EXPECT_EQ(Ctl(directory, "set auth-key --key-file -", std::string(69, 'x')).exit, 2);
    EXPECT_EQ(Ctl(directory, "set auth-key --key-file -", "\n").exit, 2);
    for (const std::string &key : {secret, std::string(68, 'y')}) {
        EXPECT_EQ(Ctl(directory, "set auth-key --key-file -", key + "\n").exit, 0);
        const int32_t fd = RSVP_MOR_LIPCOpen();
        RSVP_MOR_GlobalInfo info;
        EXPECT_EQ(RSVP_MOR_GetGlobalInfo(fd, &info), RSVP_MOR_OK);
        RSVP_MOR_LIPCClose(fd);
        EXPECT_EQ(std::string(info.authKey, std::end(info.authKey)), key + std::string(68 - key.size(), '\0'));
    }
}

TEST(Rsvpctl, NumbersThatDoNotFitAreRefusedBeforeAnythingIsSent)
{
    const HostDirectory directory; // without a daemon: whatever is sent would fail in another way
    std::string lines;
    std::string fitting;
    size_t count = 0;
    for (const rsvpctl::Setting &setting : rsvpctl::AllSettings()) {
        if (setting.argument == nullptr)
            continue;
        const uint64_t most = rsvpctl::MaximumOf(setting);
        const std::string where = setting.level == rsvpctl::Level::Interface ? " --interface 3"
                                  : setting.level == rsvpctl::Level::Peer    ? " --peer 10.0.0.9"
                                                                             : "";
        const bool pair = setting.kind == rsvpctl::ValueKind::Pair;
        for (const std::string &value : {std::to_string(most + 1), fmt::format("{:#x}", most + 1), std::string("-1"),
                                         std::string("1x"), std::string("0x"), std::string("18446744073709551616")}) {
            lines += fmt::format("set {} {}{}{}\n", setting.name, pair ? "1 " : "", value, where);
            ++count;
        }
        fitting += fmt::format("set {} {}{}{}\n", setting.name, pair ? "1 " : "", most, where);
    }
    lines += "set bfd --interface 4294967296\nset peer 10.0.0.256\nset peer 1.2.3\n";
    const json refused = CtlJson(directory, "batch - --keep-going", lines);
    ASSERT_EQ(refused["rows"].size(), count + 3);
    for (const json &row : refused["rows"])
        EXPECT_EQ(row["exitStatus"], 2) << row;
    const json taken = CtlJson(directory, "batch - --keep-going", fitting);
    for (const json &row : taken["rows"])
        EXPECT_TRUE(row["exitStatus"] == 3 || row["exitStatus"] == 5) << row;
}

TEST(Rsvpctl, AKeyThatIsNotOneIsRefusedByTheNameOfItsField)
{
    const HostDirectory directory("[rows]\np2mpCrlsp = 1\n");
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    // A whole key, in which one field is another one each time.
    const auto file = [](const std::string &first) {
        std::string text = "{" + first;
        for (const char *name : {"keyWord1", "keyWord2", "keyShort0", "keyShort1", "keyShort2", "keyShort3",
                                 "keyWord3", "keyWord4", "keyWord5", "keyWord6"})
            text += fmt::format(", \"{}\": 0", name);
        return text + "}";
    };
    const struct {
        std::string text;
        int exit;
        const char *err;
    } cases[] = {
        {file("\"keyWord0\": 1"), 0, ""},
        {file("\"keyWord0\": \"0.0.0.1\""), 0, ""},
        {file("\"keyWord0\": \"500,1\""), 2, "keyWord0 takes an IPv4 address or 0 to 4294967295, not '500,1'"},
        {file("\"keyWord0\": -1"), 2, "keyWord0 takes"},
        {file("\"keyWord0\": 1.5"), 2, "keyWord0 takes a whole number or a text"},
        {file("\"keyWord0\": 1e400"), 2, "has a number that no field holds"},
        {file("\"keyWord0\": 1, \"keyWord0\": 2"), 2, "keyWord0 is given twice"},
        {file("\"key\": {\"a\": 1}"), 2, "there is no field 'key.a'; the key is keyWord0,"},
        {file("\"keyShort0\": 1"), 2, "keyShort0 is given twice"},
        {"{\"keyWord0\": 1}", 2, "no value for keyWord1, keyWord2,"},
        {"[1]", 2, "is not a JSON object"},
        {"{\"keyWord0\"", 2, "is not JSON, at byte"},
    };
    for (const auto &row : cases) {
        directory.Write("key.json", row.text);
        const Result result = Ctl(directory, "show p2mp crlsp --key-file " + directory.PathOf("key.json"));
        EXPECT_EQ(result.exit, row.exit) << row.text << "\n" << result.err;
        EXPECT_NE(result.err.find(row.err), std::string::npos) << row.text << "\n" << result.err;
    }
    EXPECT_EQ(Ctl(directory, "tree --key-file -", file("\"keyWord0\": 1")).exit, 0);
    EXPECT_NE(Ctl(directory, "tree --key-file -", "[1]").err.find("-: is not a JSON object"), std::string::npos);
    const std::string tree = "tree --key 1 0.0.0.0 0 0 0 0 0 0 0 0 0";
    EXPECT_EQ(Ctl(directory, tree).exit, 0);
    const Result noLeaf = Ctl(directory, tree + " --leaf 10.9.9.9");
    EXPECT_EQ(noLeaf.exit, 1);
    EXPECT_NE(noLeaf.err.find("no leaf 10.9.9.9 (leaves: 1)"), std::string::npos) << noLeaf.err;
    EXPECT_NE(Ctl(directory, "tree --key 1,0").err.find("takes 11 values (keyWord0,"), std::string::npos);
}

TEST(Rsvpctl, EnablesAndDisablesTheNodesOfOneDeviceAlone)
{
    const HostDirectory device;
    const HostDirectory other;
    device.Write("nodes", "master 7\nstandby 8 9\n");
    EXPECT_EQ(Ctl(device, "enable").exit, 0);
    EXPECT_EQ(Ctl(device, "enable").exit, 0); // all of it is done already
    EXPECT_EQ(device.Read("service/8") + device.Read("service/9"), "1\n1\n");
    const std::string pid = device.Read(rsvp_host::kLockFile);
    kill(std::stoi(pid), SIGSTOP);
    EXPECT_EQ(Ctl(device, "enable").exit, 4) << "a daemon that hangs";
    kill(std::stoi(pid), SIGCONT);
    EXPECT_EQ(Ctl(other, "status").exit, 5);

    EXPECT_EQ(Ctl(other, "enable").exit, 0);
    EXPECT_EQ(Ctl(device, "set interface 3").exit, 0);
    EXPECT_EQ(CtlJson(device, "show interfaces")["rows"].size(), 1U);
    EXPECT_EQ(CtlJson(other, "show interfaces")["rows"].size(), 0U);
    EXPECT_EQ(Ctl(other, "disable").exit, 0);
    EXPECT_EQ(Ctl(device, "status").exit, 0);
    EXPECT_EQ(device.Read(rsvp_host::kLockFile), pid);

    EXPECT_EQ(Ctl(device, "disable").exit, 0);
    EXPECT_EQ(device.Read("service/8") + device.Read("service/9"), "");
    EXPECT_NE(access(device.PathOf(rsvp_host::kSocketFile).c_str(), F_OK), 0);
    const json status = CtlJson(device, "status");
    EXPECT_EQ(status["record"]["service"], "stopped");
    EXPECT_EQ(status["status"], RSVP_MOR_ERR_NOT_ENABLED);
}

// A watched table, told in words: "changed 1 /statWord3 10/s", one word a field.
class Watched {
public:
    std::vector<std::string> Poll(const std::vector<std::string> &rows, double seconds, bool complete = true)
    {
        for (const std::string &row : rows)
            changes_.Row(row, seconds);
        std::vector<std::string> events;
        changes_.EndPoll(complete, seconds, [&](const rsvpctl::RowEvent &event) {
            constexpr const char *kNames[] = {"added", "changed", "removed"};
            EXPECT_EQ(event.seconds, seconds);
            EXPECT_EQ(event.key["row"], event.row["row"]);
            events.push_back(fmt::format("{} {}", kNames[static_cast<size_t>(event.kind)], event.key["row"].dump()));
            for (const rsvpctl::FieldChange &change : event.changes)
                events.back() +=
                    " " + change.field + (change.perSecond ? fmt::format(" {}/s", *change.perSecond) : "");
            return true;
        });
        return events;
    }

private:
    rsvpctl::RowChanges changes_{{.key = {"/row"}, .counters = {"/statWord3"}}};
};

TEST(Rsvpctl, AWatchedCounterIsARateUntilItIsCleared)
{
    const struct {
        const char *field;
        const char *before;
        const char *after;
        const char *rate;
    } cases[] = {
        {"statWord3", "10", "30", " 10/s"}, {"statWord3", "4294967290", "6", " 6/s"}, // round the end of 32 bits
        {"statWord3", "5000", "0", ""},     {"upLsps", "10", "30", ""},
        {"statWord3", "null", "30", ""},
    };
    for (const auto &row : cases) {
        Watched watched;
        const auto text = [&](const char *value) { return fmt::format("{{\"row\":1,\"{}\":{}}}", row.field, value); };
        EXPECT_EQ(watched.Poll({text(row.before)}, 90), (std::vector<std::string>{"added 1"}));
        EXPECT_TRUE(watched.Poll({text(row.before)}, 100).empty()) << "as it was";
        EXPECT_EQ(watched.Poll({text(row.after)}, 102),
                  (std::vector<std::string>{fmt::format("changed 1 /{}{}", row.field, row.rate)}));
    }
}

TEST(Rsvpctl, AWatchTellsWhatChangedFromWhatWasNotSeen)
{
    using Rows = std::vector<std::string>;
    const std::string a = R"({"row":1,"x":1})", b = R"({"row":2,"x":1})", c = R"({"row":3,"x":1})";
    const std::string otherA = R"({"row":1,"x":2})", otherB = R"({"row":2,"y":1})";
    const struct {
        Rows rows;
        bool complete;
        Rows events;
    } polls[] = {
        {{b, a}, true, {"added 2", "added 1"}},
        {{c}, false, {"added 3"}}, // nothing is known of the others
        {{a, b, c}, true, {}},
        {{otherA}, false, {"changed 1 /x"}}, // the text before is forgotten, so that it can come again
        {{a, b, b, c}, true, {"changed 1 /x"}},
        {{otherB, a, otherA}, true, {"changed 2 /y /x", "added 1", "removed 3"}}, // two rows of a key are two
        {{}, true, {"removed 1", "removed 1", "removed 2"}},
    };
    Watched watched;
    for (const auto &poll : polls)
        EXPECT_EQ(watched.Poll(poll.rows, 1, poll.complete), poll.events) << &poll - polls;
}

TEST(Rsvpctl, AWatchOfATableWithoutAnEndEnds)
{
    constexpr size_t kMostBytes = 10000;
    rsvpctl::RowChanges changes({.key = {"/row"}}, kMostBytes);
    size_t number = 0;
    const auto addRows = [&](size_t count) {
        for (size_t i = 0; i < count; ++i)
            changes.Row(fmt::format("{{\"row\":{}}}", number++), 1);
    };
    for (int poll = 0; poll < 100; ++poll) { // what is gone does not count
        addRows(10);
        changes.EndPoll(true, 1, nullptr);
    }
    for (int poll = 0; poll < 2; ++poll) { // what was not seen again does
        addRows(10);
        changes.EndPoll(false, 1, nullptr);
    }
    EXPECT_EQ(changes.Rows(), 30);
    EXPECT_THROW(addRows(kMostBytes), std::length_error);
}

TEST(Rsvpctl, ADurationIsANumberWithAUnit)
{
    const struct {
        const char *text;
        int64_t milliseconds; // -1: refused
        const char *again;
    } cases[] = {
        {"500ms", 500, "500ms"}, {"2s", 2000, "2s"},       {"2", 2000, "2s"}, {"0.1", 100, "100ms"},
        {"1.5m", 90000, "90s"},  {"24h", 86400000, "24h"}, {"", -1, ""},      {"s", -1, ""},
        {"1 s", -1, ""},         {"-1s", -1, ""},          {"1d", -1, ""},    {"nan", -1, ""},
        {"1e3", -1, ""},         {"infs", -1, ""},         {"9999h", -1, ""},
    };
    for (const auto &row : cases) {
        const auto duration = manager::ParseDuration(row.text);
        EXPECT_EQ(duration ? duration->count() : -1, row.milliseconds) << row.text;
        EXPECT_EQ(duration ? manager::DurationText(*duration) : "", row.again);
    }
}

TEST(Rsvpctl, AReaderThatGoesAwayIsNoFailure)
{
    const HostDirectory directory("[rows]\ntunnel = 1000\n");
    ASSERT_EQ(Ctl(directory, "enable").exit, 0);
    for (const char *line : {"show tunnels", "show tunnels --json", "show global", "batch -"}) {
        const Result result = Ctl(directory, line, "show tunnels\nshow global\n", program::Output::ReaderGone);
        EXPECT_EQ(result.exit, 0) << line;
        EXPECT_EQ(result.err, "") << line;
    }
    // The walk was given up at its first rows, not carried to its end.
    const json counts = CtlJson(directory, "show global")["record"];
    EXPECT_LT(counts["statWord3"], 100);
}

} // namespace
