// The tree of commands: `rsvpctl VERB [NOUN] ...`, one node a word, one Command at each end. It is built once; a
// batch finds the commands in it by name and parses each line with that command's own parser alone, which is what
// makes a thousand lines cheap.
#ifndef TOOLS_RSVPCTL_COMMAND_COMMAND_LINE_H
#define TOOLS_RSVPCTL_COMMAND_COMMAND_LINE_H

#include "tools/rsvpctl/command/options.h"
#include "tools/rsvpctl/command/wire.h"
#include "tools/rsvpctl/print/output.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace rsvpctl {

/** What a command would do, for a dry run. */
struct Rehearsal {
    std::vector<WireRequest> requests;
    std::string undo;    // the command that takes it back, without the program's name
    std::string noUndo;  // why there is none
    std::string instead; // what it does, if it sends nothing
};

struct Command {
    std::string name;     // its words: "set refresh-interval"
    std::string examples; // one a line, as the help prints them
    Node node;

    /** Does it, with the arguments that the parser holds. May throw UsageError before anything is sent. */
    std::function<Exit(Output &)> run;

    /** Empty for a command that changes nothing. May throw UsageError. */
    std::function<Rehearsal()> rehearse;
    Option dryRun;

    bool inBatch = true;    // may be used in a batch file
    bool mayBeLong = false; // may fill more than a screen; a change or a watch is never held behind a pager
};

class CommandLine {
public:
    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    Node Root() const;

    /** A word that only other words follow. */
    Node AddGroup(Node parent, const std::string &word, const std::string &help, const std::string &examples);

    /** The last word of a command. The caller adds options to its node and sets `run`. */
    Command &Add(Node parent, const std::string &word, const std::string &help, const std::string &examples);

    /**
     * Parses a whole command line, without the program's name.
     *
     * @return the command to run; null if help was asked for, which is then in `help`. Throws UsageError.
     */
    Command *Parse(const std::vector<std::string> &words, std::string &help);

    /**
     * Parses a line of a batch. The parser of the command that it names is cut off from the tree by that, so the
     * whole command line cannot be parsed again afterwards. Throws UsageError.
     */
    Command &ParseLine(const std::vector<std::string> &words);

    Style ChosenStyle() const;
    Color ChosenColor() const;
    bool MayUsePager() const;

    /** The commands whose words begin with those of `path`, all for an empty one, in the order of their names. */
    std::vector<Command *> CommandsBelow(const std::string &path) const;

private:
    std::unique_ptr<CLI::App> root_;
    Option json_;
    Option detail_;
    Option color_;
    Option noPager_;
    std::map<std::string, std::unique_ptr<Command>, std::less<>> commands_; // by name
};

/** Options before parsing: whether a JSON document is owed even if the rest cannot be parsed. */
bool WantsJson(const std::vector<std::string> &words);

} // namespace rsvpctl

#endif
