// Parsing of command lines.
#include "tools/rsvpctl/command/command_line.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/command/batch.h"
#include "tools/rsvpctl/command/help.h"
#include "tools/rsvpctl/command/nearest.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace rsvpctl {
namespace {

constexpr const char *kRootExamples = R"(Examples:
  rsvpctl enable                                   # start the service on the master and the standby nodes
  rsvpctl set interface 3                          # RSVP on interface 3
  rsvpctl set retrans-interval 500 --interface 3
  rsvpctl show tunnels --json                      # one JSON document, for programs
  rsvpctl show lsp tunnel-100                      # all that is known of one LSP
  rsvpctl show psb --detail                        # every field of each row
  echo 'set interface 3' | rsvpctl batch -         # one command a line
  rsvpctl explain 0x6001001a                       # what a status means
  rsvpctl help set dscp

Exit status: 0 done; 1 the daemon refused; 2 wrong usage; 3 no session to the daemon; 4 the exchange failed,
the reply was out of format or a walk was broken; 5 the service is not enabled; 6 the time of --timeout was over;
7 the output could not be written; 130 Ctrl-C ended it.)";

constexpr const char *kStandardError = "-";
constexpr const char *kTimeout = "--timeout";
constexpr std::chrono::milliseconds kLeastTimeout(1);

[[noreturn]] void Refuse(const std::string &name, const std::string &problem)
{
    throw UsageError(name.empty() ? problem : name + ": " + problem, name,
                     fmt::format("see 'rsvpctl{}{} --help'", name.empty() ? "" : " ", name));
}

std::vector<Spelling> WordsBelow(const CLI::App &app)
{
    std::vector<Spelling> words;
    for (const CLI::App *below : app.get_subcommands({})) {
        words.push_back({below->get_name(), below->get_name()});
        for (const std::string &alias : below->get_aliases())
            words.push_back({alias, below->get_name()});
    }
    return words;
}

CLI::App *Deepest(CLI::App &app)
{
    CLI::App *deepest = &app;
    while (!deepest->get_subcommands().empty())
        deepest = deepest->get_subcommands().front();
    return deepest;
}

} // namespace

CLI::App *Below(CLI::App &app, const std::string &word)
{
    const auto below = app.get_subcommands([&](const CLI::App *one) { return one->check_name(word); });
    return below.empty() ? nullptr : below.front();
}

bool WantsJson(const std::vector<std::string> &words)
{
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        if (word == "--json" || word == "--output=json" || word == "-ojson")
            return true;
        if ((word == "--output" || word == "-o") && i + 1 < words.size() && words[i + 1] == "json")
            return true;
    }
    return false;
}

CommandLine::CommandLine() : root_(std::make_unique<CLI::App>("Configures and reads the RSVP-TE daemon.", "rsvpctl"))
{
    root_->fallthrough();
    root_->require_subcommand(1);
    root_->footer(kRootExamples);
    root_->formatter(HelpFormatter(*this));
    root_->set_version_flag("--version", RSVPCTL_VERSION, "Print the program's version");
    json_ = Root().AddFlag("--json", "One JSON document on standard output, as --output json");
    form_ = Root().AddChoice("-o,--output", "FORM", {"table", "wide", "csv", "json"},
                             "What a table looks like: the columns that fit, all, or all for other programs");
    detail_ = Root().AddFlag("--detail", "Every field of a row, one a line; for show and batch");
    color_ = Root().AddChoice("--color", "WHEN", {"auto", "always", "never"},
                              "Colour: auto (only on a terminal, and without NO_COLOR), always, never");
    (void)Root().AddFile("--dictionary", "What the daemon means by its words; none for their numbers");
    noPager_ = Root().AddFlag("--no-pager", "Long output straight to the terminal, not through $PAGER");
    trace_ = Root().AddFlagWithFile("--trace", kStandardError, "Every message in words, to standard error or a file");
    traceHex_ = Root().AddFlag("--trace-hex", "The bytes of each message too, without keys").Needs(trace_);
    timeout_ = Root().AddDuration(kTimeout, kLeastTimeout, manager::kLongestDuration,
                                  "Give up after that time, with what came until then");
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

const Command &CommandLine::Parse(const std::vector<std::string> &words)
{
    try {
        root_->parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp &) {
        return ParseInstead("help " + PathOf(*Deepest(*root_)));
    } catch (const CLI::CallForVersion &) {
        return ParseInstead("version");
    } catch (const CLI::ParseError &error) {
        const CLI::App &at = *Deepest(*root_);
        Refuse(PathOf(at), Problem(*root_, at, PathOf(at), error));
    }
    const std::string path = PathOf(*Deepest(*root_));
    CheckForm(path);
    return *commands_.at(path);
}

void CommandLine::CheckForm(const std::string &path) const
{
    const std::string form = form_.Text();
    if (json_.IsGiven() && form_.IsGiven() && form != "json")
        Refuse(path, fmt::format("--json contradicts --output {}", form));
    if ((form == "wide" || form == "csv") && !commands_.at(path)->hasColumns)
        Refuse(path, fmt::format("--output {} changes nothing here; it is for the tables of 'show', and for 'batch'",
                                 form));
    if (!detail_.IsGiven())
        return;
    if (!TakesDetail(path))
        Refuse(path, "--detail changes nothing here; it is for 'show', 'debug show' and 'batch'");
    if (ChosenStyle() == Style::Json)
        Refuse(path, "--detail excludes JSON, which has every field");
    if (form_.IsGiven())
        Refuse(path, fmt::format("--detail contradicts --output {}", form));
}

const Command &CommandLine::ParseInstead(const std::string &text)
{
    std::vector<std::string> words = SplitWords(text);
    if (ChosenStyle() == Style::Json)
        words.emplace_back("--json");
    if (noPager_.IsGiven())
        words.emplace_back("--no-pager");
    return Parse(words);
}

Command &CommandLine::ParseLine(const std::vector<std::string> &words)
{
    CLI::App *app = root_.get();
    std::string name;
    auto word = words.begin();
    for (CLI::App *below = nullptr; word != words.end() && (below = Below(*app, *word)) != nullptr; ++word) {
        app = below;
        name += (name.empty() ? "" : " ") + app->get_name();
    }
    const auto found = commands_.find(name);
    if (found == commands_.end())
        Refuse(name, word == words.end() ? "another word is needed" : NotExpected(*word, *app, false));
    Command &command = *found->second;
    if (!command.inBatch)
        Refuse(name, "cannot be used in a batch");
    try {
        app->parse(std::vector<std::string>(words.rbegin(), std::make_reverse_iterator(word)));
    } catch (const CLI::CallForHelp &) {
        Refuse(name, "--help cannot be used in a batch");
    } catch (const CLI::ParseError &error) {
        Refuse(name, Problem(*app, *app, name, error));
    }
    return command;
}

Node CommandLine::Find(const std::vector<std::string> &words) const
{
    CLI::App *app = root_.get();
    for (const std::string &word : words) {
        CLI::App *below = Below(*app, word);
        if (below == nullptr)
            Refuse(PathOf(*app), NotExpected(word, *app, false));
        app = below;
    }
    return Node(app);
}

// A word that no parser took says more than the parser's complaint about what should follow it.
std::string CommandLine::Problem(const CLI::App &top, const CLI::App &at, const std::string &path,
                                 const CLI::ParseError &error) const
{
    const auto command = commands_.find(path);
    const bool secret = command != commands_.end() && command->second->takesSecret;
    const std::vector<std::string> left = top.remaining(true);
    if (!left.empty())
        return NotExpected(left.front(), at, secret);
    const std::string text = error.what();
    return secret ? text.substr(0, text.find(kButGiven)) : text;
}

std::string CommandLine::NotExpected(const std::string &word, const CLI::App &at, bool secret) const
{
    const bool isOption = word.starts_with("-");
    const std::string name = isOption ? word.substr(0, word.find('=')) : word;
    std::vector<Spelling> known;
    if (!isOption)
        known = WordsBelow(at);
    for (const CLI::App *from = &at; isOption && from != nullptr; from = from->get_parent()) {
        for (const CLI::Option *option : from->get_options())
            for (const std::string &offered : OfferedNames(*option, *from, at))
                known.push_back({offered, offered});
    }
    return (secret ? "a word is not expected here; it is not shown, since it may be a key"
                   : fmt::format("'{}' is not expected here", name)) +
           DidYouMean(name, known);
}

std::vector<std::string> CommandLine::OfferedNames(const CLI::Option &option, const CLI::App &from,
                                                   const CLI::App &at) const
{
    bool offered = true;
    if (&from != root_.get())
        offered = &option != from.get_help_ptr(); // every node has one; the program's is enough to offer
    else if (&option == from.get_version_ptr())
        offered = &at == &from;
    else if (detail_.Is(option))
        offered = TakesDetail(PathOf(at));
    std::vector<std::string> names;
    for (const std::string &name : offered ? option.get_lnames() : std::vector<std::string>{})
        names.push_back("--" + name);
    return names;
}

bool CommandLine::TakesDetail(const std::string &path) const
{
    const auto command = commands_.find(path);
    if (command != commands_.end())
        return command->second->takesDetail;
    const std::vector<Command *> below = CommandsBelow(path);
    return std::any_of(below.begin(), below.end(), [](const Command *one) { return one->takesDetail; });
}

Style CommandLine::ChosenStyle() const
{
    const std::string form = form_.Text();
    if (json_.IsGiven() || form == "json")
        return Style::Json;
    if (detail_.IsGiven())
        return Style::Detail;
    return form == "wide" ? Style::Wide : form == "csv" ? Style::Csv : Style::Table;
}

Color CommandLine::ChosenColor() const
{
    const std::string when = color_.Text();
    return when == "always" ? Color::Always : when == "never" ? Color::Never : Color::Auto;
}

// A person who reads page by page would use up the time, and does not look for a trace among the pages.
bool CommandLine::MayUsePager() const
{
    return !noPager_.IsGiven() && !timeout_.IsGiven() && !trace_.IsGiven();
}

std::optional<std::string> CommandLine::ChosenTrace() const
{
    if (!trace_.IsGiven())
        return std::nullopt;
    const std::string file = trace_.Text();
    return file == kStandardError ? "" : file;
}

std::optional<std::chrono::milliseconds> CommandLine::ChosenTimeout() const
{
    return timeout_.IsGiven() ? std::optional(timeout_.DurationOr({})) : std::nullopt;
}

// Whose line it is is not known here, so what was given instead is not repeated: it may be a key.
std::optional<std::chrono::milliseconds> CommandLine::TakeTimeout(std::vector<std::string> &words)
{
    std::optional<std::chrono::milliseconds> timeout;
    for (auto word = words.begin(); word != words.end();) {
        const bool alone = *word == kTimeout;
        if (!alone && !word->starts_with(kTimeout + std::string("="))) {
            ++word;
            continue;
        }
        if (alone)
            word = words.erase(word);
        const std::string text = alone ? word == words.end() ? "" : *word : word->substr(word->find('=') + 1);
        if (const std::string problem = DurationProblem(text, kLeastTimeout, manager::kLongestDuration);
            !problem.empty())
            throw UsageError(fmt::format("{}: {}", kTimeout, problem.substr(0, problem.find(kButGiven))));
        timeout = manager::ParseDuration(text);
        word = words.erase(word);
    }
    return timeout;
}

const Command *CommandLine::CommandAt(const std::string &path) const
{
    const auto found = commands_.find(path);
    return found == commands_.end() ? nullptr : found->second.get();
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
