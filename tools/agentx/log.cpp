// One call of the system a line, so that lines of several threads do not mix.
#include "tools/agentx/log.h"

#include "manager/record/text.h"

#include <unistd.h>

namespace agentx {
namespace {

bool isSyslog = false; // set before there are threads

} // namespace

void LogToSyslog()
{
    openlog("rsvp-agentx", LOG_PID | LOG_NDELAY, LOG_DAEMON);
    isSyslog = true;
}

void Log(Level level, const std::string &line)
{
    if (isSyslog) {
        syslog(static_cast<int>(level), "%s", manager::HarmlessText(line).c_str());
        return;
    }
    const std::string text = "rsvp-agentx: " + manager::HarmlessText(line) + "\n";
    (void)!write(STDERR_FILENO, text.data(), text.size()); // there is nobody to tell if it fails
}

} // namespace agentx
