// Parsing of command lines.
#include "tools/rsvpctl/command/command_line.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

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

[[noreturn]] void Refuse(const std::string &name, const std::string &problem)
{
    throw UsageError(name.empty() ? problem : name + ": " + problem, name,
                     fmt::format("see 'rsvpctl{}{} --help'", name.empty() ? "" : " ", name));
}

// A word that no parser took says more than the parser's complaint about what should follow it.
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

bool WantsJson(const std::vector<std::string> &words)
{
    return std::find(words.begin(), words.end(), "--json") != words.end();
}

CommandLine::CommandLine() : root_(std::make_unique<CLI::App>("Configures and reads the RSVP-TE daemon.", "rsvpctl"))
{
    root_->fallthrough();
    root_->require_subcommand(1);
    root_->footer(kRootExamples);
    root_->get_formatter()->column_width(34);
    json_ = Root().AddFlag("--json", "One JSON document on standard output");
    detail_ = Root().AddFlag("--detail", "Every field of a row, one a line").Excludes(json_);
    color_ = Root().AddChoice("--color", "WHEN", {"auto", "always", "never"},
                              "Colour: auto (only on a terminal, and without NO_COLOR), always, never");
    noPager_ = Root().AddFlag("--no-pager", "Long output straight to the terminal, not through $PAGER");
}

CommandLine::~CommandLine() = default;

Node CommandLine::Root() const
{
    return Node(root_.get());
}

Node CommandLine::AddGroup(Node parent, const std::string &word, const std::string &help, const std::string &examples)
{
    CLI::App *app = parent.App().add_subcommand(word, help);
    app->require_subcommand(1);
    app->footer("Examples:\n" + examples);
    return Node(app);
}

Command &CommandLine::Add(Node parent, const std::string &word, const std::string &help, const std::string &examples)
{
    auto command = std::make_unique<Command>();
    CLI::App *app = parent.App().add_subcommand(word, help);
    app->footer("Examples:\n" + examples);
    command->node = Node(app);
    command->name = command->node.Path();
    command->examples = examples;
    Command &added = *command;
    commands_.emplace(added.name, std::move(command));
    return added;
}

Command *CommandLine::Parse(const std::vector<std::string> &words, std::string &help)
{
    try {
        root_->parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp &) {
        help = root_->help();
        return nullptr;
    } catch (const CLI::ParseError &error) {
        Refuse(Node(Deepest(*root_)).Path(), Problem(*root_, error));
    }
    return commands_.at(Node(Deepest(*root_)).Path()).get();
}

Command &CommandLine::ParseLine(const std::vector<std::string> &words)
{
    // The longest name wins: "show frr general" before "show".
    for (size_t count = std::min<size_t>(words.size(), 3); count > 0; --count) {
        const auto found = commands_.find(manager::Joined(std::span(words).first(count), " "));
        if (found == commands_.end())
            continue;
        Command &command = *found->second;
        if (!command.inBatch)
            Refuse(command.name, "cannot be used in a batch");
        try {
            const auto last = words.rend() - static_cast<ptrdiff_t>(count);
            command.node.App().parse(std::vector<std::string>(words.rbegin(), last));
        } catch (const CLI::CallForHelp &) {
            Refuse(command.name, "--help cannot be used in a batch");
        } catch (const CLI::ParseError &error) {
            Refuse(command.name, Problem(command.node.App(), error));
        }
        return command;
    }
    Refuse("", fmt::format("there is no command '{}'", manager::Joined(words, " ")));
}

Style CommandLine::ChosenStyle() const
{
    if (json_.IsGiven())
        return Style::Json;
    return detail_.IsGiven() ? Style::Detail : Style::Table;
}

Color CommandLine::ChosenColor() const
{
    const std::string when = color_.Text();
    return when == "always" ? Color::Always : when == "never" ? Color::Never : Color::Auto;
}

bool CommandLine::MayUsePager() const
{
    return !noPager_.IsGiven();
}

std::vector<Command *> CommandLine::CommandsBelow(const std::string &path) const
{
    std::vector<Command *> below;
    for (const auto &[name, command] : commands_) {
        if (path.empty() || name.starts_with(path + " "))
            below.push_back(command.get());
    }
    return below;
}

} // namespace rsvpctl
