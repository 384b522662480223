// Files are read whole and at most so far that a device or a mistake cannot fill the memory.
#include "manager/dictionary/find.h"

#include "host/directory.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {
namespace {

constexpr size_t kMostBytes = 1 << 20;
constexpr const char *kSystemFile = "/etc/rsvp-mor/dictionary.toml";

std::string ReadWhole(const std::string &file)
{
    const auto fail = [&](const std::string &problem) {
        throw DictionaryError(fmt::format("{}: {}", file, problem));
    };
    const int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        fail(std::strerror(errno));
    struct stat about {};
    std::string text(kMostBytes + 1, '\0');
    size_t used = 0;
    ssize_t got = fstat(fd, &about);
    const bool isFile = got == 0 && S_ISREG(about.st_mode);
    while (isFile && used < text.size() && (got = read(fd, text.data() + used, text.size() - used)) > 0)
        used += static_cast<size_t>(got);
    const int error = errno;
    close(fd);
    if (got < 0)
        fail(std::strerror(error));
    if (!isFile)
        fail("is not a file");
    if (used > kMostBytes)
        fail("is larger than 1 MiB");
    text.resize(used);
    return text;
}

// A file that is there and cannot be looked at is not skipped: reading it says why.
bool IsThere(const std::string &file)
{
    return access(file.c_str(), F_OK) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

} // namespace

Dictionary ReadDictionary(const std::string &file, std::span<const TableShape> tables)
{
    return {ReadWhole(file), file, tables};
}

Dictionary FindDictionary(const std::string &chosen, std::span<const TableShape> tables)
{
    std::string file = chosen;
    if (const char *named = std::getenv("RSVP_DICTIONARY"); file.empty() && named != nullptr)
        file = named;
    if (file == kNoDictionary)
        return {};
    if (!file.empty())
        return ReadDictionary(file, tables);
    for (const std::string &usual :
         {rsvp_host::PathOf(rsvp_host::DirectoryPath(), rsvp_host::kDictionaryFile), std::string(kSystemFile)}) {
        if (IsThere(usual))
            return ReadDictionary(usual, tables);
    }
    return {kSimulatedDaemon, "the dictionary of the simulated daemon", tables};
}

} // namespace manager
