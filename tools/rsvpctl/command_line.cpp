// Parsing of command lines, and the way from a parsed one to its exit status.
#include "command_line.h"

#include "pager.h"

#include <algorithm>
#include <fmt/format.h>
#include <system_error>

namespace rsvpctl {
namespace {

constexpr const char *kRootExamples = R"(Examples:
  rsvpctl enable                                start the service on the master and the standby nodes
  rsvpctl set interface 3                       RSVP on interface 3
  rsvpctl set retrans-interval 500 --interface 3
  rsvpctl show tunnels --json                   one JSON document, for programs
  rsvpctl batch settings.txt                    one command a line
  rsvpctl explain 0x6001001a                    what a status means

Exit status: 0 done; 1 the daemon refused; 2 wrong usage; 3 no session to the daemon;
4 the exchange failed or the reply was out of format; 5 the service is not enabled.)";

std::string Joined(const std::vector<std::string> &words, size_t count)
{
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : " ") + words[i];
    return text;
}

[[noreturn]] void Refuse(const std::string &name, const std::string &problem)
{
    throw UsageError(name.empty() ? problem : name + ": " + problem, name,
                     fmt::format("see 'rsvpctl{}{} --help'", name.empty() ? "" : " ", name));
}

// A word that no parser took says more than the parser's complaint about what is missing behind it.
std::string Problem(const CLI::App &top, const CLI::ParseError &error)
{
    const std::vector<std::string> left = top.remaining(true);
    return left.empty() ? error.what() : fmt::format("'{}' is not expected here", left.front());
}

CLI::App *Deepest(CLI::App &app)
{
    CLI::App *deepest = &app;
    while (!deepest->get_subcommands().empty())
        deepest = deepest->get_subcommands().front();
    return deepest;
}

} // namespace

std::string PathOf(const CLI::App &app)
{
    const CLI::App *parent = app.get_parent();
    if (parent == nullptr)
        return {};
    const std::string before = PathOf(*parent);
    return before.empty() ? app.get_name() : before + " " + app.get_name();
}

bool WantsJson(const std::vector<std::string> &words)
{
    return std::find(words.begin(), words.end(), "--json") != words.end();
}

CommandLine::CommandLine() : root_("Configures and reads the RSVP-TE daemon.", "rsvpctl")
{
    root_.fallthrough();
    root_.require_subcommand(1);
    root_.footer(kRootExamples);
    root_.get_formatter()->column_width(34);
    json_ = root_.add_flag("--json")->description("One JSON document on standard output");
    detail_ = root_.add_flag("--detail")->description("Every field of a row, one a line")->excludes(json_);
    color_ = root_.add_option("--color", "Colour: auto (only on a terminal, and without NO_COLOR), always, never")
                 ->check(CLI::IsMember({"auto", "always", "never"}))
                 ->type_name("WHEN");
    noPager_ = root_.add_flag("--no-pager")->description("Long output straight to the terminal, not through $PAGER");
}

CLI::App &CommandLine::AddGroup(CLI::App &parent, const std::string &word, const std::string &help,
                                const std::string &examples)
{
    CLI::App *app = parent.add_subcommand(word, help);
    app->require_subcommand(1);
    app->footer("Examples:\n" + examples);
    return *app;
}

Command &CommandLine::Add(CLI::App &parent, const std::string &word, const std::string &help,
                          const std::string &examples)
{
    auto command = std::make_unique<Command>();
    command->parser = parent.add_subcommand(word, help);
    command->parser->footer("Examples:\n" + examples);
    command->name = PathOf(*command->parser);
    Command &added = *command;
    commands_.emplace(added.name, std::move(command));
    return added;
}

Command *CommandLine::Parse(const std::vector<std::string> &words, std::string &help)
{
    try {
        root_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp &) {
        help = root_.help();
        return nullptr;
    } catch (const CLI::ParseError &error) {
        Refuse(PathOf(*Deepest(root_)), Problem(root_, error));
    }
    return commands_.at(PathOf(*Deepest(root_))).get();
}

Command &CommandLine::ParseLine(const std::vector<std::string> &words)
{
    // The longest name wins: "show frr general" before "show".
    for (size_t count = std::min<size_t>(words.size(), 3); count > 0; --count) {
        const auto found = commands_.find(Joined(words, count));
        if (found == commands_.end())
            continue;
        Command &command = *found->second;
        if (!command.inBatch)
            Refuse(command.name, "cannot stand in a batch");
        try {
            const auto last = words.rend() - static_cast<std::ptrdiff_t>(count);
            command.parser->parse(std::vector<std::string>(words.rbegin(), last));
        } catch (const CLI::CallForHelp &) {
            Refuse(command.name, "--help cannot stand in a batch");
        } catch (const CLI::ParseError &error) {
            Refuse(command.name, Problem(*command.parser, error));
        }
        return command;
    }
    Refuse("", fmt::format("there is no command '{}'", Joined(words, words.size())));
}

Style CommandLine::ChosenStyle() const
{
    if (json_->count() != 0)
        return Style::Json;
    return detail_->count() != 0 ? Style::Detail : Style::Table;
}

Color CommandLine::ChosenColor() const
{
    const std::string when = TextValue(color_);
    return when == "always" ? Color::Always : when == "never" ? Color::Never : Color::Auto;
}

bool CommandLine::MayUsePager() const
{
    return noPager_->count() == 0;
}

std::vector<Command *> CommandLine::CommandsBelow(const std::string &path)
{
    std::vector<Command *> below;
    for (const auto &[name, command] : commands_) {
        if (name.starts_with(path + " "))
            below.push_back(command.get());
    }
    return below;
}

void AddShowCommands(CommandLine &line, CLI::App &parent)
{
    CLI::App &show = line.AddGroup(parent, "show", "Read settings, counters, tables and state",
                                   "  rsvpctl show global\n"
                                   "  rsvpctl show interfaces 3 --json\n"
                                   "  rsvpctl show tunnels --ingress\n"
                                   "  rsvpctl show neighbours --after 1,0        the rows behind this key");
    AddRecordCommands(line, show);
    AddTableCommands(line, show);
    AddLspCommands(line, show);
    AddP2mpCommands(line, show);
}

void AddCommands(CommandLine &line)
{
    AddServiceCommands(line);
    AddSettingCommands(line);
    AddDebugCommands(line);
    AddShowCommands(line, line.Root());
    AddTreeCommand(line);
    AddWatchCommands(line);
    AddBatchCommand(line);
    AddSchemaCommand(line);
    AddCompletionCommands(line);
}

int RunProgram(const std::vector<std::string> &words)
{
    CommandLine line;
    AddCommands(line);
    std::string help;
    Command *command = nullptr;
    try {
        command = line.Parse(words, help);
    } catch (const UsageError &error) {
        Output out(WantsJson(words) ? Style::Json : Style::Table, Color::Auto);
        return static_cast<int>(out.Finish(out.WrongUsage(error.command.empty() ? "usage" : error.command, error)));
    }
    Output out(line.ChosenStyle(), line.ChosenColor());
    const Pager pager(line.MayUsePager() && (command == nullptr || MayBeLong(command->name)));
    if (command == nullptr)
        return static_cast<int>(out.Finish(out.Help(help)));
    try {
        return static_cast<int>(out.Finish(command->run(out)));
    } catch (const UsageError &error) {
        return static_cast<int>(out.Finish(out.WrongUsage(command->name, error)));
    } catch (const std::system_error &error) { // a watch that cannot have a process or a pipe
        out.Message(fmt::format("rsvpctl: {}: {}", command->name, error.what()));
        return static_cast<int>(Exit::Exchange);
    }
}

} // namespace rsvpctl
