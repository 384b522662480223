// The standard descriptors of a process that was started without them.
#include "process/standard_streams.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace process {

void OpenStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF)
            continue;
        // The lowest free number is this one. It is opened for the other direction, so that a write is seen to fail.
        if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream)
            std::abort();
    }
}

} // namespace process
