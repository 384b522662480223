// Shell completion, made from the tree of commands that parses the command line, so that it can offer nothing else.
#ifndef TOOLS_RSVPCTL_COMMAND_COMPLETION_H
#define TOOLS_RSVPCTL_COMMAND_COMPLETION_H

#include <string>
#include <vector>

namespace rsvpctl {

class CommandLine;

struct CompletionWord {
    std::string word;
    std::string help;
};

struct CompletionOption {
    std::string name; // with its dashes
    std::string help;
    bool takesValue;
    bool takesFile;
    std::vector<std::string> choices; // of its value
};

/** What can follow the words of `path`. */
struct CompletionNode {
    std::string path;                 // "show psb"; empty for the program itself
    std::vector<std::string> aliases; // other paths to it: "show neighbor"
    std::vector<CompletionWord> words;
    std::vector<CompletionOption> options; // those of the words before included, if they do something here
    bool takesFile;
};

/** All nodes of the tree, the program itself first. */
std::vector<CompletionNode> CompletionNodes(const CommandLine &line);

std::string BashCompletion(const std::vector<CompletionNode> &nodes);
std::string ZshCompletion(const std::vector<CompletionNode> &nodes);

} // namespace rsvpctl

#endif
