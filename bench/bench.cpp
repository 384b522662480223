// The benchmark: one table with a row for each promise, the bound next to what was measured. The exit status is 1 if
// a bound is broken that does not depend on the machine's load.
#include "calls.h"

#include "rsvp_mor.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sched.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using benchmark::State;
using rsvpsimd::Bytes;

namespace {

using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

std::string programs; // the folder of this build's programs
std::string armLibrary;
std::string directory;

double Since(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

template <typename Function> double Time(const Function &function)
{
    const auto start = Clock::now();
    function();
    return Since(start);
}

// All programs run on one processor, as they take turns anyway. Otherwise the system sometimes spreads them over two,
// and a call takes six times as long.
void StayOnOneProcessor()
{
    cpu_set_t here;
    CPU_ZERO(&here);
    CPU_SET(sched_getcpu(), &here);
    if (sched_setaffinity(0, sizeof(here), &here) != 0)
        bench::Fail("cannot stay on one processor");
}

double Percentile(std::vector<double> times, double part)
{
    const auto at = times.begin() + static_cast<ptrdiff_t>(part * static_cast<double>(times.size() - 1));
    std::nth_element(times.begin(), at, times.end());
    return *at;
}

// One row of the table: what was measured, what it is compared with, and the result that the bound is for.
void Row(State &state, double measured, double against, double result, double bound, bool exact = false)
{
    state.counters["measured"] = measured;
    state.counters["against"] = against;
    state.counters["result"] = result;
    state.counters["bound"] = bound;
    state.counters["exact"] = exact; // the same on every run of one build
}

// One run of a program, with its standard output in a file.
struct Outcome {
    double seconds;
    long resident; // peak memory in KiB
};

Outcome RunProgram(const Words &words, const std::string &output)
{
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const auto start = Clock::now();
    pid_t child;
    int status = 0;
    rusage usage{};
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
        bench::Fail("cannot run " + words[0]);
    wait4(child, &status, 0, &usage);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0)
        bench::Fail(words[0] + " ended with status " + std::to_string(WEXITSTATUS(status)));
    return {Since(start), usage.ru_maxrss};
}

// The library's call and the raw one take turns. The fast ones are compared: the machine makes the others slow.
template <typename Library, typename Raw> void Pair(State &state, const Library &library, const Raw &raw)
{
    std::vector<double> ofLibrary;
    std::vector<double> ofRaw;
    for (auto _ : state) {
        ofLibrary.push_back(Time(library));
        ofRaw.push_back(Time(raw));
        state.SetIterationTime(ofLibrary.back());
    }
    const double ratio = Percentile(ofLibrary, 0.1) / Percentile(ofRaw, 0.1);
    Row(state, 1e6 * Percentile(ofLibrary, 0.1), 1e6 * Percentile(ofRaw, 0.1), ratio, 1.05);
    state.counters["median"] = Percentile(ofLibrary, 0.5) / Percentile(ofRaw, 0.5);
}

void KindOfCall(State &state, bench::Kind kind)
{
    const bench::Call call = bench::CallOf(kind);
    const bench::Child server(bench::StartCannedServer(directory, call.body));
    const int fd = call.ownSession ? -1 : RSVP_MOR_LIPCOpen();
    Pair(
        state, [&] { call.library(fd); },
        [&] { call.ownSession ? bench::RawOwn(call.request) : bench::RawHeld(fd, call.request); });
    if (!call.ownSession)
        RSVP_MOR_LIPCClose(fd);
}

// A reply of a given size, of which nothing is kept.
void ReplySize(State &state)
{
    Bytes body;
    rsvpsimd::AppendItem(body, 99, Bytes(static_cast<size_t>(state.range(0)) - 12));
    const bench::Child server(bench::StartCannedServer(directory, body));
    const int fd = RSVP_MOR_LIPCOpen();
    const Bytes request = rsvpsimd::BuildFrame(rsvpsimd::kShow, rsvpsimd::kGetFirst, 0, Bytes{0, 1, 0, 0});
    RSVP_MOR_ReplyCrlsp record{};
    Pair(
        state, [&] { RSVP_MOR_GetFirstCrlsp(fd, &record); }, [&] { bench::RawHeld(fd, request); });
    RSVP_MOR_LIPCClose(fd);
}

// Adds the times of the calls in one walk of the daemon's path state blocks.
void Walk(std::vector<double> &times)
{
    const int fd = RSVP_MOR_LIPCOpen();
    RSVP_MOR_ReplyPsb record{};
    uint32_t status = RSVP_MOR_GetFirstPsbInfo(fd, &record);
    while (status == RSVP_MOR_OK) {
        RSVP_MOR_FreeReplyPsb(&record);
        times.push_back(
            Time([&] { status = RSVP_MOR_GetNextPsbInfo(fd, &record.session, &record.sender, &record); }));
    }
    RSVP_MOR_LIPCClose(fd);
}

void Growth(State &state)
{
    constexpr size_t kCalls = 30'000; // of both in turn, so that a slow moment of the machine affects both
    const auto rows = static_cast<size_t>(state.range(0));
    std::vector<double> few;
    std::vector<double> many;
    for (auto _ : state) {
        for (std::vector<double> *times : {&few, &many}) {
            const size_t count = times == &few ? 10 : rows;
            const bench::Child daemon(
                bench::StartDaemon(programs + "/rsvpsimd", {"--rows", "psb-plain=" + std::to_string(count)}));
            for (const size_t enough = times->size() + kCalls; times->size() < enough;)
                Walk(*times);
        }
        state.SetIterationTime(1);
    }
    Row(state, 1e6 * Percentile(many, 0.1), 1e6 * Percentile(few, 0.1), Percentile(many, 0.1) / Percentile(few, 0.1),
        1.05);
}

void Batch(State &state)
{
    constexpr int kCommands = 1000;
    const std::string file = directory + "/batch";
    std::ofstream lines(file);
    for (int i = 0; i < kCommands; ++i)
        lines << "set dscp 48\n";
    lines.close();
    const Bytes request = bench::CallOf(bench::Kind::Command).request;
    const bench::Child daemon(bench::StartDaemon(programs + "/rsvpsimd", {"--rows", "tunnel=1"}));
    std::vector<double> tool;
    std::vector<double> raw;
    for (auto _ : state) {
        tool.push_back(RunProgram({programs + "/rsvpctl", "batch", file}, "/dev/null").seconds);
        raw.push_back(Time([&] {
            for (int i = 0; i < kCommands; ++i)
                bench::RawOwn(request);
        }));
        state.SetIterationTime(tool.back());
    }
    Row(state, 1e3 * Percentile(tool, 0.5), 1e3 * Percentile(raw, 0.5), Percentile(tool, 0.5) / Percentile(raw, 0.5),
        2);
}

void TunnelWalk()
{
    RSVP_MOR_ReplyTunnel row;
    for (uint32_t status = RSVP_GetFirstTunnel(&row); status == RSVP_MOR_OK;) {
        const RSVP_MOR_TunnelKey key{row.tunnelWord0, row.tunnelWord1, row.tunnelWord2, row.tunnelWord3};
        status = RSVP_GetNextTunnel(&key, &row);
    }
}

void ShowTunnels(State &state)
{
    constexpr int kRows = 20'000;
    const bench::Child daemon(
        bench::StartDaemon(programs + "/rsvpsimd", {"--rows", "tunnel=" + std::to_string(kRows)}));
    std::vector<double> tool;
    std::vector<double> walk;
    for (auto _ : state) {
        tool.push_back(RunProgram({programs + "/rsvpctl", "show", "tunnels", "--json"}, "/dev/null").seconds);
        walk.push_back(Time(TunnelWalk));
        state.SetIterationTime(tool.back());
    }
    Row(state, kRows / Percentile(tool, 0.5), kRows / Percentile(walk, 0.5),
        Percentile(tool, 0.5) / Percentile(walk, 0.5), 1.3);
}

void Memory(State &state)
{
    std::vector<double> resident;
    for (auto _ : state) {
        for (const char *rows : {"tunnel=100", "tunnel=100000"}) {
            const bench::Child daemon(bench::StartDaemon(programs + "/rsvpsimd", {"--rows", rows}));
            resident.push_back(static_cast<double>(
                RunProgram({programs + "/rsvpctl", "show", "tunnels", "--json"}, "/dev/null").resident));
        }
        state.SetIterationTime(1);
    }
    // The system counts a new program's peak from its parent's memory, so a large parent would hide the result.
    rusage own{};
    getrusage(RUSAGE_SELF, &own);
    if (resident[0] <= static_cast<double>(own.ru_maxrss))
        bench::Fail("this process is larger than the one that it measures");
    Row(state, resident[1], resident[0], resident[1] / resident[0], 1.05, true); // a few pages come and go
}

// What a tool counts in a run of one_call, per call: two runs of different length, so that everything else cancels
// out.
template <typename Count> double PerCall(const std::string &kind, const Words &tool, const Count &count)
{
    const bench::Call call = bench::CallOf(static_cast<bench::Kind>(std::atoi(kind.c_str())));
    const bench::Child server(bench::StartCannedServer(directory, call.body));
    double counts[2]{};
    for (const int times : {100, 300}) {
        Words words = tool;
        words.insert(words.end(), {programs + "/one_call", kind, std::to_string(times)});
        RunProgram(words, directory + "/output");
        counts[times == 300] = count();
    }
    return (counts[1] - counts[0]) / 200;
}

Words Callgrind()
{
    // A string instruction counts once per byte: this makes the C library zero memory with plain stores.
    setenv("GLIBC_TUNABLES", "glibc.cpu.x86_rep_stosb_threshold=1000000", 1);
    return {"valgrind", "-q", "--tool=callgrind", "--callgrind-out-file=" + directory + "/callgrind"};
}

double CountedInstructions()
{
    std::ifstream lines(directory + "/callgrind");
    double total = 0;
    for (std::string word; lines >> word;)
        if (word == "summary:")
            lines >> total;
    return total;
}

double Instructions(const std::string &kind)
{
    return PerCall(kind, Callgrind(), CountedInstructions);
}

// A row with the names of a dictionary against the same row without. The dictionary is read once and cancels out.
void NamesOfARow(State &state)
{
    double counts[2][2]{};
    for (auto _ : state) {
        for (const int rows : {1000, 2000}) {
            const bench::Child daemon(
                bench::StartDaemon(programs + "/rsvpsimd", {"--rows", "tunnel=" + std::to_string(rows)}));
            for (const bool named : {true, false}) {
                Words words = Callgrind();
                words.insert(words.end(), {programs + "/rsvpctl", "show", "tunnels", "--json"});
                if (!named)
                    words.insert(words.end(), {"--dictionary", "none"});
                RunProgram(words, "/dev/null");
                counts[named][rows == 2000] = CountedInstructions();
            }
        }
        state.SetIterationTime(1);
    }
    const double with = (counts[true][1] - counts[true][0]) / 1000;
    const double without = (counts[false][1] - counts[false][0]) / 1000;
    Row(state, with, without, with / without, 1.3, true);
}

void CallInstructions(State &state, bench::Kind kind)
{
    double library = 0;
    double floor = 0;
    for (auto _ : state) {
        library = Instructions(std::to_string(static_cast<int>(kind)));
        floor = Instructions("floor");
        state.SetIterationTime(1);
    }
    // The floor belongs to the read without lists; the others are shown for the record.
    Row(state, library, floor, library / floor, kind == bench::Kind::PathState ? 1.3 : 0, true);
}

// A scenario of LSPs that pass, each with a part in five tables.
std::string Lsps(int count)
{
    std::string text;
    for (int i = 1; i <= count; ++i) {
        const std::string id = std::to_string(i);
        const std::string to = "\"10.1." + std::to_string(i / 256) + "." + std::to_string(i % 256) + "\"";
        const std::string from = "\"10.0.0.1\"";
        const std::string session = "session = { tunnelEndpoint = " + to + ", tunnelId = " + id +
                                    ", extendedTunnelId = " + from + " }\nhop = { hopAddress = " + from + " }\n";
        const std::string sender = "{ senderAddress = " + from + ", lspId = 1 }";
        text += "[[crlsp]]\nkey = { keyWord0 = " + to + ", keyWord1 = " + from + ", keyWord2 = " + from +
                ", keyShort0 = " + id + ", keyShort1 = 1 }\nname = \"lsp-" + id + "\"\n";
        text += "[[psb]]\n" + session + "sender = " + sender + "\n";
        text += "[[rsb]]\n" + session + "filter = " + sender + "\nfsList = [ { filter = " + sender +
                ", label = 16, rro = [ { kind = 1, address = " + to + " } ] } ]\n";
        text += "[[tunnel]]\ntunnelWord0 = " + id + "\ntunnelWord1 = 1\ntunnelWord2 = " + from +
                "\ntunnelWord3 = " + to + "\n";
        text += "[[facility]]\nfacilityWord2 = " + id + "\nfacilityWord3 = 1\nfacilityWord4 = " + from +
                "\nfacilityWord5 = " + to + "\n";
    }
    return text;
}

void ShowLsps(State &state)
{
    std::vector<double> perLsp;
    for (auto _ : state) {
        for (const int count : {1000, 4000}) {
            std::ofstream(directory + "/lsps.toml") << Lsps(count);
            const bench::Child daemon(
                bench::StartDaemon(programs + "/rsvpsimd", {"--scenario", directory + "/lsps.toml"}));
            Words words = Callgrind();
            words.insert(words.end(), {programs + "/rsvpctl", "show", "lsp", "--json"});
            RunProgram(words, "/dev/null");
            perLsp.push_back(CountedInstructions() / count);
        }
        state.SetIterationTime(1);
    }
    Row(state, perLsp[1], perLsp[0], perLsp[1] / perLsp[0], 1.05, true);
}

void SystemCalls(State &state, bench::Kind kind)
{
    double calls = 0;
    const std::string file = directory + "/strace";
    for (auto _ : state) {
        calls = PerCall(std::to_string(static_cast<int>(kind)), {"strace", "-qq", "-o", file}, [&] {
            std::ifstream lines(file);
            return static_cast<double>(std::count(std::istreambuf_iterator<char>(lines), {}, '\n'));
        });
        state.SetIterationTime(1);
    }
    const double wanted = bench::CallOf(kind).ownSession ? 7 : 2;
    Row(state, calls, wanted, calls, wanted, true);
}

void HeapAndStack(State &state, bench::Kind kind, bool heap)
{
    const bench::Call call = bench::CallOf(kind);
    double blocks = 0;
    double stack = 0;
    for (auto _ : state) {
        const bench::Child server(bench::StartCannedServer(directory, call.body));
        RunProgram({programs + "/one_call", std::to_string(static_cast<int>(kind)), "100", "measure"},
                   directory + "/output");
        std::ifstream(directory + "/output") >> blocks >> stack;
        state.SetIterationTime(1);
    }
    if (heap)
        Row(state, blocks, 0, blocks, kind == bench::Kind::PathStateLists ? 2 : 0, true);
    else
        Row(state, stack, 2 * RSVP_MOR_MSG_MAX, stack / (2 * RSVP_MOR_MSG_MAX), 0, true);
}

void ArmSize(State &state)
{
    double size = 0;
    for (auto _ : state) {
        size = static_cast<double>(std::filesystem::file_size(armLibrary));
        state.SetIterationTime(1);
    }
    constexpr double kBound = 21'000;
    Row(state, size, kBound, size, kBound, true);
}

// Prints the table; the framework writes the JSON file.
class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override
    {
        std::printf("%-52s %12s %12s %10s %8s\n", "what", "measured", "against", "result", "bound");
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            std::string name = run.run_name.function_name;
            if (!run.run_name.args.empty())
                name += " " + run.run_name.args;
            const auto number = [&](const char *key) { return run.counters.at(key).value; };
            const bool bounded = number("bound") != 0 || number("against") == 0;
            const bool broken = bounded && number("result") > number("bound") + 1e-9;
            std::printf("%-52s %12.2f %12.2f %10.3f ", name.c_str(), number("measured"), number("against"),
                        number("result"));
            std::printf(bounded ? "%8.2f  %s\n" : "       -\n", number("bound"), broken ? "NOT MET" : "met");
            std::fflush(stdout);
            broken_ = broken_ || (broken && number("exact") != 0);
        }
    }

    bool Broken() const { return broken_; }

private:
    bool broken_ = false;
};

benchmark::internal::Benchmark *Add(const std::string &name, const std::function<void(State &)> &function,
                                    int iterations)
{
    return benchmark::RegisterBenchmark(name.c_str(), [function](State &state) { function(state); })
        ->UseManualTime()
        ->Iterations(iterations);
}

void AddAll()
{
    using bench::Kind;
    const Kind kinds[] = {Kind::PathState, Kind::PathStateLists, Kind::GlobalRecord, Kind::TunnelRow, Kind::Command};
    const auto each = [&](const std::string &what, const std::function<void(State &, Kind)> &function,
                          int iterations) {
        for (const Kind kind : kinds)
            Add(
                what + bench::CallOf(kind).name, [=](State &state) { function(state, kind); }, iterations);
    };
    Add("KiB: rsvpctl, 100000 tunnels against 100", Memory, 1); // first, while this process is small
    each("us: ", KindOfCall, 20'000);
    Add("us: reply of bytes", ReplySize, 5000)->Arg(64)->Arg(512)->Arg(2048)->Arg(8192);
    Add("us a row, against 10 rows: rows", Growth, 4)->Arg(1000)->Arg(100'000)->Arg(1'000'000);
    Add("ms: rsvpctl batch, 1000 commands", Batch, 9);
    Add("rows/s: rsvpctl show tunnels --json", ShowTunnels, 5);
    each("instructions: ", CallInstructions, 1);
    Add("instructions: rsvpctl, row of tunnels, no names", NamesOfARow, 1);
    Add("instructions an LSP: rsvpctl show lsp, 4000 against 1000", ShowLsps, 1);
    each("system calls: ", SystemCalls, 1);
    each(
        "heap blocks: ", [](State &state, Kind kind) { HeapAndStack(state, kind, true); }, 1);
    each(
        "stack bytes, against two areas: ", [](State &state, Kind kind) { HeapAndStack(state, kind, false); }, 1);
    if (!armLibrary.empty())
        Add("bytes of the stripped ARM library", ArmSize, 1);
}

} // namespace

int main(int count, char **words)
{
    benchmark::Initialize(&count, words);
    if (count < 2)
        bench::Fail("usage: rsvp_mor_bench PROGRAMS [ARM_LIBRARY] [--benchmark_...]");
    StayOnOneProcessor();
    programs = words[1];
    armLibrary = count > 2 ? words[2] : "";
    const bench::HostDirectory host;
    directory = host.Path();
    AddAll();
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return table.Broken() ? 1 : 0;
}
