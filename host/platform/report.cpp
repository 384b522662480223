// Sentences for people, from calls that have no other way to say why they failed.
#include "host/platform/report.h"

#include <atomic>
#include <cstdio>
#include <cstring>

namespace rsvp_host {

Problem::Problem(std::string_view file, const char *what, int error) : what_(what), error_(error)
{
    file_[file.copy(file_, sizeof(file_) - 1)] = '\0';
}

void Problem::Write(const char *directory, char (&sentence)[kRoom]) const
{
    std::snprintf(sentence, sizeof(sentence), "%s/%s %s%s%s", directory, file_, what_, error_ == 0 ? "" : ": ",
                  error_ == 0 ? "" : std::strerror(error_));
}

std::string Problem::Sentence(const char *directory) const
{
    char sentence[kRoom];
    Write(directory, sentence);
    return sentence;
}

void Problem::Tell(const char *directory) const
{
    char sentence[kRoom];
    Write(directory, sentence);
    TellOnce(sentence);
}

void TellOnce(std::string_view sentence)
{
    static std::atomic<size_t> last = 0;
    const size_t hash = std::hash<std::string_view>()(sentence);
    if (last.exchange(hash) != hash)
        std::fprintf(stderr, "rsvp_host: %.*s\n", static_cast<int>(sentence.size()), sentence.data());
}

} // namespace rsvp_host
