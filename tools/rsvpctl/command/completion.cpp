// The tree as data and the two scripts. Both find the node in the same way: words that lead on in the tree are
// counted, options and their values are passed over.
#include "tools/rsvpctl/command/completion.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/commands.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

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

bool TakesFile(const CLI::Option &option)
{
    return option.get_type_name() == "FILE";
}

std::vector<CompletionOption> OptionsAt(const CommandLine &line, const CLI::App &at)
{
    std::vector<CompletionOption> options;
    for (const CLI::App *from = &at; from != nullptr; from = from->get_parent()) {
        for (const CLI::Option *option : from->get_options()) {
            for (const std::string &name : line.OfferedNames(*option, *from, at))
                options.push_back({name, option->get_description(), option->get_items_expected_min() > 0,
                                   TakesFile(*option), ChoicesOf(*option)});
        }
    }
    return options;
}

void AddNodes(const CommandLine &line, const CLI::App &at, std::vector<CompletionNode> &nodes)
{
    CompletionNode node{PathOf(at), {}, {}, OptionsAt(line, at), false};
    if (at.get_parent() != nullptr) {
        const std::string before = node.path.substr(0, node.path.size() - at.get_name().size());
        for (const std::string &alias : at.get_aliases())
            node.aliases.push_back(before + alias);
    }
    for (const CLI::Option *option : at.get_options()) {
        if (!option->get_positional())
            continue;
        node.takesFile = node.takesFile || TakesFile(*option);
        for (const std::string &choice : ChoicesOf(*option))
            node.words.push_back({choice, option->get_description()});
    }
    const auto below = at.get_subcommands({});
    for (const CLI::App *child : below)
        node.words.push_back({child->get_name(), child->get_description()});
    nodes.push_back(std::move(node));
    for (const CLI::App *child : below)
        AddNodes(line, *child, nodes);
}

// A patterns list of a shell's case: "a|b|c".
template <typename Pick> std::string Patterns(const std::vector<CompletionNode> &nodes, Pick pick)
{
    std::map<std::string, bool> names;
    for (const CompletionNode &node : nodes) {
        for (const CompletionOption &option : node.options) {
            if (pick(option))
                names[option.name] = true;
        }
    }
    std::string text;
    for (const auto &[name, taken] : names)
        text += (text.empty() ? "" : "|") + name;
    return text;
}

std::string NodePatterns(const std::vector<CompletionNode> &nodes)
{
    std::string text;
    for (const CompletionNode &node : nodes) {
        if (!node.path.empty())
            text += fmt::format("{}' {}'", text.empty() ? "" : "|", node.path);
    }
    return text;
}

// Behind another name of a node follows what follows the node. Behind "help" follow the words of any command.
std::string OtherNames(const std::vector<CompletionNode> &nodes)
{
    std::string text = "                ' help') node='' ;;\n";
    for (const CompletionNode &node : nodes) {
        for (const std::string &alias : node.aliases)
            text += fmt::format("                ' {}') node=' {}' ;;\n", alias, node.path);
    }
    return text;
}

std::map<std::string, std::vector<std::string>> ChoicesByOption(const std::vector<CompletionNode> &nodes)
{
    std::map<std::string, std::vector<std::string>> choices;
    for (const CompletionNode &node : nodes) {
        for (const CompletionOption &option : node.options) {
            if (!option.choices.empty())
                choices.emplace(option.name, option.choices);
        }
    }
    return choices;
}

/** A word in single quotes, for either shell. */
std::string Quoted(const std::string &text)
{
    return manager::Quoted(text, manager::kShellQuotes);
}

// `words` is the shell's array of the command line, `count` the number of words between the program's name and the
// cursor. "node" becomes the words that lead to a node, each after a space.
std::string FindNode(const std::vector<CompletionNode> &nodes, const char *words, const char *count)
{
    return fmt::format(R"(    local node='' word='' value=''
    for word in "${{{words}[@]:1:$(({count}))}}"; do
        if [[ -n $value ]]; then
            value=''
            continue
        fi
        case $word in
            {withValue}) value=1 ;;
            *) case "$node $word" in
{others}                {known}) node="$node $word" ;;
            esac ;;
        esac
    done
)",
                       fmt::arg("words", words), fmt::arg("count", count),
                       fmt::arg("withValue", Patterns(nodes, [](const auto &option) { return option.takesValue; })),
                       fmt::arg("others", OtherNames(nodes)), fmt::arg("known", NodePatterns(nodes)));
}

std::string FilePatterns(const std::vector<CompletionNode> &nodes)
{
    return Patterns(nodes, [](const CompletionOption &option) { return option.takesFile; });
}

std::string PlainValuePatterns(const std::vector<CompletionNode> &nodes)
{
    return Patterns(nodes, [](const CompletionOption &option) {
        return option.takesValue && !option.takesFile && option.choices.empty();
    });
}

} // namespace

std::vector<CompletionNode> CompletionNodes(const CommandLine &line)
{
    std::vector<CompletionNode> nodes;
    AddNodes(line, line.Root().App(), nodes);
    return nodes;
}

std::string BashCompletion(const std::vector<CompletionNode> &nodes)
{
    std::string out =
        "# Completion of rsvpctl for bash, made by 'rsvpctl completion bash'.\n"
        "_rsvpctl()\n{\n"
        "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} words='' files=''\n";
    out += FindNode(nodes, "COMP_WORDS", "COMP_CWORD - 1");
    out += "    case $prev in\n";
    for (const auto &[option, choices] : ChoicesByOption(nodes))
        out += fmt::format("        {}) mapfile -t COMPREPLY < <(compgen -W {} -- \"$cur\"); return ;;\n", option,
                           Quoted(manager::Joined(choices, " ")));
    out +=
        fmt::format("        {}) mapfile -t COMPREPLY < <(compgen -f -- \"$cur\"); return ;;\n", FilePatterns(nodes));
    out += fmt::format("        {}) return ;;\n    esac\n    case $node in\n", PlainValuePatterns(nodes));
    for (const CompletionNode &node : nodes) {
        std::string words;
        for (const CompletionWord &word : node.words)
            words += (words.empty() ? "" : " ") + word.word;
        std::string options;
        for (const CompletionOption &option : node.options)
            options += " " + option.name;
        out += fmt::format("        {})\n            [[ $cur == -* ]] && words={} || words={}{} ;;\n",
                           Quoted(node.path.empty() ? "" : " " + node.path), Quoted(options.substr(1)), Quoted(words),
                           node.takesFile ? " files=1" : "");
    }
    return out + "    esac\n"
                 "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$cur\"; [[ $files ]] && compgen -f -- "
                 "\"$cur\")\n"
                 "}\n"
                 "complete -F _rsvpctl rsvpctl\n";
}

std::string ZshCompletion(const std::vector<CompletionNode> &nodes)
{
    std::string out = "#compdef rsvpctl\n# Completion of rsvpctl for zsh, made by 'rsvpctl completion zsh'.\n"
                      "_rsvpctl()\n{\n"
                      "    local cur=${words[CURRENT]} prev=${words[CURRENT - 1]}\n"
                      "    local -a nouns flags\n";
    out += FindNode(nodes, "words", "CURRENT - 2");
    out += "    case $prev in\n";
    for (const auto &[option, choices] : ChoicesByOption(nodes))
        out += fmt::format("        {}) compadd -- {}; return ;;\n", option, manager::Joined(choices, " "));
    out += fmt::format("        {}) _files; return ;;\n        {}) return ;;\n    esac\n    case $node in\n",
                       FilePatterns(nodes), PlainValuePatterns(nodes));
    for (const CompletionNode &node : nodes) {
        out += fmt::format("        {})\n            nouns=(", Quoted(node.path.empty() ? "" : " " + node.path));
        for (const CompletionWord &word : node.words)
            out += "\n                " + Quoted(word.word + ":" + word.help);
        out += ")\n            flags=(";
        for (const CompletionOption &option : node.options)
            out += "\n                " + Quoted(option.name + ":" + option.help);
        out += fmt::format(")\n{}            ;;\n", node.takesFile ? "            _files\n" : "");
    }
    return out + "    esac\n"
                 "    if [[ $cur == -* ]]; then\n"
                 "        _describe -o option flags\n"
                 "    else\n"
                 "        _describe command nouns\n"
                 "    fi\n"
                 "}\n"
                 "if [[ ${funcstack[1]} == _rsvpctl ]]; then\n"
                 "    _rsvpctl \"$@\"\n"
                 "else\n"
                 "    compdef _rsvpctl rsvpctl\n"
                 "fi\n";
}

void AddCompletionCommands(CommandLine &line)
{
    const Node group = line.AddGroup(line.Root(), "completion", "Print a script that completes command lines",
                                     "  source <(rsvpctl completion bash)\n"
                                     "  rsvpctl completion zsh > _rsvpctl       # for a folder of zsh's fpath");
    const auto add = [&](const std::string &shell, std::string (*script)(const std::vector<CompletionNode> &)) {
        Command &command = line.Add(group, shell, "For " + shell, "  rsvpctl completion " + shell);
        command.inBatch = false;
        command.run = [&command, &line, shell, script](Output &out) {
            const std::string text = script(CompletionNodes(line));
            return out.Record(command.name, {{"shell", shell}, {"script", text}}, text, RSVP_MOR_OK);
        };
    };
    add("bash", BashCompletion);
    add("zsh", ZshCompletion);
}

} // namespace rsvpctl
