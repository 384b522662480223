// `help`, `version` and the looks of a help text. The options --help and --version are these commands in other words,
// so that help as well comes as a document of JSON.
#include "tools/rsvpctl/command/help.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/commands.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

class Formatter : public CLI::Formatter {
public:
    explicit Formatter(const CommandLine &line) : line_(line) { column_width(34); }

    std::string make_help(const CLI::App *app, std::string name, CLI::AppFormatMode mode) const override
    {
        return make_description(app) + OtherNames(*app) + make_usage(app, std::move(name)) + make_positionals(app) +
               Options(*app) + make_subcommands(app, mode) + "\n" + make_footer(app);
    }

    std::string make_option_desc(const CLI::Option *option) const override
    {
        const bool isBoth = option->get_positional() && !option->get_lnames().empty();
        return option->get_description() + (isBoth ? "; also --" + option->get_lnames().front() : "");
    }

    // A flag that may have a value.
    std::string make_option_name(const CLI::Option *option, bool positional) const override
    {
        const std::string name = CLI::Formatter::make_option_name(option, positional);
        const size_t value = name.find('{');
        return value == std::string::npos ? name : name.substr(0, value) + "[=FILE]";
    }

    std::string make_option_usage(const CLI::Option *option) const override
    {
        const std::string name = make_option_name(option, true) + (option->get_allow_extra_args() ? "..." : "");
        return option->get_required() ? name : "[" + name + "]";
    }

    std::string make_subcommand(const CLI::App *app) const override
    {
        std::stringstream text;
        CLI::detail::format_help(text, app->get_name(), app->get_description(), column_width_);
        return text.str();
    }

private:
    static std::string OtherNames(const CLI::App &app)
    {
        const std::string names = manager::Joined(app.get_aliases(), ", ");
        return names.empty() ? "" : "Other names: " + names + "\n";
    }

    // An argument that is an option too is listed with the arguments.
    std::string Options(const CLI::App &app) const
    {
        std::string text;
        for (const CLI::App *from = &app; from != nullptr; from = from->get_parent()) {
            const auto options = from->get_options([&](const CLI::Option *option) {
                return !option->get_positional() && !line_.OfferedNames(*option, *from, app).empty();
            });
            if (!options.empty())
                text += make_group(TitleOf(*from, app), false, options);
        }
        return text;
    }

    static std::string TitleOf(const CLI::App &from, const CLI::App &at)
    {
        if (&from == &at)
            return "Options";
        return from.get_parent() == nullptr ? "Options of every command" : "Options of every " + PathOf(from);
    }

    const CommandLine &line_;
};

std::string HelpOf(const CLI::App &app)
{
    const std::string path = PathOf(app);
    return app.get_formatter()->make_help(&app, path.empty() ? "rsvpctl" : "rsvpctl " + path,
                                          CLI::AppFormatMode::Normal);
}

} // namespace

std::shared_ptr<CLI::FormatterBase> HelpFormatter(const CommandLine &line)
{
    return std::make_shared<Formatter>(line);
}

void AddHelpCommands(CommandLine &line)
{
    Command &help = line.Add(line.Root(), "help", "Print the help of a command, as --help after it does",
                             "  rsvpctl help show psb\n  rsvpctl help set dscp --json");
    const Option words = help.node.AddWords("word", "WORD", "The words of the command; none for the whole program");
    help.inBatch = false;
    help.mayBeLong = true;
    help.run = [&line, &help, words](Output &out) {
        const Node node = line.Find(words.Words());
        const std::string text = HelpOf(node.App());
        return out.Record(help.name, {{"command", node.Path()}, {"help", text}}, text, RSVP_MOR_OK);
    };

    Command &version = line.Add(line.Root(), "version", "Print the program's version", "  rsvpctl version --json");
    version.inBatch = false;
    version.run = [&version](Output &out) {
        return out.Record(version.name, {{"version", RSVPCTL_VERSION}}, "rsvpctl " RSVPCTL_VERSION "\n", RSVP_MOR_OK);
    };
}

} // namespace rsvpctl
