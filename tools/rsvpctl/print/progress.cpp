// The progress line of a long walk. It is cleared before a row goes to the same terminal and when the walk ends, so
// that it never mixes with the document.
#include "tools/rsvpctl/print/progress.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/print/terminal.h"

#include <cstdio>
#include <fmt/format.h>
#include <unistd.h>

namespace rsvpctl {
namespace {

constexpr auto kFirstShown = std::chrono::seconds(1);
constexpr auto kBetweenShown = std::chrono::milliseconds(250);

} // namespace

Progress::Progress()
    : onTerminal_(TakesEscapes(STDERR_FILENO)), rowsOnTerminal_(isatty(STDOUT_FILENO) == 1), start_(Clock::now()),
      next_(start_ + kFirstShown)
{
}

Progress::~Progress()
{
    Clear();
}

void Progress::Clear()
{
    if (!shown_)
        return;
    (void)std::fputs("\r\x1b[K", stderr);
    shown_ = false;
}

void Progress::BeforeRow()
{
    if (rowsOnTerminal_)
        Clear();
}

void Progress::AfterRow(uint64_t rows)
{
    if (!onTerminal_)
        return;
    const auto now = Clock::now();
    if (now < next_)
        return;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const std::string line = fmt::format("\r\x1b[K{}, {:.0f} rows/s", manager::CountText(rows, "row"),
                                         static_cast<double>(rows) / seconds);
    (void)std::fputs(line.c_str(), stderr);
    shown_ = true;
    next_ = now + kBetweenShown;
}

} // namespace rsvpctl
