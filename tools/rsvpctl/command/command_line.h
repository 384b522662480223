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

    /** What may stand as the value of an option or argument of this name, beside what the parser lists; it may ask
     * the daemon. Null where nothing is known. */
    std::function<std::vector<std::string>(const std::string &option, const std::string &typed)> suggest;

    bool inBatch = true;       // may be used in a batch file
    bool takesDetail = false;  // --detail changes what it prints
    bool hasColumns = false;   // it may print a table, for which there are forms
    bool takesSecret = false;  // what is typed by mistake may be a key, so no refusal repeats it
    bool limitsItself = false; // --timeout is not for the run: each poll has it, or all reads of a whole document
    bool mayBeLong = false;    // may fill more than a screen; a change or a watch is never held behind a pager
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

    /** Parses a whole command line, without the program's name. Throws UsageError. */
    const Command &Parse(const std::vector<std::string> &words);

    /**
     * Parses a line of a batch. The parser of the command that it names is cut off from the tree by that, so the
     * whole command line cannot be parsed again afterwards. Throws UsageError.
     */
    Command &ParseLine(const std::vector<std::string> &words);

    /** Takes --timeout out of the words of a line, which has no other option of the program's. Throws UsageError. */
    static std::optional<std::chrono::milliseconds> TakeTimeout(std::vector<std::string> &words);

    /** Where the words lead, each a name or an alias. Throws UsageError for one that leads nowhere. */
    Node Find(const std::vector<std::string> &words) const;

    /** The names of an option of `from`, with their dashes, if it does something at `at`, which is `from` itself or
     * below it. */
    std::vector<std::string> OfferedNames(const CLI::Option &option, const CLI::App &from, const CLI::App &at) const;

    Style ChosenStyle() const;
    Color ChosenColor() const;
    bool MayUsePager() const;

    /** The file of --trace, empty for standard error; nothing without the option. */
    std::optional<std::string> ChosenTrace() const;
    bool WantsTraceHex() const { return traceHex_.IsGiven(); }

    /** Of --timeout. */
    std::optional<std::chrono::milliseconds> ChosenTimeout() const;

    /** The command of these words; null if more words are needed. */
    const Command *CommandAt(const std::string &path) const;

    /** The commands whose words begin with those of `path`, all for an empty one, in the order of their names. */
    std::vector<Command *> CommandsBelow(const std::string &path) const;

private:
    const Command &ParseInstead(const std::string &text);
    std::string Problem(const CLI::App &top, const CLI::App &at, const std::string &path,
                        const CLI::ParseError &error) const;
    std::string NotExpected(const std::string &word, const CLI::App &at, bool secret) const;
    void CheckForm(const std::string &path) const;
    bool TakesDetail(const std::string &path) const;

    std::unique_ptr<CLI::App> root_;
    Option json_;
    Option form_;
    Option detail_;
    Option color_;
    Option noPager_;
    Option timeout_;
    Option trace_;
    Option traceHex_;
    std::map<std::string, std::unique_ptr<Command>, std::less<>> commands_; // by name
};

/** What a word below a node leads to, a name or an alias; null for nothing. */
CLI::App *Below(CLI::App &app, const std::string &word);

/** Options before parsing: whether a JSON document is owed even if the rest cannot be parsed. */
bool WantsJson(const std::vector<std::string> &words);

} // namespace rsvpctl

#endif
