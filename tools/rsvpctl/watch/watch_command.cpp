// `watch show ...`: repeats a `show` and prints only what changed. It is a second `show` in the command tree, so that
// each takes its own options there, and help and completion know them.
#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/print/usage_error.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/show/shows.h"
#include "tools/rsvpctl/watch/commands.h"
#include "tools/rsvpctl/watch/polling.h"
#include "tools/rsvpctl/watch/row_changes.h"

#include <chrono>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace rsvpctl {
namespace {

using manager::Json;
using SystemClock = std::chrono::system_clock;

constexpr double kDefaultInterval = 2;

struct WatchOptions {
    Option interval;
    Option count;
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

std::string TimeForPrograms(SystemClock::time_point now)
{
    return fmt::format("{:%FT%T}Z", fmt::gmtime(std::chrono::floor<std::chrono::seconds>(now)));
}

std::string TimeForPeople(SystemClock::time_point now)
{
    return fmt::format("{:%T}", fmt::localtime(SystemClock::to_time_t(now)));
}

/** Prints the events of one watch. */
class Reporter {
public:
    Reporter(Output &out, std::string operation) : out_(out), operation_(std::move(operation)) {}

    bool Report(const RowEvent &event)
    {
        Json line = Head(NameOf(event.kind));
        line["key"] = event.key;
        std::string text =
            fmt::format("{} {:<8} {}\n", TimeForPeople(SystemClock::now()), NameOf(event.kind), KeyWords(event.key));
        if (event.kind == RowEvent::Kind::Changed) {
            line["changes"] = Json::array();
            for (const FieldChange &change : event.changes) {
                line["changes"].push_back({{"field", change.field},
                                           {"before", change.before},
                                           {"after", change.after},
                                           {"perSecond", change.perSecond ? Json(*change.perSecond) : Json()}});
                text += ChangeText(change);
            }
        }
        line["row"] = event.row;
        return out_.Line(line, text);
    }

    /** Reports a failure when it begins and when it ends, not at each poll in between. */
    bool ReportState(const PollResult &poll)
    {
        const uint32_t status =
            poll.document.is_object() ? poll.document.value("status", RSVP_MOR_OK) : RSVP_MOR_ERR_FAIL;
        if (status == std::exchange(lastStatus_, status))
            return true;
        const bool failed = status != RSVP_MOR_OK;
        Json line = Head(failed ? "failed" : "recovered");
        line["status"] = status;
        line["statusName"] = Explain(status).name;
        if (!out_.IsJson())
            out_.Message(failed ? fmt::format("{} failed   {:#010x} {}: {}", TimeForPeople(SystemClock::now()),
                                              status, Explain(status).name, Explain(status).cause)
                                : fmt::format("{} recovered", TimeForPeople(SystemClock::now())));
        return out_.Line(line, "");
    }

private:
    Json Head(const char *event) const
    {
        return {{"schemaVersion", kSchemaVersion},
                {"operation", operation_},
                {"time", TimeForPrograms(SystemClock::now())},
                {"event", event}};
    }

    // "tunnelEndpoint=10.0.0.4 tunnelId=100": the last word of a path is enough inside a key.
    static std::string KeyWords(const Json &key)
    {
        std::string text;
        const Json flat = key.flatten();
        for (const auto &[path, value] : flat.items()) {
            if (!value.is_null())
                text += fmt::format("{}{}={}", text.empty() ? "" : " ", path.substr(path.rfind('/') + 1),
                                    ValueText(value));
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
        return fmt::format("           {}  {} -> {}{}\n", change.field.substr(1), ValueText(change.before),
                           ValueText(change.after), rate);
    }

    Output &out_;
    std::string operation_;
    uint32_t lastStatus_ = RSVP_MOR_OK;
};

double SecondsNow()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// A show of one record has no key: it is one row.
std::span<const manager::KeyPart> KeyPartsOf(const Command &command)
{
    constexpr std::string_view kPrefix = "watch show ";
    const ShowSpec &show = ShowNamed(std::string_view(command.name).substr(kPrefix.size()));
    return show.table == nullptr ? std::span<const manager::KeyPart>() : show.table->keyParts;
}

Exit Watch(Output &out, const Command &command, const std::function<Exit(Output &)> &show,
           const WatchOptions &options)
{
    const double interval = options.interval.SecondsOr(kDefaultInterval);
    const uint64_t last = options.count.Number();
    const Waiter waiter;
    RowChanges changes(KeyPartsOf(command));
    Reporter reporter(out, command.name);
    bool print = options.initial.IsGiven();
    for (uint64_t poll = 1;; ++poll) {
        bool written = true;
        changes.BeginPoll();
        const PollResult result = RunPoll(waiter, show, [&](const Json &row) {
            const auto event = changes.Row(row, SecondsNow());
            if (event && print)
                written = reporter.Report(*event) && written;
        });
        if (result.end != Wake::Ready)
            return Exit::Done;
        if (result.exit == Exit::Usage)
            throw UsageError(result.document.value("error", "the arguments cannot be taken"));
        for (const RowEvent &event : changes.EndPoll(result.complete))
            written = reporter.Report(event) && written;
        written = reporter.ReportState(result) && written;
        if (!written || poll == last)
            return result.exit;
        // Changes cannot be told from the rows of a poll that failed half way.
        if (!print && result.complete) {
            print = true;
            if (!out.IsJson())
                out.Message(fmt::format("{}; what changes is printed every {} s, until Ctrl-C",
                                        manager::CountText(changes.Rows(), "row"), interval));
        }
        if (waiter.Wait(-1, static_cast<int>(interval * 1000)) != Wake::TimeOut)
            return Exit::Done;
    }
}

} // namespace

void AddWatchCommands(CommandLine &line)
{
    const Node watch =
        line.AddGroup(line.Root(), "watch", "Repeat a show and print rows that were added, changed or removed",
                      "  rsvpctl watch show psb\n"
                      "  rsvpctl watch show interfaces --interval 10       # counters as rates\n"
                      "  rsvpctl watch show psb --initial --json           # one object a line");
    const WatchOptions options{watch.AddSeconds("--interval", 0.1, 86400,
                                                fmt::format("Seconds between polls (default {})", kDefaultInterval)),
                               watch.AddNumber("--count", UINT32_MAX, "Polls after which it ends; 0 for no end"),
                               watch.AddFlag("--initial", "Begin with the rows that are there, as added")};
    AddShowCommands(line, watch);
    for (Command *command : line.CommandsBelow(watch.Path())) {
        command->inBatch = false;
        command->mayBeLong = false;
        command->takesDetail = false;
        command->run = [command, show = command->run, options](Output &out) {
            return Watch(out, *command, show, options);
        };
    }
}

} // namespace rsvpctl
