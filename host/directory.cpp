// Finds the host directory and says whether it can be trusted. The daemon and the stand-in for the platform link the
// same object, so that neither refuses a directory that the other accepts.
#include "host/directory.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/auxv.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rsvp_host {

namespace {

// With a slash at the end the system would follow a link, and the check for links would pass.
std::string_view WithoutTrailingSlashes(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

std::string Sentence(const std::string &path, const std::string &problem, const char *advice)
{
    return "host directory " + path + " " + problem + "; " + advice;
}

std::string Create(const std::string &path)
{
    if (mkdir(path.c_str(), 0700) == 0 || errno == EEXIST)
        return {};
    return Sentence(path, std::string("cannot be created: ") + std::strerror(errno),
                    "set RSVP_HOST_DIR to a directory that can");
}

} // namespace

size_t WriteDirectoryPath(char *path, size_t size)
{
    const char *chosen = std::getenv("RSVP_HOST_DIR");
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    int length;
    if (chosen != nullptr && *chosen != '\0') {
        const std::string_view text = WithoutTrailingSlashes(chosen);
        if (size != 0)
            path[text.copy(path, size - 1)] = '\0';
        return text.size();
    }
    if (runtime != nullptr && *runtime != '\0') {
        length = std::snprintf(path, size, "%s/rsvp-host", runtime);
    } else {
        // The user that started the program, without a system call: every connect comes through here.
        length = std::snprintf(path, size, "/tmp/rsvp-host-%lu", getauxval(AT_EUID));
    }
    return static_cast<size_t>(length);
}

std::string DirectoryPath(std::string_view chosen)
{
    if (!chosen.empty())
        return std::string(WithoutTrailingSlashes(chosen));
    std::string path(WriteDirectoryPath(nullptr, 0), '\0');
    WriteDirectoryPath(path.data(), path.size() + 1);
    return path;
}

int CheckDirectory(const char *path)
{
    struct stat found;
    if (lstat(path, &found) != 0)
        return errno;
    const bool privateToUs = S_ISDIR(found.st_mode) && found.st_uid == geteuid() && (found.st_mode & 077) == 0;
    return privateToUs ? 0 : EACCES;
}

std::string PrepareDirectory(const std::string &path)
{
    if (path.size() >= kDirectoryRoom)
        return Sentence(
            path, "has too long a path for a socket",
            ("set RSVP_HOST_DIR to one of at most " + std::to_string(kDirectoryRoom - 1) + " bytes").c_str());
    if (std::string problem = Create(path); !problem.empty())
        return problem;
    const int error = CheckDirectory(path.c_str());
    if (error == EACCES)
        return Sentence(path, "is a link, not a directory, another user's or open to others",
                        "remove it, or set RSVP_HOST_DIR to a directory of your own with mode 0700");
    if (error != 0)
        return Sentence(path, std::string("cannot be used: ") + std::strerror(error), "set RSVP_HOST_DIR");
    for (const std::string_view folder : {kServiceFolder, kOptionFolder})
        if (std::string problem = Create(PathOf(path, folder)); !problem.empty())
            return problem;
    return {};
}

std::string PathOf(std::string_view directory, std::string_view file)
{
    return std::string(directory).append("/").append(file);
}

FilePath::FilePath(std::string_view directory, std::string_view file)
{
    char *end = path_ + directory.copy(path_, kDirectoryRoom - 1);
    *end++ = '/';
    end[file.copy(end, sizeof(path_) - kDirectoryRoom - 1)] = '\0';
}

sockaddr_un SocketAddress(std::string_view directory)
{
    sockaddr_un address{};
    static_assert(kDirectoryRoom + kSocketFile.size() < sizeof(address.sun_path));
    address.sun_family = AF_UNIX;
    const FilePath path(directory, kSocketFile);
    std::string_view(path.Get()).copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

} // namespace rsvp_host
