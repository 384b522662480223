// `batch`: many commands in one process, one a line. All lines go through the parsers of the one command tree; each
// line is parsed and run before the next one is looked at, so that a batch from a pipe works line by line.
#include "tools/rsvpctl/command/batch.h"

#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/commands.h"
#include "tools/rsvpctl/command/input_file.h"
#include "tools/rsvpctl/command/run.h"
#include "tools/rsvpctl/print/time_limit.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace rsvpctl {
namespace {

// Far more than any command needs: a file without line ends must not fill the memory.
constexpr size_t kLongestLine = 65536;

struct BatchOptions {
    bool keepGoing = false;
    bool dryRun = false;
};

// The exit status of a line; an empty one is done.
Exit RunLine(Output &out, CommandLine &line, const std::string &text, const BatchOptions &options)
{
    try {
        std::vector<std::string> words = SplitWords(text);
        const auto timeout = CommandLine::TakeTimeout(words);
        if (words.empty())
            return Exit::Done;
        const Command &command = line.ParseLine(words);
        std::optional<TimeLimit> limit;
        if (timeout)
            limit.emplace(*timeout, command.name);
        return Run(out, command, options.dryRun);
    } catch (const UsageError &error) {
        return out.WrongUsage(error.command.empty() ? "batch" : error.command, error);
    }
}

/** The next line; nothing at the end of the file. Throws std::system_error if that is not what ended it. */
std::optional<std::string> ReadLine(FILE *input)
{
    const Waiting waiting("the next line of the batch");
    std::string text;
    int c = 0;
    while ((c = std::getc(input)) != EOF && c != '\n') {
        text += static_cast<char>(c);
        if (text.size() > kLongestLine)
            throw std::length_error(fmt::format("the line has more than {} bytes", kLongestLine));
    }
    if (std::ferror(input) != 0)
        throw std::system_error(errno, std::generic_category(), "the file cannot be read");
    return c == EOF && text.empty() ? std::nullopt : std::optional(std::move(text));
}

/** Runs the lines of `input`; `name` is what messages call it. The result is the highest exit status of the lines. */
Exit RunBatch(Output &out, CommandLine &line, FILE *input, const std::string &name, const BatchOptions &options)
{
    bool complete = true;
    out.BeginBatch(name);
    try {
        for (uint64_t number = 1; complete; ++number) {
            out.BatchLine(number);
            const std::optional<std::string> text = ReadLine(input);
            if (!text)
                break;
            if (TimeLimit::IsOver()) {
                out.Wrong("batch", "the time was over before this line", RSVP_MOR_ERR_FAIL, Exit::TimeOver);
                complete = false;
                break;
            }
            const Exit exit = RunLine(out, line, *text, options);
            // A dry run looks at every line, since it is there to find what is wrong with any of them.
            complete = exit == Exit::Done || options.keepGoing || options.dryRun;
        }
    } catch (const std::exception &error) {
        out.Broken("batch", error.what());
        complete = false;
    }
    return out.EndBatch(complete);
}

} // namespace

std::vector<std::string> SplitWords(std::string_view line)
{
    if (line.find('\0') != std::string_view::npos)
        throw UsageError("the line has a byte 0, which no word can have");
    std::vector<std::string> words;
    std::string word;
    char quote = '\0';
    bool inWord = false;
    for (const char c : line) {
        if (quote != '\0') {
            if (c == quote)
                quote = '\0';
            else
                word += c;
        } else if (c == '\'' || c == '"') {
            quote = c;
            inWord = true;
        } else if (c == ' ' || c == '\t' || c == '\r') {
            if (inWord)
                words.push_back(std::move(word));
            word.clear();
            inWord = false;
        } else if (c == '#' && !inWord) {
            break;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (quote != '\0')
        throw UsageError(fmt::format("the quote {} is not closed", quote));
    if (inWord)
        words.push_back(std::move(word));
    return words;
}

void AddBatchCommand(CommandLine &line)
{
    Command &command =
        line.Add(line.Root(), "batch",
                 "Run the commands of a file, one a line; # begins a comment, quotes keep words together",
                 "  printf 'set interface 3\\nset hello --interface 3\\n' > settings.txt\n"
                 "  rsvpctl batch settings.txt\n"
                 "  rsvpctl batch --dry-run settings.txt          # what would be sent\n"
                 "  printf 'set interface 3\\n' | rsvpctl batch - --keep-going\n\n"
                 "Stops at the first line that fails; the lines before it were sent. The exit status is the highest "
                 "of\nthe lines'. --timeout on a line is the line's own.");
    command.inBatch = false;
    command.takesDetail = true; // of its lines
    command.hasColumns = true;
    const Option file = command.node.AddFile("file,--file", "The file, or - for standard input").Required();
    const Option keepGoing = command.node.AddFlag("--keep-going", "Go on after a failure");
    const Option dryRun = command.node.AddFlag(
        "--dry-run", "Parse every line and print the class, operation and items of what it would send; send nothing");
    command.run = [&line, file, keepGoing, dryRun](Output &out) {
        const std::string name = file.Text();
        const InputFile input = OpenInput("batch", name);
        const ReservedInput reserved(input);
        return RunBatch(out, line, input.get(), name == "-" ? "standard input" : name,
                        {keepGoing.IsGiven(), dryRun.IsGiven()});
    };
}

} // namespace rsvpctl
