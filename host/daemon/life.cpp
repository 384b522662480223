// An event that cannot do its work would say so each time that it happens; what has been told once is not repeated.
// A scenario that is read again is the start of a new life, so that what comes out does not depend on what was
// before.
#include "host/daemon/life.h"

#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

class Differences {
public:
    void Add(std::string words) { all_.push_back(std::move(words)); }

    void AddTable(std::string_view name, const Table::Difference &difference)
    {
        std::vector<std::string> words;
        for (const auto &[count, what] :
             {std::pair{difference.added, "added"}, std::pair{difference.changed, "changed"},
              std::pair{difference.removed, "removed"}})
            if (count != 0)
                words.push_back(fmt::format("{} {}", count, what));
        if (!words.empty())
            Add(fmt::format("{} {}", name, fmt::join(words, ", ")));
    }

    // Names the fields, never their values: one of them is a key.
    void AddRecord(std::string_view name, const Layout &layout, ByteView before, ByteView after,
                   std::span<const Extent> statistics)
    {
        std::vector<std::string> words;
        for (const Field &field : layout.fields) {
            const auto counts = [&](Extent one) {
                return field.offset >= one.offset && field.offset < one.offset + one.size;
            };
            if (std::ranges::none_of(statistics, counts) &&
                !std::ranges::equal(before.subspan(field.offset, field.Size()),
                                    after.subspan(field.offset, field.Size())))
                words.push_back(field.name);
        }
        if (!words.empty())
            Add(fmt::format("{} {}", name, fmt::join(words, ", ")));
    }

    template <typename What>
    void AddAll(std::string_view name, const std::vector<What> &before, const std::vector<What> &after)
    {
        if (before != after)
            Add(fmt::format("{} {} instead of {}", after.size(), name, before.size()));
    }

    std::string Words() const { return all_.empty() ? "nothing" : fmt::format("{}", fmt::join(all_, "; ")); }

private:
    std::vector<std::string> all_;
};

} // namespace

std::string DescribeChanges(Device &device, const Behaviour &behaviour, Setup &next)
{
    Differences differences;
    for (const RowKind &kind : AllRowKinds())
        differences.AddTable(kind.name, Table::Compare(device.Rows(kind), next.device.Rows(kind)));
    differences.AddRecord("global", *LayoutRef("globalInfo"), device.Global().View(), next.device.Global().View(),
                          kGlobalStatistics);
    differences.AddRecord("debug", *LayoutRef("debugInfo"), device.Debug().View(), next.device.Debug().View(), {});
    if (device.GivenCounts() != next.device.GivenCounts())
        differences.Add("counters");
    differences.AddAll("faults", behaviour.faults, next.behaviour.faults);
    differences.AddAll("refusals", behaviour.refusals, next.behaviour.refusals);
    differences.AddAll("events", behaviour.events, next.behaviour.events);
    return differences.Words();
}

Life::Life(Daemon &daemon, const Options &options, Setup setup, Timeline::Time start, Teller tell)
    : daemon_(daemon), options_(options), tell_(std::move(tell))
{
    Begin(std::move(setup), start);
}

Timeline::Time Life::Turn(Timeline::Time now)
{
    while (const Event *event = timeline_.Take(now)) {
        std::vector<std::string> problems = daemon_.Happen(*event);
        std::vector<std::string> &told = told_[event->line.number];
        if (problems != told)
            for (const std::string &problem : problems)
                tell_(fmt::format("event of line {}: {}", event->line.number, problem));
        told = std::move(problems);
    }
    return timeline_.Next();
}

void Life::ReadAgain(Timeline::Time now)
{
    std::string said;
    try {
        if (options_.scenario.empty())
            throw std::runtime_error("there is no scenario to read again");
        // What came through a pipe is gone.
        if (!std::filesystem::is_regular_file(options_.scenario))
            throw std::runtime_error(fmt::format("{}: there is no such file to read again", options_.scenario));
        Setup setup = ReadSetup(options_);
        said = fmt::format("{} was read again; what changed: {}", options_.scenario,
                           DescribeChanges(daemon_.GetDevice(), behaviour_, setup));
        Begin(std::move(setup), now);
    } catch (const std::exception &error) {
        said = fmt::format("{}; nothing changed", error.what());
    }
    tell_(said);
    daemon_.Note(said);
}

void Life::Begin(Setup setup, Timeline::Time now)
{
    timeline_ = Timeline(setup.behaviour.events, now);
    told_.clear();
    daemon_.Start(std::move(setup.device), setup.behaviour);
    behaviour_ = std::move(setup.behaviour);
}

} // namespace rsvpsimd
