// Completion by the tree of commands that parses the command line.
#include "tools/rsvpctl/command/completion.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/commands.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Json;

// In a list of words, what the shell is to replace by the names of files.
constexpr const char *kFiles = ":file";

constexpr const char *kBashScript = R"(# Completion of rsvpctl for bash, made by 'rsvpctl completion bash'.
_rsvpctl()
{
    local word
    COMPREPLY=()
    while IFS=$'\t' read -r word _; do
        if [[ $word == :file ]]; then
            mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
        else
            COMPREPLY+=("$word")
        fi
    done < <("$1" completion next -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _rsvpctl rsvpctl
)";

constexpr const char *kZshScript = R"(#compdef rsvpctl
# Completion of rsvpctl for zsh, made by 'rsvpctl completion zsh'.
_rsvpctl()
{
    local word help
    local -a found
    while IFS=$'\t' read -r word help; do
        if [[ $word == :file ]]; then
            _files
        else
            found+=("${word//:/\\:}:$help")
        fi
    done < <("${(Q)words[1]}" completion next -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)
    _describe rsvpctl found
}
if [[ ${funcstack[1]} == _rsvpctl ]]; then
    _rsvpctl "$@"
else
    compdef _rsvpctl rsvpctl
fi
)";

// A check for membership appends its list to the type: "WHEN:{auto,always,never}".
std::vector<std::string> ChoicesOf(const CLI::Option &option)
{
    const std::string type = option.get_type_name();
    const size_t open = type.find(":{");
    if (open == std::string::npos || type.back() != '}')
        return {};
    const auto choices = manager::Split(std::string_view(type).substr(open + 2, type.size() - open - 3), ',');
    return {choices.begin(), choices.end()};
}

const CLI::Option *OptionNamed(const std::string &name, const CLI::App &at)
{
    for (const CLI::App *from = &at; from != nullptr; from = from->get_parent()) {
        if (const CLI::Option *option = from->get_option_no_throw(name))
            return option;
    }
    return nullptr;
}

/** Where a command line has come to. */
struct Place {
    CLI::App *at;
    const CLI::Option *option = nullptr; // whose value comes next
    size_t arguments = 0;                // that were given
};

/** Reads the words but the last one, as the parser does. */
Place PlaceAfter(const std::vector<std::string> &words, CLI::App &root)
{
    Place place{&root};
    for (size_t i = 0; i + 1 < words.size(); ++i) {
        const std::string &word = words[i];
        if (word == "=") // bash takes "--color=always" for three words
            continue;
        if (word.starts_with("-")) {
            const CLI::Option *option = OptionNamed(word, *place.at);
            place.option = option != nullptr && option->get_items_expected_min() > 0 ? option : nullptr;
        } else if (place.option != nullptr) {
            place.option = place.option->get_allow_extra_args() ? place.option : nullptr;
        } else if (CLI::App *below = Below(*place.at, word)) {
            place.at = below;
        } else if (place.at->get_name() == "help") { // behind it stand the words of any command
            below = Below(root, word);
            place.at = below == nullptr ? place.at : below;
        } else {
            ++place.arguments;
        }
    }
    return place;
}

/** The words of `found` that begin with what is typed. */
class Candidates {
public:
    explicit Candidates(std::string typed) : typed_(std::move(typed)) {}

    void Add(const std::string &word, const std::string &help)
    {
        if (word.starts_with(typed_))
            found_.words.push_back({word, help});
    }

    /** What may stand as a value, with `before` in front of it: "--color=". */
    void AddValues(const Command *command, const CLI::Option &option, const std::string &before)
    {
        found_.files = found_.files || option.get_type_name() == "FILE";
        for (const std::string &choice : ChoicesOf(option))
            Add(before + choice, "");
        if (command == nullptr || !command->suggest)
            return;
        for (const std::string &word : command->suggest(option.get_single_name(), typed_.substr(before.size())))
            Add(before + word, "");
    }

    Completion Found() && { return std::move(found_); }

private:
    std::string typed_;
    Completion found_;
};

Exit PrintNext(Output &out, const std::string &operation, const Completion &completion)
{
    Json words = Json::array();
    std::string text;
    for (const auto &[word, help] : completion.words) {
        words.push_back({{"word", word}, {"help", help}});
        text += fmt::format("{}\t{}\n", word, help);
    }
    if (completion.files)
        text += fmt::format("{}\n", kFiles);
    return out.Record(operation, {{"words", std::move(words)}, {"files", completion.files}}, text, RSVP_MOR_OK);
}

} // namespace

Completion Complete(const CommandLine &line, const std::vector<std::string> &words)
{
    std::string typed = words.empty() || words.back() == "=" ? "" : words.back();
    const Place place = PlaceAfter(words, line.Root().App());
    const Command *command = line.CommandAt(PathOf(*place.at));
    Candidates candidates(typed);
    const size_t equals = typed.find('=');
    if (place.option != nullptr && !typed.starts_with("-")) {
        candidates.AddValues(command, *place.option, "");
    } else if (typed.starts_with("--") && equals != std::string::npos) {
        if (const CLI::Option *option = OptionNamed(typed.substr(0, equals), *place.at))
            candidates.AddValues(command, *option, typed.substr(0, equals + 1));
    } else if (typed.starts_with("-")) {
        for (const CLI::App *from = place.at; from != nullptr; from = from->get_parent()) {
            for (const CLI::Option *option : from->get_options()) {
                for (const std::string &name : line.OfferedNames(*option, *from, *place.at))
                    candidates.Add(name, option->get_description());
            }
        }
    } else {
        for (const CLI::App *below : place.at->get_subcommands({}))
            candidates.Add(below->get_name(), below->get_description());
        if (place.at->get_name() == "help") {
            for (const CLI::App *below : line.Root().App().get_subcommands({}))
                candidates.Add(below->get_name(), below->get_description());
        }
        size_t argument = 0;
        for (const CLI::Option *option : place.at->get_options()) {
            if (option->get_positional() && argument++ == place.arguments)
                candidates.AddValues(command, *option, "");
        }
    }
    return std::move(candidates).Found();
}

void AddCompletionCommands(CommandLine &line)
{
    const Node group = line.AddGroup(line.Root(), "completion", "Print a script that completes command lines",
                                     "  source <(rsvpctl completion bash)\n"
                                     "  rsvpctl completion zsh > _rsvpctl       # for a folder of zsh's fpath");
    const auto add = [&](const std::string &shell, const char *script) {
        Command &command = line.Add(group, shell, "For " + shell, "  rsvpctl completion " + shell);
        command.inBatch = false;
        command.run = [&command, shell, script](Output &out) {
            return out.Record(command.name, {{"shell", shell}, {"script", script}}, script, RSVP_MOR_OK);
        };
    };
    add("bash", kBashScript);
    add("zsh", kZshScript);
    Command &next = line.Add(group, "next", "What may come next, a word a line, for these scripts",
                             "  rsvpctl completion next -- show tunnels --sort ''");
    next.inBatch = false;
    const Option words = next.node.AddWords("word", "WORD", "The words of a command line; the last one may be empty");
    next.run = [&next, &line, words](Output &out) {
        return PrintNext(out, next.name, Complete(line, words.Words()));
    };
}

} // namespace rsvpctl
