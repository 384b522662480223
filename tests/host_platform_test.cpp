// The stand-in for the platform where it meets the machine: directories that must not be trusted, daemons that died,
// were killed or never answer, programs that start one at the same time, files that a person has edited badly or put
// in the place of others, and a machine that has no memory or descriptors left.
#include "host/directory.h"
#include "host/platform/options.h"
#include "platform/database.h"
#include "platform/device.h"
#include "platform/options.h"
#include "platform/service.h"
#include "platform/stlv.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <new>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
int __wrap_socket(int family, int type, int protocol);
int __wrap_setsockopt(int fd, int level, int option, const void *value, socklen_t length);
int __wrap_connect(int fd, const sockaddr *address, socklen_t length);
ssize_t __wrap_send(int fd, const void *data, size_t length, int flags);
}

// The stand-in's allocations are made here, so that they can be made to fail.
static size_t allocationsLeft = SIZE_MAX;

void *operator new(size_t size)
{
    if (allocationsLeft == 0)
        throw std::bad_alloc();
    --allocationsLeft;
    if (void *block = std::malloc(size))
        return block;
    throw std::bad_alloc();
}
void operator delete(void *block) noexcept
{
    std::free(block);
}
void operator delete(void *block, size_t) noexcept
{
    std::free(block);
}

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kMaster = 1;

struct HostPlatform : testing::Test {
    void SetUp() override
    {
        char name[] = "/tmp/rsvp-test.XXXXXX";
        base = mkdtemp(name);
        chmod(name, 0755);
        setenv("RSVP_SIMD", RSVPSIMD_PATH, 0);
        setenv("RSVP_HOST_RUNNER", TEST_RUNNER, 0);
        Use("device");
    }
    void TearDown() override
    {
        for (const auto &entry : fs::directory_iterator(base))
            if (entry.is_directory() && !entry.is_symlink()) {
                Use(entry.path().filename());
                SERVICE_Stop(kMaster, "RSVP", 0, 3);
            }
        fs::remove_all(base);
        // The daemon is nobody's child here; whatever is left to reap would pile up in a real program.
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    }
    void Use(const std::string &name)
    {
        directory = base + "/" + name;
        setenv("RSVP_HOST_DIR", directory.c_str(), 1);
    }
    void Write(std::string_view name, const std::string &text) const
    {
        std::ofstream(rsvp_host::PathOf(directory, name)) << text;
    }
    std::string Read(std::string_view name) const
    {
        std::ifstream file(rsvp_host::PathOf(directory, name));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    pid_t Pid() const { return std::atoi(Read(rsvp_host::kLockFile).c_str()); }

    std::string base, directory;
};

uint32_t Start(uint32_t node = kMaster)
{
    return SERVICE_Start(node, "RSVP", 0, 0);
}
uint32_t Stop()
{
    return SERVICE_Stop(kMaster, "RSVP", 0, 3);
}

// The status, or 99 where the query failed.
uint32_t Status(uint32_t node = kMaster, const char *service = "RSVP")
{
    uint32_t status = 98;
    return SERVICE_GetStatus(node, service, 0, &status) == 0 ? status : 99;
}

// A descriptor, or the error number made negative. Every step uses the numbers of the router's socket family.
int Connect()
{
    const unsigned char address[16] = {0x10, 0x25, 0x0a, 0xe1, 0x80, 0x00};
    const uint32_t time[2] = {10, 0};
    const int fd = __wrap_socket(37, 2, 1);
    EXPECT_EQ(__wrap_setsockopt(fd, 1, 0x1005, time, 8), 0);
    EXPECT_EQ(__wrap_setsockopt(fd, 1, 0x1006, time, 8), 0);
    timeval set{};
    socklen_t length = sizeof(set);
    EXPECT_EQ(getsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &set, &length), 0);
    EXPECT_EQ(set.tv_sec, 10);
    sockaddr_storage aligned{};
    std::memcpy(&aligned, address, sizeof(address));
    if (__wrap_connect(fd, reinterpret_cast<const sockaddr *>(&aligned), 16) == 0)
        return fd;
    const int error = errno;
    close(fd);
    return -error;
}

// 0 if the database can be opened.
uint32_t OpenDatabase()
{
    const uint32_t record[8] = {1, 0, 1, 0, 0, 0, 0, 0};
    int32_t handle = -1;
    const uint32_t result = DBM_Open("eRSVP", "RSVP", 1, record, &handle);
    if (result == 0)
        DBM_Close(handle);
    return result;
}

bool Answers()
{
    const int fd = Connect();
    return fd >= 0 && close(fd) == 0;
}

TEST(Items, AtTheirBounds)
{
    unsigned char area[12] = {};
    EXPECT_EQ(STLV_Set(area, 7, 0x0102, 4, "abcd"), 0u);
    EXPECT_EQ(STLV_Set(area, 3, 1, 0, nullptr), 0u);
    EXPECT_EQ(STLV_Set(area, 0xffff, 1, 0xffff, area), 0u);
    EXPECT_EQ(std::count(area, area + sizeof(area), 0), 12);
    EXPECT_EQ(STLV_Set(area, 8, 0x0102, 4, "abcd"), 8u);
    EXPECT_EQ(std::memcmp(area, "\1\2\0\4abcd\0\0\0", 12), 0);
    for (const auto &[have, length, taken] : {std::tuple(8, 4, 8u),
                                              {12, 4, 8u},
                                              {4, 0, 4u},
                                              {7, 4, 0u},
                                              {8, 5, 0u},
                                              {3, 0, 0u},
                                              {0, 0, 0u},
                                              {12, 0xffff, 0u}}) {
        area[2] = static_cast<unsigned char>(length >> 8);
        area[3] = static_cast<unsigned char>(length);
        uint16_t type = 77, item = 77;
        void *value = nullptr;
        EXPECT_EQ(STLV_Get(area, static_cast<uint16_t>(have), &type, &item, &value), taken) << have << ' ' << length;
        EXPECT_EQ(type, taken != 0 ? 0x0102 : 77);
        EXPECT_EQ(item, taken != 0 ? length : 77);
        EXPECT_EQ(value, taken != 0 ? area + 4 : nullptr);
    }
}

TEST_F(HostPlatform, DirectoriesThatMustNotBeTrusted)
{
    fs::create_directory(base + "/real");
    chmod((base + "/real").c_str(), 0700);
    fs::create_directory_symlink(base + "/real", base + "/link");
    fs::create_directory(base + "/open");
    chmod((base + "/open").c_str(), 0755);
    std::ofstream(base + "/file") << "x";
    const struct {
        std::string path;
        int error;
    } rows[] = {{base + "/link", EACCES},   {base + "/link/", EACCES},
                {base + "/open", EACCES},   {base + "/file", EACCES},
                {"/usr", EACCES},           {base + "/no/parent", ENOENT},
                {"/proc/self/new", ENOENT}, {base + "/" + std::string(94 - base.size(), 'x'), ENAMETOOLONG}};
    for (const auto &row : rows) {
        setenv("RSVP_HOST_DIR", row.path.c_str(), 1);
        EXPECT_EQ(Connect(), -row.error) << row.path;
        EXPECT_EQ(Status(), row.error == ENOENT ? 0u : 99u) << row.path;
        testing::internal::CaptureStderr();
        EXPECT_NE(Start(), 0u) << row.path;
        EXPECT_NE(testing::internal::GetCapturedStderr().find("RSVP_HOST_DIR"), std::string::npos) << row.path;
        EXPECT_EQ(PLUGIN_OptInit("/etc/te.conf"), nullptr) << row.path;
        EXPECT_EQ(DEV_GetSystemMaster(), 0u) << row.path;
    }
    Use(std::string(92 - base.size(), 'y')); // the longest that fits
    EXPECT_EQ(directory.size(), rsvp_host::kDirectoryRoom - 1);
    EXPECT_EQ(Start(), 0u);
    EXPECT_TRUE(Answers());
}

// Run as a user for whom the mode counts.
TEST_F(HostPlatform, ReadOnlyDirectory)
{
    ASSERT_EQ(DEV_GetSystemMaster(), 1u);
    for (const std::string_view name : {rsvp_host::kServiceFolder, rsvp_host::kNodesFile, std::string_view(".")}) {
        const std::string path = rsvp_host::PathOf(directory, name);
        chmod(path.c_str(), name == rsvp_host::kNodesFile ? 0400 : 0500);
        ASSERT_TRUE(geteuid() != 0 || chown(path.c_str(), 65534, 65534) == 0);
    }
    const pid_t child = fork();
    if (child == 0)
        _exit((geteuid() == 0 && setuid(65534) != 0) || Start() == 0 || Start(2) == 0 || Status() != 0 ? 1 : 0);
    int result = -1;
    waitpid(child, &result, 0);
    EXPECT_EQ(result, 0);
    for (const std::string_view name : {std::string_view("."), rsvp_host::kServiceFolder})
        chmod(rsvp_host::PathOf(directory, name).c_str(), 0700);
    ASSERT_TRUE(geteuid() != 0 || chown(directory.c_str(), 0, 0) == 0);
}

TEST_F(HostPlatform, LifeOfTheDaemon)
{
    EXPECT_EQ(DEV_GetSystemMaster(), 1u);
    for (const uint32_t node : {1u, 2u, 3u})
        EXPECT_EQ(Status(node), 0u);
    EXPECT_EQ(Status(4), 99u);
    EXPECT_EQ(Status(1, "OSPF"), 99u);
    EXPECT_EQ(Connect(), -ENOENT);

    // What the caller blocks, ignores or holds open must not reach the daemon.
    sigset_t term;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    sigprocmask(SIG_BLOCK, &term, nullptr);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    ASSERT_EQ(Start(), 0u);
    const pid_t first = Pid();
    close(ends[1]);
    char byte;
    EXPECT_EQ(read(ends[0], &byte, 1), 0) << "the daemon holds the other end";
    close(ends[0]);
    EXPECT_NE(getsid(first), getsid(0));
    EXPECT_EQ(Start(), 0u);
    EXPECT_EQ(Pid(), first);
    EXPECT_EQ(Status(), 1u);
    EXPECT_EQ(OpenDatabase(), 0u);

    const int session = Connect();
    ASSERT_GE(session, 0);
    kill(first, SIGKILL);
    EXPECT_LE(recv(session, &byte, 1, 0), 0); // waits for the end of the process
    EXPECT_EQ(__wrap_send(session, "x", 1, 0), -1);
    EXPECT_EQ(errno, EPIPE);
    close(session);
    EXPECT_EQ(Stop(), 0u);
    EXPECT_EQ(Status(), 0u);
    EXPECT_EQ(Connect(), -ECONNREFUSED);
    EXPECT_EQ(OpenDatabase(), 0x40010005u);

    EXPECT_EQ(Start(), 0u);
    EXPECT_TRUE(Answers());
    EXPECT_NE(Pid(), first);
    EXPECT_EQ(Stop(), 0u);
    EXPECT_EQ(Connect(), -ENOENT); // it had the time to clear up, so it was asked and not killed
    EXPECT_EQ(Stop(), 0u);
    sigprocmask(SIG_UNBLOCK, &term, nullptr);
}

TEST_F(HostPlatform, AnUnlockedPidIsNobodysDaemon)
{
    DEV_GetSystemMaster();
    const pid_t innocent = fork();
    if (innocent == 0)
        for (;;)
            pause();
    Write(rsvp_host::kLockFile, std::to_string(innocent) + "\n");
    Write(rsvp_host::kSocketFile, "");
    EXPECT_EQ(Status(), 0u);
    EXPECT_EQ(Stop(), 0u);
    EXPECT_EQ(waitpid(innocent, nullptr, WNOHANG), 0) << "ended a process that it had not started";
    kill(innocent, SIGKILL);
    waitpid(innocent, nullptr, 0);
}

TEST_F(HostPlatform, ManyProgramsAndTwoDevices)
{
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i)
        if (children.push_back(fork()); children.back() == 0)
            _exit(Start() == 0 && Answers() ? 0 : 1);
    for (const pid_t child : children) {
        int result = -1;
        waitpid(child, &result, 0);
        EXPECT_EQ(result, 0);
    }
    EXPECT_EQ(Read(rsvp_host::kLogFile).find("another daemon"), std::string::npos);
    Use("second"); // the same program turns to another device
    EXPECT_EQ(Connect(), -ENOENT);
    ASSERT_EQ(Start(), 0u);
    Use("device");
    EXPECT_EQ(Stop(), 0u);
    EXPECT_FALSE(Answers());
    Use("second");
    EXPECT_TRUE(Answers());
}

// A question that cannot be answered is not answered with "stopped".
TEST_F(HostPlatform, DaemonsThatCannotBeSeen)
{
    ASSERT_EQ(Start(), 0u);
    const pid_t daemon = Pid();
    const fs::path lock = directory + "/" + std::string(rsvp_host::kLockFile), kept = lock.string() + ".kept";
    const auto expectNothingKnown = [&](const char *why) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(Status(), 99u) << why;
        EXPECT_EQ(OpenDatabase(), 0x40010001u) << why;
        EXPECT_NE(Stop(), 0u) << why;
        EXPECT_NE(Start(), 0u) << why;
        EXPECT_NE(testing::internal::GetCapturedStderr().find(why), std::string::npos) << why;
        EXPECT_EQ(kill(daemon, 0), 0);
    };
    fs::rename(lock, kept);
    expectNothingKnown("does not hold the daemon's lock file");
    fs::create_symlink(kept, lock);
    expectNothingKnown("rsvpsimd.lock cannot be opened");
    fs::remove(lock);
    fs::create_directory(lock);
    expectNothingKnown("rsvpsimd.lock cannot be read");
    fs::remove(lock);
    fs::rename(kept, lock);
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    for (const rlim_t more :
         {rlim_t{0}, rlim_t{1}}) { // none at all, and one for the list of nodes, which is closed again
        const int used = dup(0);
        close(used);
        const rlimit none = {static_cast<rlim_t>(used) + more, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        EXPECT_EQ(Status(), more == 0 ? 99u : 1u);
        EXPECT_NE(Stop(), 0u);
        setrlimit(RLIMIT_NOFILE, &before);
    }
    EXPECT_TRUE(Answers());

    // Without its socket nobody reaches it, but it runs and can be ended.
    fs::remove(rsvp_host::PathOf(directory, rsvp_host::kSocketFile));
    EXPECT_EQ(Status(), 1u);
    EXPECT_EQ(OpenDatabase(), 0x40010001u);
    EXPECT_EQ(Stop(), 0u);
    EXPECT_EQ(Status(), 0u);
}

// The system accepts a connection to a process that a signal has stopped.
TEST_F(HostPlatform, ADaemonThatHangs)
{
    ASSERT_EQ(Start(), 0u);
    kill(Pid(), SIGSTOP);
    EXPECT_TRUE(Answers());
    testing::internal::CaptureStderr();
    EXPECT_NE(Start(), 0u);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("did not answer"), std::string::npos);
    EXPECT_EQ(OpenDatabase(), 0x40010001u) << "it cannot object to its end";
    EXPECT_EQ(Stop(), 0u);
    EXPECT_EQ(Connect(), -ENOENT) << "woken up, it ended by itself";
}

TEST_F(HostPlatform, DaemonsThatNeverAnswer)
{
    const std::string real = getenv("RSVP_SIMD");
    const std::string runner = getenv("RSVP_HOST_RUNNER");
    unsetenv("RSVP_HOST_RUNNER"); // scripts run without one
    // Whoever starts it, and from where, makes no difference to it.
    const fs::path here = fs::current_path();
    fs::current_path(base);
    Use("device");
    setenv("RSVP_HOST_DIR", "device", 1);
    for (const auto &[script, said] :
         {std::pair("echo $0 $2 $(pwd) $(umask) $(ulimit -c) $RSVP_HOST_DIR$RSVP_SIMD; exit 3", "ended before"),
          {"echo $$ > $2/pid; exec sleep 60", "did not answer"}}) {
        std::ofstream("fake") << "#!/bin/sh\n" << script << "\n";
        chmod("fake", 0700);
        setenv("RSVP_SIMD", "./fake", 1);
        testing::internal::CaptureStderr();
        EXPECT_NE(Start(), 0u);
        EXPECT_NE(testing::internal::GetCapturedStderr().find(said), std::string::npos);
        EXPECT_EQ(Status(), 0u);
    }
    fs::current_path(here);
    Use("device");
    EXPECT_EQ(Read(rsvp_host::kLogFile), base + "/./fake " + directory + " / 0077 0\n");
    // Nothing that failed to start lives on; it may still be waiting for whoever reaps orphans.
    std::ifstream stat("/proc/" + std::to_string(std::atoi(Read("pid").c_str())) + "/stat");
    std::string state = "gone", word;
    stat >> word >> word >> state;
    EXPECT_TRUE(state == "gone" || state == "Z") << state;
    setenv("RSVP_SIMD", real.c_str(), 1);
    setenv("RSVP_HOST_RUNNER", runner.c_str(), 1);
}

// What else may stand in the place of the log: nothing waits for it, is written to it, or can be read by others.
TEST_F(HostPlatform, TheLogIsAPlainFile)
{
    ASSERT_EQ(DEV_GetSystemMaster(), 1u); // makes the directory
    const std::string log = rsvp_host::PathOf(directory, rsvp_host::kLogFile), victim = base + "/victim";
    mkfifo(log.c_str(), 0600);
    EXPECT_NE(Start(), 0u);
    const int reader = open(log.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_NE(Start(), 0u);
    close(reader);
    fs::remove(log);
    fs::create_symlink(victim, log);
    EXPECT_NE(Start(), 0u);
    EXPECT_FALSE(fs::exists(victim));
    fs::remove(log);
    std::ofstream(log) << "earlier\n";
    chmod(log.c_str(), 0644);
    EXPECT_EQ(Start(), 0u);
    EXPECT_EQ(fs::status(log).permissions(), fs::perms(0600));
    EXPECT_EQ(Read(rsvp_host::kLogFile).find("earlier\n"), 0u);
}

TEST_F(HostPlatform, AnAbortLeavesNoCore)
{
    const pid_t daemon = fork();
    if (daemon == 0) {
        rlimit core;
        getrlimit(RLIMIT_CORE, &core);
        core.rlim_cur = core.rlim_max;
        setrlimit(RLIMIT_CORE, &core);
        fs::current_path(base);
        const std::string words = std::string("exec ") + getenv("RSVP_HOST_RUNNER") + " " + getenv("RSVP_SIMD");
        execl("/bin/sh", "sh", "-c", words.c_str(), nullptr);
        _exit(127);
    }
    while (Status() != 1 && waitpid(daemon, nullptr, WNOHANG) == 0) {
    }
    kill(daemon, SIGABRT);
    int result = 0;
    EXPECT_EQ(waitpid(daemon, &result, 0), daemon);
    EXPECT_TRUE(WIFSIGNALED(result) && !WCOREDUMP(result)) << result;
}

// The callers are C programs: no exception leaves a platform call.
TEST_F(HostPlatform, WithoutMemory)
{
    ASSERT_EQ(DEV_GetSystemMaster(), 1u);
    const std::string nodes = rsvp_host::PathOf(directory, rsvp_host::kNodesFile);
    const std::pair<const char *, bool (*)()> calls[] = {
        {"master", [] { return DEV_GetSystemMaster() == 1; }},
        {"standby",
         [] {
             uint32_t count = 0;
             uint16_t *list = DEV_GetAllStandbyNodes(&count);
             std::free(list);
             return list != nullptr;
         }},
        {"start", [] { return Start() == 0; }},
        {"stop", [] { return Stop() == 0; }},
        {"batch",
         [] {
             uint16_t node = 2;
             return SERVICE_BatchStart(&node, 1, "RSVP", 0, 0) == 0;
         }},
        {"options",
         [] {
             PLUGIN_OptInit("/etc/te.conf");
             return true;
         }},
    };
    for (const auto &[name, call] : calls)
        for (size_t n = 0, done = 0; done == 0 && n < 1000; ++n) {
            unlink(nodes.c_str()); // so that it is made again, with words on the heap
            allocationsLeft = n;
            done = call() ? 1 : 0;
            allocationsLeft = SIZE_MAX;
            EXPECT_TRUE(done != 0 || name != std::string("start") || Status() == 0) << "a failed start goes on";
        }
    EXPECT_EQ(Status(), 0u);
    EXPECT_EQ(Status(2), 1u);
}

TEST_F(HostPlatform, NodesAsAPersonWritesThem)
{
    ASSERT_EQ(DEV_GetSystemMaster(), 1u); // makes the directory
    const struct {
        const char *text;
        uint32_t master;
        std::vector<uint16_t> standby;
    } rows[] = {{"standby 9 65535 # two\r\n\n  master\t7", 7, {9, 65535}},
                {"master 5", 5, {}},
                {"master 1\nmaster 2\n", 0, {}},
                {"standby 2\n", 0, {}},
                {"master 1\nstandby 1\n", 0, {}},
                {"master 0\n", 0, {}},
                {"master 65536\n", 0, {}},
                {"master 1x\n", 0, {}},
                {"primary 1\n", 0, {}},
                {"", 0, {}}};
    for (const auto &row : rows) {
        Write(rsvp_host::kNodesFile, row.text);
        EXPECT_EQ(DEV_GetSystemMaster(), row.master) << row.text;
        uint32_t count = 0;
        uint16_t *list = DEV_GetAllStandbyNodes(&count);
        EXPECT_EQ(list != nullptr, row.master != 0) << row.text;
        EXPECT_EQ(std::vector<uint16_t>(list, list + count), row.standby) << row.text;
        std::free(list);
        EXPECT_EQ(Status(row.master), row.master != 0 ? 0u : 99u) << row.text;
    }
    Write(rsvp_host::kNodesFile, "master 1\nstandby 2 3\n");
    uint16_t nodes[] = {2, 8, 3};
    EXPECT_NE(SERVICE_BatchStart(nodes, 3, "RSVP", 0, 0), 0u); // there is no 8, and 3 is served all the same
    EXPECT_EQ(Status(2), 1u);
    EXPECT_EQ(Status(3), 1u);
    EXPECT_EQ(SERVICE_Stop(2, "RSVP", 0, 3), 0u);
    EXPECT_EQ(Status(2), 0u);
    EXPECT_FALSE(fs::exists(rsvp_host::PathOf(directory, "service/2"))) << "a full disk must not keep it running";
    Write("service/3", "up\n");
    EXPECT_EQ(Status(3), 99u);
}

TEST_F(HostPlatform, OptionLines)
{
    ASSERT_EQ(DEV_GetSystemMaster(), 1u);
    EXPECT_EQ(PLUGIN_OptInit("/etc/te.conf"), nullptr);
    const std::string file = rsvp_host::PathOf(directory, rsvp_host::kOptionFile);
    mkfifo(file.c_str(), 0600);
    EXPECT_EQ(PLUGIN_OptInit("/etc/te.conf"), nullptr); // and does not wait for a writer
    fs::remove(file);
    HostOption table[] = {{"refresh", 0}, {"dscp", 8}, {nullptr, 0}};
    const struct {
        std::string text;
        uint32_t result, refresh, dscp; // 0x40010001: refused; 1: no option in the file
    } rows[] = {
        {"# plugin-option dscp=1\nother x=1\n plugin-option\tdscp=0x30  refresh=7 # dscp=9\nplugin-option dscp=2", 0,
         7, 48},
        {"plugin-option refresh=4294967295\n", 0, 0xffffffff, 77},
        {"plugin-option\n", 0, 77, 77},
        {"plugin-option refresh=5 speed=1\n", 0x40010001, 77, 77},
        {"plugin-option refresh=4294967296\n", 0x40010001, 77, 77},
        {"plugin-option refresh=-1\n", 0x40010001, 77, 77},
        {"plugin-option refresh=\n", 0x40010001, 77, 77},
        {"plugin-option refresh\n", 0x40010001, 77, 77},
        {"plugin-option refresh=" + std::string(118, '0') + "9\n", 0, 9, 77},
        {"plugin-option refresh=" + std::string(119, '0') + "9\n", 1, 77, 77},
        {"plugin-options refresh=1\n", 1, 77, 77}};
    for (const auto &row : rows) {
        Write(rsvp_host::kOptionFile, row.text);
        void *handle = PLUGIN_OptInit("/etc/te.conf");
        ASSERT_NE(handle, nullptr);
        char buffer[128] = "";
        uint32_t word = 0, target[3] = {77, 77, 77};
        void *option = PLUGIN_GetNextPlugOpt(handle, buffer, &word);
        EXPECT_EQ(option == nullptr ? 1 : OPT_ParseEx(word, option, table, target), row.result) << row.text;
        EXPECT_EQ(target[0], row.refresh) << row.text;
        EXPECT_EQ(target[1], 77u);
        EXPECT_EQ(target[2], row.dscp) << row.text;
        PLUGIN_OptFini(handle);
    }
}

} // namespace
