// Standard streams are files in the host directory, so that no amount of output can block a program. The daemon is
// not started here: the service manager does that, and returns once the daemon answers.
#include "tests/support/program.h"

#include "host/directory.h"
#include "platform/device.h"
#include "platform/service.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace program {

HostDirectory::HostDirectory(const std::string &scenario)
{
    char name[] = "/tmp/rsvp-test.XXXXXX";
    if (mkdtemp(name) == nullptr)
        throw std::runtime_error("cannot make a directory in /tmp");
    path_ = name;
    Write(rsvp_host::kScenarioFile, scenario);
    setenv("RSVP_SIMD", RSVPSIMD_PATH, 1);
    setenv("RSVP_HOST_RUNNER", TEST_RUNNER, 1);
    Use();
}

HostDirectory::~HostDirectory()
{
    Use();
    SERVICE_Stop(DEV_GetSystemMaster(), "RSVP", 0, 0);
    std::filesystem::remove_all(path_);
}

void HostDirectory::Use() const
{
    setenv("RSVP_HOST_DIR", path_.c_str(), 1);
}

void HostDirectory::Write(std::string_view name, const std::string &text) const
{
    std::ofstream(PathOf(name)) << text;
}

std::string HostDirectory::Read(std::string_view name) const
{
    std::ifstream file(PathOf(name));
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string HostDirectory::Log() const
{
    return Read(rsvp_host::kLogFile);
}

Result Run(const HostDirectory &directory, std::vector<std::string> words, const std::string &input, Output output)
{
    directory.Use();
    directory.Write("stdin", input);
    std::istringstream runner(TEST_RUNNER);
    words.insert(words.begin(), std::istream_iterator<std::string>(runner), {});
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("cannot make a pipe");
    close(ends[0]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, directory.PathOf("").c_str());
    posix_spawn_file_actions_addopen(&actions, 0, directory.PathOf("stdin").c_str(), O_RDONLY, 0);
    if (output == Output::Closed)
        posix_spawn_file_actions_addclose(&actions, 1);
    else if (output == Output::ReaderGone)
        posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    else
        posix_spawn_file_actions_addopen(&actions, 1, directory.PathOf("stdout").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, directory.PathOf("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0)
        throw std::runtime_error("cannot start " + words.front());

    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            output == Output::Kept ? directory.Read("stdout") : "", directory.Read("stderr")};
}

} // namespace program
