// The soak: processes and threads configure and walk while the daemon is started, stopped and killed, and misbehaves
// in every way it can. Every answer must be right or a clear refusal, and at the end nothing may be left over. Beside
// them one daemon lives from the begin to the end, with one program that never stops asking it, and neither may grow.
#include "calls.h"

#include "rsvp_mor.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/file.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// The blocks that this thread holds: no call may leave one behind.
static thread_local long blocks;
extern "C" {
void *__libc_malloc(size_t size);
void __libc_free(void *block);
void *malloc(size_t size)
{
    ++blocks;
    return __libc_malloc(size);
}
void free(void *block)
{
    blocks -= block != nullptr;
    __libc_free(block);
}
}

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kProcesses = 3;
constexpr int kThreads = 4;
constexpr uint32_t kRows = 40;
constexpr auto kRound = std::chrono::milliseconds(700);

// How far an answer can be trusted while a fault is active.
enum class Trust {
    Rows,  // with status 0 comes the requested row
    Known, // it is some row of the table: the daemon's answers are out of step, or its rows do not advance
};

struct Misbehaviour {
    const char *fault; // as in the daemon's scenario file; empty for none
    Trust trust = Trust::Rows;
};

// The faults strike only reads, so that the daemon can still be started and stopped.
constexpr Misbehaviour kWays[] = {
    {""},
    {"kind = 'late'\nnumber = 20"},
    {"kind = 'silent'\nonce = true"},
    {"kind = 'short'"},
    {"kind = 'short'\nnumber = 5"},
    {"kind = 'long'"},
    {"kind = 'wrong-body-length'"},
    {"kind = 'cut-item'"},
    {"kind = 'status'\nnumber = 1610678273"},
    {"kind = 'item-type'\nnumber = 77"},
    {"kind = 'twice'", Trust::Known},
    {"kind = 'stuck'", Trust::Known},
    {"kind = 'shifting'", Trust::Known},
    {"kind = 'close'"},
    {"kind = 'exit'"},
};

std::string directory;
std::map<uint32_t, RSVP_MOR_ReplyTunnel> tunnels; // as a well-behaved daemon shows them
std::map<uint32_t, RSVP_MOR_ReplyPsb> pathStates;
std::atomic<long> answers;
std::atomic<long> refusals;
std::atomic<long> faults;

void Expect(bool good, const char *what)
{
    if (good)
        return;
    std::fprintf(stderr, "soak: %s\n", what);
    ++faults;
}

// Checks that a status is one that the headers promise or the daemon sends. True if it is 0.
bool Answered(uint32_t status)
{
    ++(status == RSVP_MOR_OK ? answers : refusals);
    const bool clear = status == RSVP_MOR_OK || status == RSVP_MOR_ERR_FAIL || status == RSVP_MOR_ERR_LIPC ||
                       status == RSVP_MOR_ERR_NOT_EXIST || status == RSVP_MOR_ERR_NOT_ENABLED ||
                       status >> 4 == 0x6001000;
    Expect(clear, "an unknown status");
    return status == RSVP_MOR_OK;
}

bool SameBlock(const RSVP_MOR_ReplyPsb &left, const RSVP_MOR_ReplyPsb &right)
{
    return memcmp(&left.session, &right.session, sizeof(left.session)) == 0 &&
           memcmp(&left.tspec, &right.tspec, sizeof(left.tspec)) == 0 &&
           memcmp(&left.adspec, &right.adspec, sizeof(left.adspec)) == 0 &&
           memcmp(left.wordsD, right.wordsD, sizeof(left.wordsD)) == 0 && left.hopList.count == right.hopList.count &&
           left.routeList6.count == right.routeList6.count;
}

template <typename Rows> bool IsRight(const Rows &rows, uint32_t before, uint32_t key, Trust trust)
{
    const auto next = rows.upper_bound(before);
    return trust == Trust::Known ? rows.contains(key) : next != rows.end() && next->first == key;
}

void WalkPathState(Trust trust)
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    if (fd < 0)
        return;
    RSVP_MOR_ReplyPsb record = {};
    uint32_t before = 0;
    bool more = Answered(RSVP_MOR_GetFirstPsbInfo(fd, &record));
    for (uint32_t rows = 0; more && rows < kRows; ++rows) {
        const uint32_t key = record.session.tunnelEndpoint;
        Expect(IsRight(pathStates, before, key, trust) && SameBlock(record, pathStates.at(key)), "a wrong block");
        RSVP_MOR_FreeReplyPsb(&record);
        if (key <= before) // the walk is broken: its rows do not advance
            break;
        before = key;
        more = Answered(RSVP_MOR_GetNextPsbInfo(fd, &record.session, &record.sender, &record));
    }
    Expect(record.hopList.entries == nullptr && record.routeList6.entries == nullptr, "a failed read left a list");
    RSVP_MOR_FreeReplyPsb(&record);
    RSVP_MOR_LIPCClose(fd);
}

void WalkTunnels(Trust trust)
{
    RSVP_MOR_ReplyTunnel row;
    uint32_t before = 0;
    bool more = Answered(RSVP_GetFirstTunnel(&row));
    for (uint32_t rows = 0; more && rows < kRows; ++rows) {
        const uint32_t index = row.tunnelWord0;
        Expect(IsRight(tunnels, before, index, trust) && memcmp(&row, &tunnels.at(index), sizeof(row)) == 0,
               "a wrong row");
        if (index <= before)
            break;
        before = index;
        const RSVP_MOR_TunnelKey key = {row.tunnelWord0, row.tunnelWord1, row.tunnelWord2, row.tunnelWord3};
        more = Answered(RSVP_GetNextTunnel(&key, &row));
    }
}

void Configure(uint32_t number)
{
    Answered(RSVP_MOR_SetRsvpEnable(0, number));
    Answered(RSVP_MOR_SetHelloEnable(1, number));
    Answered(RSVP_MOR_SetDscpValue(number));
    uint32_t count;
    Answered(RSVP_GetUpLspNumber(&count));
}

void Work(uint32_t number, Trust trust, Clock::time_point end)
{
    for (uint32_t turn = number; Clock::now() < end; ++turn) {
        const long before = blocks;
        if (turn % 3 == 0)
            Configure(turn % 7 + 1);
        else if (turn % 3 == 1)
            WalkTunnels(trust);
        else
            WalkPathState(trust);
        Expect(blocks == before, "a call left a block on the heap");
    }
}

long OpenDescriptors(const std::string &process = "self")
{
    const std::filesystem::directory_iterator open("/proc/" + process + "/fd");
    return std::distance(begin(open), end(open));
}

// A management program: some threads that work until the end of the round. Its exit status says how it went.
[[noreturn]] void Manage(uint32_t number, Trust trust, Clock::time_point end, int report)
{
    answers = refusals = 0; // not those of the parent
    const long openBefore = OpenDescriptors();
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < kThreads; ++i)
        threads.emplace_back(Work, number * kThreads + i, trust, end);
    for (std::thread &thread : threads)
        thread.join();
    Expect(OpenDescriptors() == openBefore, "a descriptor was left open");
    const long counts[] = {answers, refusals};
    Expect(write(report, counts, sizeof(counts)) == sizeof(counts), "the report was lost");
    _exit(faults == 0 ? 0 : 1);
}

void WriteScenario(const char *fault)
{
    std::ofstream file(directory + "/scenario.toml");
    file << "[rows]\npsb = " << kRows << "\ntunnel = " << kRows << '\n';
    if (*fault != '\0')
        file << "[[fault]]\n" << fault << "\nclass = 3\n";
}

pid_t LivingDaemon()
{
    std::FILE *file = std::fopen((directory + "/rsvpsimd.lock").c_str(), "re");
    if (file == nullptr)
        return 0;
    int pid = 0;
    const bool free = flock(fileno(file), LOCK_SH | LOCK_NB) == 0;
    if (free || std::fscanf(file, "%d", &pid) != 1)
        pid = 0;
    std::fclose(file);
    return pid;
}

void LearnRows()
{
    RSVP_MOR_ReplyTunnel row;
    for (bool more = Answered(RSVP_GetFirstTunnel(&row)); more;) {
        tunnels[row.tunnelWord0] = row;
        const RSVP_MOR_TunnelKey key = {row.tunnelWord0, row.tunnelWord1, row.tunnelWord2, row.tunnelWord3};
        more = Answered(RSVP_GetNextTunnel(&key, &row));
    }
    const int32_t fd = RSVP_MOR_LIPCOpen();
    RSVP_MOR_ReplyPsb record = {};
    for (bool more = Answered(RSVP_MOR_GetFirstPsbInfo(fd, &record)); more;) {
        pathStates[record.session.tunnelEndpoint] = record; // the counts of the lists are kept, not the lists
        RSVP_MOR_FreeReplyPsb(&record);
        more = Answered(RSVP_MOR_GetNextPsbInfo(fd, &record.session, &record.sender, &record));
    }
    RSVP_MOR_LIPCClose(fd);
    Expect(tunnels.size() == kRows && pathStates.size() == kRows, "the daemon does not show its rows");
}

// One way to misbehave while the programs work; meanwhile the daemon is killed once, and stopped and started once.
void Round(const Misbehaviour &way, int from, int to)
{
    WriteScenario(way.fault);
    Expect(RSVP_MOR_SetMplsRsvp(0) == RSVP_MOR_OK, "the service does not start");
    const auto end = Clock::now() + kRound;
    pid_t children[kProcesses];
    for (uint32_t i = 0; i < kProcesses; ++i) {
        children[i] = fork();
        if (children[i] < 0)
            bench::Fail("cannot start a process");
        if (children[i] == 0)
            Manage(i, way.trust, end, to);
    }
    std::this_thread::sleep_for(kRound / 3);
    if (const pid_t daemon = LivingDaemon(); daemon > 1)
        kill(daemon, SIGKILL);
    RSVP_MOR_SetMplsRsvp(0);
    std::this_thread::sleep_for(kRound / 3);
    RSVP_MOR_SetMplsRsvp(1);
    RSVP_MOR_SetMplsRsvp(0);
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        Expect(status == 0, "a management program found a fault");
        long counts[2] = {};
        Expect(read(from, counts, sizeof(counts)) == sizeof(counts), "a report is missing");
        answers += counts[0];
        refusals += counts[1];
    }
    RSVP_MOR_SetMplsRsvp(1);
    Expect(LivingDaemon() == 0, "the daemon is left over");
}

long Kilobytes(const std::string &process)
{
    std::ifstream status("/proc/" + process + "/status");
    std::string word;
    while (status >> word && word != "VmRSS:")
        continue;
    long kilobytes = 0;
    status >> kilobytes;
    Expect(kilobytes > 0, "the memory of a process is not known");
    return kilobytes;
}

// Without misbehaviour, on a device of its own. What the first seconds need is not growth.
void LiveLong(Clock::time_point end)
{
    constexpr auto kWarmUp = std::chrono::seconds(5);
    constexpr long kNoise = 512; // KiB
    const bench::HostDirectory own;
    directory = own.Path();
    WriteScenario("");
    Expect(RSVP_MOR_SetMplsRsvp(0) == RSVP_MOR_OK, "the service does not start");
    LearnRows();
    const std::string processes[] = {std::to_string(LivingDaemon()), "self"};
    Work(0, Trust::Rows, std::min(end, Clock::now() + kWarmUp));
    std::map<std::string, std::pair<long, long>> before;
    for (const std::string &process : processes)
        before[process] = {Kilobytes(process), OpenDescriptors(process)};
    Work(0, Trust::Rows, end);
    for (const std::string &process : processes) {
        const auto [kilobytes, descriptors] = before[process];
        const long kilobytesAfter = Kilobytes(process);
        const long descriptorsAfter = OpenDescriptors(process);
        Expect(kilobytesAfter <= kilobytes + kNoise && descriptorsAfter <= descriptors, "a process has grown");
        std::printf("%s: %ld KiB, %ld descriptors; at the end %ld KiB, %ld descriptors\n",
                    process == "self" ? "program" : "daemon", kilobytes, descriptors, kilobytesAfter,
                    descriptorsAfter);
    }
    Expect(RSVP_MOR_SetMplsRsvp(1) == RSVP_MOR_OK, "the service does not stop");
    std::printf("%ld answers, %ld refusals\n", answers.load(), refusals.load());
}

pid_t StartLongLife(Clock::time_point end)
{
    const pid_t child = fork();
    if (child < 0)
        bench::Fail("cannot start a process");
    if (child != 0)
        return child;
    LiveLong(end);
    (void)std::fflush(stdout);
    _exit(faults == 0 ? 0 : 1);
}

} // namespace

int main(int count, char **words)
{
    const auto end = Clock::now() + std::chrono::seconds(count > 1 ? std::atoi(words[1]) : 60);
    const pid_t longLife = StartLongLife(end);
    const bench::HostDirectory host;
    directory = host.Path();
    int ends[2];
    if (pipe(ends) != 0)
        bench::Fail("cannot make a pipe");

    WriteScenario("");
    Expect(RSVP_MOR_SetMplsRsvp(0) == RSVP_MOR_OK, "the service does not start");
    LearnRows();
    Expect(RSVP_MOR_SetMplsRsvp(1) == RSVP_MOR_OK, "the service does not stop");
    const long openBefore = OpenDescriptors();
    int rounds = 0;
    do {
        for (const Misbehaviour &way : kWays) {
            const long faultsBefore = faults;
            Round(way, ends[0], ends[1]);
            if (faults != faultsBefore)
                std::fprintf(stderr, "soak: this happened with the fault \"%s\"\n", way.fault);
        }
        ++rounds;
    } while (Clock::now() < end);
    WriteScenario(""); // a daemon that crashed left its socket: the next one removes it
    Expect(RSVP_MOR_SetMplsRsvp(0) == RSVP_MOR_OK && RSVP_MOR_SetMplsRsvp(1) == RSVP_MOR_OK,
           "the service no longer starts and stops");

    int status = 0;
    waitpid(longLife, &status, 0);
    Expect(status == 0, "what lived long found a fault");
    Expect(OpenDescriptors() == openBefore, "a descriptor was left open");
    Expect(waitpid(-1, nullptr, WNOHANG) == -1, "a process is left over");
    for (const auto &entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = entry.path().filename();
        Expect(name == "scenario.toml" || name == "rsvpsimd.lock" || name == "rsvpsimd.log" || name == "service" ||
                   name == "etc" || name == "nodes",
               ("a file is left over: " + name).c_str());
    }
    std::printf("%d rounds of %zu misbehaviours: %ld answers, %ld refusals, %ld faults\n", rounds, std::size(kWays),
                answers.load(), refusals.load(), faults.load());
    return faults == 0 ? 0 : 1;
}
