// The tree of commands: `rsvpctl VERB [NOUN] ...`, one node a word, one Command at each end. It is built once; a
// batch finds the commands in it by name and parses each line with that command's own parser alone, which is what
// makes a thousand lines cheap.
#ifndef RSVPCTL_COMMAND_LINE_H
#define RSVPCTL_COMMAND_LINE_H

#include "arguments.h"
#include "output.h"
#include "wire.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace rsvpctl {

struct Command {
    std::string name; // its words: "set refresh-interval"
    CLI::App *parser = nullptr;

    /** Does it, with the arguments that the parser holds. May throw UsageError before anything is sent. */
    std::function<Exit(Output &)> run;

    /** What it would send. Empty for a command that changes nothing at the daemon. May throw UsageError. */
    std::function<std::vector<WireRequest>()> requests;

    bool inBatch = true; // may stand in a batch file
};

class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    CLI::App &Root() { return root_; }

    /** A word that only other words follow. */
    CLI::App &AddGroup(CLI::App &parent, const std::string &word, const std::string &help,
                       const std::string &examples);

    /** The last word of a command. The caller adds options to its parser and sets `run`. */
    Command &Add(CLI::App &parent, const std::string &word, const std::string &help, const std::string &examples);

    /**
     * Parses a whole command line, without the program's name.
     *
     * @return the command to run; null if help was asked for, which then stands in `help`. Throws UsageError.
     */
    Command *Parse(const std::vector<std::string> &words, std::string &help);

    /**
     * Parses a line of a batch. The parser of the command that it names is cut off from the tree by that, so the
     * whole command line can not be parsed again afterwards. Throws UsageError.
     */
    Command &ParseLine(const std::vector<std::string> &words);

    Style ChosenStyle() const;
    Color ChosenColor() const;
    bool MayUsePager() const;

    /** The commands whose words begin with those of `path`, in the order of their names. */
    std::vector<Command *> CommandsBelow(const std::string &path);

private:
    CLI::App root_;
    CLI::Option *json_;
    CLI::Option *detail_;
    CLI::Option *color_;
    CLI::Option *noPager_;
    std::map<std::string, std::unique_ptr<Command>, std::less<>> commands_; // by name
};

/** Name of a node of the tree as its words, without the program's. */
std::string PathOf(const CLI::App &app);

/** Options before parsing: whether a JSON document is owed even if the rest cannot be parsed. */
bool WantsJson(const std::vector<std::string> &words);

// Each adds its commands to the tree.
void AddServiceCommands(CommandLine &line);
void AddSettingCommands(CommandLine &line);
void AddDebugCommands(CommandLine &line);
void AddTableCommands(CommandLine &line, CLI::App &show);
void AddRecordCommands(CommandLine &line, CLI::App &show);
void AddLspCommands(CommandLine &line, CLI::App &show);
void AddP2mpCommands(CommandLine &line, CLI::App &show);
void AddTreeCommand(CommandLine &line);
void AddWatchCommands(CommandLine &line);
void AddBatchCommand(CommandLine &line);
void AddSchemaCommand(CommandLine &line);
void AddCompletionCommands(CommandLine &line);

/** `show` and all that stands below it. */
void AddShowCommands(CommandLine &line, CLI::App &parent);

/** All of them. */
void AddCommands(CommandLine &line);

/** The program but for main: parses, runs, and returns the exit status. */
int RunProgram(const std::vector<std::string> &words);

} // namespace rsvpctl

#endif
