// The handler. It does only what a signal handler may: the tool has one thread, and the flag keeps the handler away
// from the ending while that changes.
#include "tools/rsvpctl/print/interrupt.h"

#include "tools/rsvpctl/print/pager.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace rsvpctl {
namespace {

std::string &endingOfDocument = *new std::string; // never destroyed: Ctrl-C may come while the program ends
std::atomic<bool> writing = false;
std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may use no other");

[[noreturn]] void WriteEnding()
{
    const char *at = endingOfDocument.data();
    for (size_t left = endingOfDocument.size(); left != 0;) {
        const ssize_t written = write(STDOUT_FILENO, at, left);
        if (written < 0 && errno != EINTR)
            break; // nobody can be told
        if (written > 0) {
            at += written;
            left -= static_cast<size_t>(written);
        }
    }
    EndByInterrupt();
}

// A second Ctrl-C comes from a person who no longer waits for a reader that does not read.
void OnInterrupt(int)
{
    if (interrupted.exchange(true))
        EndByInterrupt();
    if (!writing)
        WriteEnding();
}

} // namespace

void EndDocumentOnInterrupt(std::string ending)
{
    struct sigaction action {};
    if (sigaction(SIGINT, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    endingOfDocument = std::move(ending);
    action.sa_handler = OnInterrupt;
    action.sa_flags = SA_RESTART | SA_NODEFER;
    (void)sigaction(SIGINT, &action, nullptr);
}

DocumentWrite::DocumentWrite()
{
    writing = true;
}

DocumentWrite::~DocumentWrite()
{
    writing = false;
    if (interrupted)
        WriteEnding();
}

void DocumentWrite::SetEnding(std::string ending)
{
    endingOfDocument = std::move(ending);
}

} // namespace rsvpctl
