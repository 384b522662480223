// The option file reader. "/etc/te.conf" is a text file in the host directory: a line "plugin-option NAME=NUMBER ..."
// is an option, '#' begins a comment, and lines that begin with another word are for other readers and are skipped.
#include "host/platform/options.h"
#include "host/platform/checked_directory.h"
#include "host/text.h"
#include "platform/options.h"
#include "rsvp_mor/status_codes.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::string_view kKeyword = "plugin-option";
constexpr size_t kOptionRoom = 128;

const HostOption *FindOption(const HostOption *table, std::string_view name)
{
    for (; table->name != nullptr; ++table)
        if (name == table->name)
            return table;
    return nullptr;
}

// One "name=number" of an option line. Nothing is stored without `target`.
bool ReadPair(std::string_view pair, const HostOption *table, char *target)
{
    const HostOption *option = FindOption(table, rsvp_host::CutOff(pair, "="));
    const auto read = rsvp_host::ReadNumber(pair, UINT32_MAX);
    if (option == nullptr || !read)
        return false;
    const auto number = static_cast<uint32_t>(*read);
    if (target != nullptr)
        std::memcpy(target + option->offset, &number, sizeof(number));
    return true;
}

} // namespace

extern "C" {

// A pipe in place of the file must not block the caller for ever.
void *PLUGIN_OptInit(const char *path)
{
    char directory[rsvp_host::kDirectoryRoom];
    if (path == nullptr || path[0] != '/' || path + 1 != rsvp_host::kOptionFile ||
        rsvp_host::FindDirectory(directory) != 0)
        return nullptr;
    const int fd =
        open(rsvp_host::FilePath(directory, rsvp_host::kOptionFile).Get(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat found;
    std::FILE *file = fd >= 0 && fstat(fd, &found) == 0 && S_ISREG(found.st_mode) ? fdopen(fd, "r") : nullptr;
    if (file == nullptr && fd >= 0)
        close(fd);
    return file;
}

// Puts the option's text into `buffer` and its length into `word`. An option that does not fit ends the walk: half an
// option must not pass for a whole one.
void *PLUGIN_GetNextPlugOpt(void *handle, char buffer[128], uint32_t *word)
{
    if (handle == nullptr || buffer == nullptr || word == nullptr)
        return nullptr;
    auto *file = static_cast<std::FILE *>(handle);
    char *line = nullptr;
    size_t lineRoom = 0;
    bool found = false;
    for (ssize_t got; !found && (got = getline(&line, &lineRoom, file)) >= 0;) {
        std::string_view text(line, static_cast<size_t>(got));
        text = text.substr(0, text.find('#'));
        if (rsvp_host::NextWord(text) != kKeyword)
            continue;
        text = rsvp_host::WithoutBlanks(text);
        if (text.size() >= kOptionRoom)
            break;
        buffer[text.copy(buffer, kOptionRoom - 1)] = '\0';
        *word = static_cast<uint32_t>(text.size());
        found = true;
    }
    std::free(line);
    return found ? buffer : nullptr;
}

// Stores every pair of the line or none: the first pass only looks for mistakes.
uint32_t OPT_ParseEx(uint32_t word, void *option, void *table, void *target)
{
    if (option == nullptr || table == nullptr || target == nullptr)
        return RSVP_MOR_ERR_FAIL;
    for (char *store : {static_cast<char *>(nullptr), static_cast<char *>(target)}) {
        std::string_view text(static_cast<const char *>(option), word);
        for (std::string_view pair = rsvp_host::NextWord(text); !pair.empty(); pair = rsvp_host::NextWord(text))
            if (!ReadPair(pair, static_cast<const HostOption *>(table), store))
                return RSVP_MOR_ERR_FAIL;
    }
    return 0;
}

void PLUGIN_OptFini(void *handle)
{
    if (handle != nullptr)
        std::fclose(static_cast<std::FILE *>(handle));
}

} // extern "C"
