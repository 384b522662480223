// Entry of the tool. A closed pipe must end a walk, not kill the process while a session is open, so SIGPIPE is
// ignored and shows as a failed write.
#include "command_line.h"

#include <csignal>

int main(int argc, char **argv)
{
    (void)std::signal(SIGPIPE, SIG_IGN);
    return rsvpctl::RunProgram({argv + 1, argv + argc});
}
