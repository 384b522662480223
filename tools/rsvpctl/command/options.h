// The options and arguments of commands: numbers that must fit their field, IPv4 addresses, keys of rows, files.
// Every refusal names the argument and its range and happens while the command line is parsed, before anything is
// sent. The library that parses command lines is known to this room alone.
#ifndef TOOLS_RSVPCTL_COMMAND_OPTIONS_H
#define TOOLS_RSVPCTL_COMMAND_OPTIONS_H

#include "manager/table/table.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class ParseError;
} // namespace CLI

namespace rsvpctl {

/** What is wrong with a text that should be a duration; empty if nothing is. */
std::string DurationProblem(const std::string &text, std::chrono::milliseconds min, std::chrono::milliseconds max);

/** An option or an argument of a command. What it holds is there once a line is parsed. */
class Option {
public:
    Option() = default; // one that the command does not have, and that is never given
    explicit Option(CLI::Option *option) : option_(option) {}

    bool IsGiven() const;
    bool Is(const CLI::Option &option) const { return option_ == &option; }

    /** The text that was given, or an empty one. */
    std::string Text() const;
    std::vector<std::string> Words() const;

    /** Of an option that AddNumber made; 0 if it is not given. */
    uint32_t Number() const { return NumberOr(0); }
    uint32_t NumberOr(uint32_t value) const;

    /** Of an option that AddAddress made; 0 if it is not given. */
    uint32_t Address() const;

    /** Of an option that AddDuration made. */
    std::chrono::milliseconds DurationOr(std::chrono::milliseconds value) const;

    Option Required(bool required = true) const;
    Option Excludes(Option other) const;
    Option Needs(Option other) const;

private:
    CLI::Option *option_ = nullptr;
};

/** A key that a command takes: of a table's rows, or a record of its own. */
struct KeySpec {
    KeySpec(const manager::Table &of) : description(&of.key()), table(&of) {}
    KeySpec(const manager::RecordDescription &of) : description(&of) {}

    const manager::RecordDescription *description;
    const manager::Table *table = nullptr;
};

/** The words that lead to a node, without the program's own. */
std::string PathOf(const CLI::App &app);

/** Stands between what an argument takes and what was given instead. */
inline constexpr std::string_view kButGiven = ", not ";

/** A word of the command line, and what may follow it. Names are "word,--option" for an argument that is an
 * option too, "--option" for an option alone. */
class Node {
public:
    Node() = default;
    explicit Node(CLI::App *app) : app_(app) {}

    std::string Path() const { return PathOf(*app_); }

    /** Another name of this word, which its help and the manual tell. */
    void AddAlias(const std::string &name) const;

    Option AddFlag(const std::string &names, const std::string &help) const;
    /** A flag that may have a file, behind a = alone: the text is `none` without one. */
    Option AddFlagWithFile(const std::string &name, const std::string &none, const std::string &help) const;
    Option AddNumber(const std::string &names, uint64_t max, const std::string &help,
                     const std::string &unit = {}) const;
    Option AddAddress(const std::string &names, const std::string &help) const;
    Option AddDuration(const std::string &names, std::chrono::milliseconds min, std::chrono::milliseconds max,
                       const std::string &help) const;
    Option AddChoice(const std::string &names, const std::string &type, const std::vector<std::string> &choices,
                     const std::string &help) const;
    /** A text that `check` takes; it gives an empty text, or says what is wrong. Without a check any text is taken.
     */
    Option AddText(const std::string &names, const std::string &type,
                   std::function<std::string(const std::string &)> check, const std::string &help) const;
    Option AddWords(const std::string &names, const std::string &type, const std::string &help) const;
    Option AddFile(const std::string &names, const std::string &help) const;
    Option AddKey(const std::string &names, const KeySpec &key, const std::string &help) const;

    /** A key whose parts may be separate words: it is checked when it is read. */
    Option AddKeyWords(const std::string &names, const KeySpec &key, const std::string &help) const;

    CLI::App &App() const { return *app_; }

private:
    CLI::App *app_ = nullptr;
};

/** Reads a key that a command line gave. Throws UsageError. */
void RequireKey(const KeySpec &key, const std::string &text, void *record);

/** The same for a key of the type that it is read into. */
template <typename Key> Key KeyOf(const Option &option)
{
    Key key{};
    RequireKey(manager::Describe<Key>(), option.Text(), &key);
    return key;
}

/** The two ways in which a command takes a key that is long: words or a JSON file. */
struct KeyOptions {
    std::optional<KeySpec> key; // nothing: the command takes none
    Option words;
    Option file;
};
/** With `isLong`, a key on the command line may be many words. */
KeyOptions AddKeyOptions(const Node &node, const KeySpec &key, bool isLong);

/** Reads the key that the options give. Throws UsageError if they give none. */
void RequireKey(const KeyOptions &options, void *record);

} // namespace rsvpctl

#endif
