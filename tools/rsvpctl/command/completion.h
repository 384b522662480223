// Shell completion. The scripts for the shells only ask the program what may come next, so that they can offer
// nothing else than it takes, under the dictionary and on the device that are at hand.
#ifndef TOOLS_RSVPCTL_COMMAND_COMPLETION_H
#define TOOLS_RSVPCTL_COMMAND_COMPLETION_H

#include <string>
#include <vector>

namespace rsvpctl {

class CommandLine;

struct CompletionWord {
    std::string word; // in place of the one that is typed
    std::string help;
};

struct Completion {
    std::vector<CompletionWord> words;
    bool files = false; // names of files may stand there too
};

/** What may come next. `words` are those behind the program's name; the last one is being typed and may be empty. */
Completion Complete(const CommandLine &line, const std::vector<std::string> &words);

} // namespace rsvpctl

#endif
