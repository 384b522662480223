// What the stand-in tells about its failures. The library reduces every one of them to a code, so the reason goes to
// standard error; and most questions may not use the heap, so a reason is made without it.
#ifndef HOST_PLATFORM_REPORT_H
#define HOST_PLATFORM_REPORT_H

#include "host/directory.h"

#include <exception>
#include <string>
#include <string_view>

namespace rsvp_host {

// Why a question about the device has no answer. A default one is no problem.
class Problem {
public:
    Problem() = default;
    // `what` follows the path of the file in a sentence; `error` is the system's reason, or 0.
    Problem(std::string_view file, const char *what, int error = 0);

    explicit operator bool() const { return what_ != nullptr; }
    std::string Sentence(const char *directory) const;
    // Prints the sentence, and nothing if it is the one that was printed last: programs ask again and again. No heap.
    void Tell(const char *directory) const;

private:
    static constexpr size_t kRoom = kDirectoryRoom + 256;
    void Write(const char *directory, char (&sentence)[kRoom]) const;

    const char *what_ = nullptr;
    int error_ = 0;
    char file_[32] = {};
};

// The same for a sentence that is ready.
void TellOnce(std::string_view sentence);

// Runs what a platform call does: its callers are C programs and a library without exceptions, so none may leave it.
template <typename Result, typename Body> Result WithoutExceptions(Result failure, const Body &body) noexcept
{
    try {
        return body();
    } catch (const std::exception &error) {
        TellOnce(error.what());
        return failure;
    }
}

} // namespace rsvp_host

#endif
