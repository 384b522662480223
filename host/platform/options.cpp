// The option file reader. "/etc/te.conf" is a text file in the host directory: a line "plugin-option NAME=NUMBER ..."
// is an option, '#' begins a comment, and lines of other words belong to other readers and are passed over.
#include "host/platform/options.h"
#include "host/platform/checked_directory.h"
#include "platform/options.h"
#include "rsvp_mor/status_codes.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kKeyword = "plugin-option";
constexpr std::size_t kOptionRoom = 128;

// Cuts the first word off `text`; empty at the end.
std::string_view NextWord(std::string_view &text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

bool ReadNumber(std::string_view text, std::uint32_t &number)
{
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal)
        text.remove_prefix(2);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
    return error == std::errc() && end == text.data() + text.size();
}

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
    const std::size_t equals = pair.find('=');
    if (equals == std::string_view::npos)
        return false;
    const HostOption *option = FindOption(table, pair.substr(0, equals));
    std::uint32_t number = 0;
    if (option == nullptr || !ReadNumber(pair.substr(equals + 1), number))
        return false;
    if (target != nullptr)
        std::memcpy(target + option->offset, &number, sizeof(number));
    return true;
}

} // namespace

extern "C" {

void *PLUGIN_OptInit(const char *path)
{
    char directory[rsvp_host::kDirectoryRoom];
    if (path == nullptr || std::strcmp(path, "/etc/te.conf") != 0 || rsvp_host::FindDirectory(directory) != 0)
        return nullptr;
    return std::fopen((std::string(directory) + path).c_str(), "re");
}

// The option's words go into `buffer` and their length into `word`. An option that does not fit ends the walk:
// half an option must not be taken for a whole one.
void *PLUGIN_GetNextPlugOpt(void *handle, char buffer[128], std::uint32_t *word)
{
    if (handle == nullptr || buffer == nullptr || word == nullptr)
        return nullptr;
    auto *file = static_cast<std::FILE *>(handle);
    char *line = nullptr;
    std::size_t lineRoom = 0;
    bool found = false;
    for (ssize_t got; !found && (got = getline(&line, &lineRoom, file)) >= 0;) {
        std::string_view text(line, static_cast<std::size_t>(got));
        text = text.substr(0, text.find('#'));
        if (NextWord(text) != kKeyword)
            continue;
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
        if (text.size() >= kOptionRoom)
            break;
        buffer[text.copy(buffer, kOptionRoom - 1)] = '\0';
        *word = static_cast<std::uint32_t>(text.size());
        found = true;
    }
    std::free(line);
    return found ? buffer : nullptr;
}

// Either every pair of the line is stored or none: the first pass looks for mistakes.
std::uint32_t OPT_ParseEx(std::uint32_t word, void *option, void *table, void *target)
{
    if (option == nullptr || table == nullptr || target == nullptr)
        return RSVP_MOR_ERR_FAIL;
    for (char *store : {static_cast<char *>(nullptr), static_cast<char *>(target)}) {
        std::string_view text(static_cast<const char *>(option), word);
        for (std::string_view pair = NextWord(text); !pair.empty(); pair = NextWord(text))
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
