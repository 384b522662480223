// Lines for whoever looks after the agent, on standard error or through syslog. Any thread may write one.
#ifndef TOOLS_AGENTX_LOG_H
#define TOOLS_AGENTX_LOG_H

#include <string>
#include <syslog.h>

namespace agentx {

enum class Level : int { Error = LOG_ERR, Warning = LOG_WARNING, Info = LOG_INFO };

/** From now on lines go to syslog. */
void LogToSyslog();

void Log(Level level, const std::string &line);

} // namespace agentx

#endif
