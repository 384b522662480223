// A core is written by the process or piped to a program of the system's; each way has its own switch.
#include "process/hardening.h"

#include <cstdio>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace process {

void LeaveNoCore()
{
    constexpr rlimit kNone{0, 0};
    if (setrlimit(RLIMIT_CORE, &kNone) != 0)
        std::perror("core dumps cannot be switched off");
#ifdef NDEBUG // in a build for debugging, a debugger of the same user must get at the memory
    if (prctl(PR_SET_DUMPABLE, 0) != 0)
        std::perror("core dumps cannot be switched off");
#endif
}

} // namespace process
