// Reads the command line; messages name the option that is wrong.
#include "tools/agentx/options.h"

#include "manager/record/text.h"

#include <CLI/CLI.hpp>

namespace agentx {
namespace {

constexpr auto kVersion = "rsvp-agentx " RSVP_AGENTX_VERSION;

constexpr auto kFooter = R"(Examples:
  rsvp-agentx --check
  rsvp-agentx --foreground --agentx-socket unix:/var/agentx/master

Exit status: 0 ended by a signal, or the check went well; 1 a table could not be read by the check; 2 wrong usage, or
a dictionary that cannot be used; 3 the system refused something.)";

CLI::Option *AddDuration(CLI::App &app, const std::string &name, std::chrono::milliseconds &duration,
                         const std::string &help)
{
    const auto take = [&duration](const std::string &text) {
        const auto given = manager::ParseDuration(text);
        if (!given || given->count() == 0)
            throw CLI::ValidationError("'" + text + "' is no duration such as 500ms, 10s or 5m");
        duration = *given;
    };
    return app.add_option_function<std::string>(name, take, help)
        ->type_name("TIME")
        ->default_str(manager::DurationText(duration));
}

} // namespace

std::optional<Options> ReadOptions(int argc, char **argv, int &exitStatus)
{
    Options options;
    CLI::App app("Serves the tables of the signalling daemon to SNMP, as a subagent of a master such as snmpd.",
                 "rsvp-agentx");
    app.footer(kFooter);
    app.set_version_flag("--version", kVersion);
    app.add_flag("--foreground", options.foreground, "stay with the terminal; lines go to standard error");
    app.add_option("--agentx-socket", options.socket, "where the master is")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--dictionary", options.dictionary, "what the daemon means by its words, or \"none\"")
        ->type_name("FILE");
    AddDuration(app, "--interval", options.interval, "pause between two reads of a table");
    AddDuration(app, "--max-age", options.maxAge, "an older table is served as empty");
    app.add_flag("--syslog", options.syslog, "lines go to syslog, in the foreground too");
    app.add_flag("--check", options.check, "read everything once, tell what would be served, and end");
    try {
        app.parse(argc, argv);
        if (options.maxAge < options.interval)
            throw CLI::ValidationError("--max-age",
                                       "is shorter than --interval: a table would be empty half the time");
    } catch (const CLI::ParseError &error) {
        exitStatus = app.exit(error) == 0 ? 0 : 2;
        return std::nullopt;
    }
    return options;
}

} // namespace agentx
