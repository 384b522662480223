// Ending early. It does only what a signal handler may: the tool has one thread, and the flag keeps the handler away
// from the endings while they change.
#include "tools/rsvpctl/print/interrupt.h"

#include "tools/rsvpctl/print/pager.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace rsvpctl {
namespace {

Endings &endingsOfDocument = *new Endings; // never destroyed: Ctrl-C may come while the program ends
int documentToEnd = STDOUT_FILENO;
std::atomic<bool> writing = false;
std::atomic<Exit> wanted = Exit::Done; // other than done: somebody wants the end
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<Exit>::is_always_lock_free,
              "a signal handler may use no other");

[[noreturn]] void WriteEnding(Exit exit)
{
    const std::string &ending = exit == Exit::TimeOver ? endingsOfDocument.timeOver : endingsOfDocument.interrupted;
    const char *at = ending.data();
    for (size_t left = ending.size(); left != 0;) {
        const ssize_t written = write(documentToEnd, at, left);
        if (written < 0 && errno != EINTR)
            break; // nobody can be told
        if (written > 0) {
            at += written;
            left -= static_cast<size_t>(written);
        }
    }
    EndProcess(exit);
}

} // namespace

// A second Ctrl-C comes from a person who no longer waits for a reader that does not read.
void EndEarly(Exit exit)
{
    if (wanted.exchange(exit) != Exit::Done)
        EndProcess(exit);
    if (!writing)
        WriteEnding(exit);
}

void EndDocumentEarly(int document, Endings endings)
{
    documentToEnd = document;
    endingsOfDocument = std::move(endings);
    struct sigaction action {};
    if (sigaction(SIGINT, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action.sa_handler = [](int) { EndEarly(Exit::Interrupted); };
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
    if (const Exit exit = wanted; exit != Exit::Done)
        WriteEnding(exit);
}

void DocumentWrite::SetEndings(Endings endings)
{
    endingsOfDocument = std::move(endings);
}

} // namespace rsvpctl
