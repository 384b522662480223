// Shell completion, made from the tree of commands that parses the command line, so that it can offer nothing else.
#ifndef TOOLS_RSVPCTL_COMMAND_COMPLETION_H
#define TOOLS_RSVPCTL_COMMAND_COMPLETION_H

#include "tools/rsvpctl/command/options.h"

#include <string>
#include <vector>

namespace rsvpctl {

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
    std::string path; // "show psb"; empty for the program itself
    std::vector<CompletionWord> words;
    std::vector<CompletionOption> options; // those of the words before included
    bool takesFile;
};

/** All nodes of the tree, the program itself first. */
std::vector<CompletionNode> CompletionNodes(const Node &root);

std::string BashCompletion(const std::vector<CompletionNode> &nodes);
std::string ZshCompletion(const std::vector<CompletionNode> &nodes);

} // namespace rsvpctl

#endif
