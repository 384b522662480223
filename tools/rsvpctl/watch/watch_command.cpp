// `watch show ...` and `watch status`: repeat a command that reads and print only what changed. They are second
// commands of these names in the tree, so that each takes its own options there, and help and completion know them.
#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/usage_error.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/show/lsp.h"
#include "tools/rsvpctl/show/shows.h"
#include "tools/rsvpctl/watch/commands.h"
#include "tools/rsvpctl/watch/polling.h"
#include "tools/rsvpctl/watch/row_changes.h"
#include "tools/rsvpctl/watch/row_names.h"

#include <chrono>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace rsvpctl {
namespace {

using manager::Json;
using std::chrono::milliseconds, std::chrono::system_clock;

constexpr milliseconds kDefaultInterval{2000};
constexpr milliseconds kLeastInterval{100};
constexpr milliseconds kMostInterval = std::chrono::hours(24);
constexpr std::string_view kWatchLsp = "watch show lsp"; // its rows are of no table

struct WatchOptions {
    Option interval;
    Option count;
    Option duration;
    Option initial;
};

const char *NameOf(RowEvent::Kind kind)
{
    switch (kind) {
    case RowEvent::Kind::Added:
        return "added";
    case RowEvent::Kind::Changed:
        return "changed";
    default:
        return "removed";
    }
}

double SecondsNow()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/** What the clock on the wall showed at a time of SecondsNow. */
std::chrono::sys_time<milliseconds> WallTime(double seconds)
{
    const std::chrono::duration<double> ago(SecondsNow() - seconds);
    return std::chrono::floor<milliseconds>(system_clock::now() -
                                            std::chrono::duration_cast<system_clock::duration>(ago));
}

int64_t MillisecondsOf(std::chrono::sys_time<milliseconds> time)
{
    return (time - std::chrono::floor<std::chrono::seconds>(time)).count();
}

std::string TimeForPrograms(double seconds)
{
    const auto time = WallTime(seconds);
    return fmt::format("{:%FT%T}.{:03}Z", fmt::gmtime(system_clock::to_time_t(time)), MillisecondsOf(time));
}

std::string TimeForPeople(double seconds)
{
    const auto time = WallTime(seconds);
    return fmt::format("{:%T}.{:03}", fmt::localtime(system_clock::to_time_t(time)), MillisecondsOf(time));
}

/** Prints the events of one watch. */
class Reporter {
public:
    Reporter(Output &out, std::string operation, RowNames names)
        : out_(out), operation_(std::move(operation)), names_(std::move(names))
    {
    }

    bool Report(const RowEvent &event)
    {
        if (!out_.IsJson())
            return out_.Line({}, TextOf(event));
        Json line = Head(NameOf(event.kind), event.seconds);
        line["key"] = event.key;
        if (event.kind == RowEvent::Kind::Changed) {
            line["changes"] = Json::array();
            for (const FieldChange &change : event.changes)
                line["changes"].push_back({{"field", change.field},
                                           {"before", change.before},
                                           {"after", change.after},
                                           {"perSecond", change.perSecond ? Json(*change.perSecond) : Json()}});
        }
        line["row"] = event.row;
        return out_.Line(line, "");
    }

    /** Reports a failure when it begins and when it ends, not at each poll in between. */
    bool ReportState(const PollResult &poll)
    {
        uint32_t status = RSVP_MOR_OK; // also of a record that reports a fault
        if (!poll.complete)
            status = poll.document.is_object() ? poll.document.value("status", RSVP_MOR_ERR_FAIL) : RSVP_MOR_ERR_FAIL;
        if (status == std::exchange(lastStatus_, status))
            return true;
        const bool failed = status != RSVP_MOR_OK;
        std::string name = Explain(status).name;
        std::string cause = "the process that asked ended before it had the answer";
        if (poll.document.is_object()) {
            name = poll.document.value("statusName", name);
            cause = poll.document.value("likelyCause", Explain(status).cause);
        }
        const double now = SecondsNow();
        Json line = Head(failed ? "failed" : "recovered", now);
        line["status"] = status;
        line["statusName"] = name;
        if (!out_.IsJson())
            out_.Message(failed ? fmt::format("{} failed   {:#010x} {}: {}", TimeForPeople(now), status, name, cause)
                                : fmt::format("{} recovered", TimeForPeople(now)));
        return out_.Line(line, "");
    }

private:
    Json Head(const char *event, double seconds) const
    {
        return {{"schemaVersion", kSchemaVersion},
                {"operation", operation_},
                {"time", TimeForPrograms(seconds)},
                {"event", event}};
    }

    std::string TextOf(const RowEvent &event) const
    {
        const std::string words = Words(event);
        std::string text = fmt::format("{} {:<{}}{}\n", TimeForPeople(event.seconds), NameOf(event.kind),
                                       words.empty() ? 0 : 8, words);
        for (const FieldChange &change : event.changes) {
            if (!IsToldByName(change, event))
                text += ChangeText(change);
        }
        return text;
    }

    bool IsToldByName(const FieldChange &change, const RowEvent &event) const
    {
        const std::vector<std::string> named = names_.Of(change.field);
        return std::any_of(event.changes.begin(), event.changes.end(), [&](const FieldChange &other) {
            return std::find(named.begin(), named.end(), other.field) != named.end();
        });
    }

    // " name=to-paris endPoint=10.0.0.4 tunnelId=100": the last word of a path is enough inside a key.
    std::string Words(const RowEvent &event) const
    {
        std::string text;
        const auto add = [&](std::string_view name, const Json &value) {
            if (!value.is_null())
                text += fmt::format(" {}={}", name, ValueText(value));
        };
        add("name", event.row.value("name", Json()));
        const Json flat = event.key.flatten();
        const auto lastWord = [](const std::string &path) { return path.substr(path.rfind('/') + 1); };
        for (const auto &[path, value] : flat.items()) {
            if (path.find("/named/") != std::string::npos)
                continue;
            bool isTold = false;
            for (const std::string &name : names_.Of(path)) {
                const Json::json_pointer pointer(name);
                if (!event.row.contains(pointer))
                    continue;
                add(lastWord(name), event.row.at(pointer));
                isTold = true;
            }
            if (!isTold)
                add(lastWord(path), value);
        }
        return text;
    }

    static std::string ValueText(const Json &value)
    {
        return value.is_string() ? value.get<std::string>() : value.is_null() ? "none" : value.dump();
    }

    static std::string ChangeText(const FieldChange &change)
    {
        std::string rate;
        if (change.perSecond)
            rate = fmt::format("  ({:.1f}/s)", *change.perSecond);
        return fmt::format("           {}  {} -> {}{}\n", WordsOf(change.field), ValueText(change.before),
                           ValueText(change.after), rate);
    }

    Output &out_;
    std::string operation_;
    RowNames names_;
    uint32_t lastStatus_ = RSVP_MOR_OK;
};

std::string PointerOf(std::string path)
{
    std::replace(path.begin(), path.end(), '.', '/');
    std::replace(path.begin(), path.end(), '[', '/');
    std::erase(path, ']');
    return "/" + path;
}

// A counter is one under its name and under that of its field.
void AddCounters(const manager::RecordDescription &record, const manager::RecordMeanings &meanings,
                 const std::string &prefix, RowShape &shape)
{
    for (const manager::Meaning &meaning : meanings.own) {
        if (meaning.counter)
            shape.counters.insert({PointerOf(prefix + meaning.field), PointerOf(prefix + "named." + meaning.name)});
    }
    for (const manager::Field &field : record.fields) {
        if (field.kind == manager::FieldKind::Record && field.count == 0)
            AddCounters(*field.record, meanings.Inside(field.name), prefix + field.name + ".", shape);
    }
}

/** The table that is watched; null for what is no record of the library's. */
const manager::Table *TableOf(std::string_view command)
{
    constexpr std::string_view kPrefix = "watch show ";
    return command.starts_with(kPrefix) && command != kWatchLsp ? ShowNamed(command.substr(kPrefix.size())).table
                                                                : nullptr;
}

// A command that gives one record has no key: the record is one row.
RowShape ShapeOf(std::string_view command)
{
    RowShape shape;
    if (command == kWatchLsp) {
        for (const std::string &member : kLspKeyMembers)
            shape.key.push_back(PointerOf(member));
    }
    const manager::Table *table = TableOf(command);
    if (table == nullptr)
        return shape;
    const manager::RecordDescription &row = table->row();
    for (const manager::KeyPart &part : KeyPartsOf(*table, Names()))
        shape.key.push_back(PointerOf(PathAt(row, part.offset, part.size)));
    AddCounters(row, Names().Of(row), "", shape);
    return shape;
}

/** Tells whether nobody waits for more, as the end of the time that a watch was given does not say. */
bool IsGivenUp(Wake wake)
{
    return wake == Wake::Interrupted || wake == Wake::ReaderGone;
}

Exit Watch(Output &out, const Command &command, const Poll &read, const WatchOptions &options)
{
    const milliseconds interval = options.interval.DurationOr(kDefaultInterval);
    const uint64_t lastPoll = options.count.Number();
    const milliseconds duration = options.duration.DurationOr({});
    const Waiter waiter(options.duration.IsGiven() ? std::optional(duration) : std::nullopt);
    const manager::Table *table = TableOf(command.name);
    RowChanges changes(ShapeOf(command.name));
    Reporter reporter(out, command.name,
                      table == nullptr ? RowNames() : RowNames(table->row(), Names().Of(table->row())));
    std::optional<Exit> exit;
    bool print = options.initial.IsGiven();
    for (uint64_t poll = 1;; ++poll) {
        const PollResult result =
            RunPoll(waiter, read, [&](std::string_view row) { changes.Row(row, SecondsNow()); });
        if (result.exit == Exit::Usage)
            throw UsageError(result.document.value("error", "the arguments cannot be taken"));
        // Many events take long on a slow terminal, and Ctrl-C ends that too.
        const auto goesOn = [&] { return !IsGivenUp(waiter.Wait(-1, milliseconds(0))); };
        bool written = true;
        const OnRowEvent report = [&](const RowEvent &event) {
            written = goesOn() && reporter.Report(event);
            return written;
        };
        changes.EndPoll(result.complete, SecondsNow(), print ? report : nullptr);
        if (!goesOn())
            return Exit::Done;
        if (result.end == Wake::Over)
            break;
        exit = result.exit;
        written = reporter.ReportState(result) && written;
        if (!written || poll == lastPoll)
            return result.exit;
        // Changes cannot be told from the rows of a poll that failed half way.
        if (!print && result.complete) {
            print = true;
            if (!out.IsJson())
                out.Message(fmt::format("{}; what changes is printed every {}, until Ctrl-C",
                                        manager::CountText(changes.Rows(), "row"), manager::DurationText(interval)));
        }
        const Wake wake = waiter.Wait(-1, interval);
        if (IsGivenUp(wake))
            return Exit::Done;
        if (wake == Wake::Over)
            break;
    }
    if (!exit)
        out.Message(fmt::format("rsvpctl: {}: no poll came to its end within {}", command.name,
                                manager::DurationText(duration)));
    return exit.value_or(Exit::Exchange);
}

} // namespace

void AddWatchCommands(CommandLine &line)
{
    const Node watch = line.AddGroup(line.Root(), "watch",
                                     "Repeat a show, or the status, and print what was added, changed or removed",
                                     "  rsvpctl watch show psb\n"
                                     "  rsvpctl watch show interfaces --interval 10       # counters as rates\n"
                                     "  rsvpctl watch status --interval 500ms --duration 1m\n"
                                     "  rsvpctl watch show psb --initial --json           # one object a line");
    const WatchOptions options{
        watch.AddDuration("--interval", kLeastInterval, kMostInterval,
                          fmt::format("Time between polls (default {})", manager::DurationText(kDefaultInterval))),
        watch.AddNumber("--count", UINT32_MAX, "Polls after which it ends; 0 for no end"),
        watch.AddDuration("--duration", milliseconds(1), manager::kLongestDuration,
                          "Time after which it ends, with the exit status of the last poll"),
        watch.AddFlag("--initial", "Begin with the rows that are there, as added")};
    AddShowCommands(line, watch);
    AddStatusCommand(line, watch);
    for (Command *command : line.CommandsBelow(watch.Path())) {
        command->inBatch = false;
        command->mayBeLong = false;
        command->takesDetail = false;
        command->hasColumns = false;
        command->limitsItself = true;
        command->run = [&line, command, read = command->run, options](Output &out) {
            return Watch(out, *command, {read, line.ChosenTimeout()}, options);
        };
    }
}

} // namespace rsvpctl
