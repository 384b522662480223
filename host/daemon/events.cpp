// What an event does to a device is done row by row, and a row that is in the way or missing spoils only its own
// part.
#include "host/daemon/events.h"

#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

class Doing {
public:
    explicit Doing(Device &device) : device_(device) {}

    void Remove(const Event::InTable<Bytes> &row)
    {
        if (device_.Rows(row.kind).Remove(row.what))
            ++done_[{row.kind->name, "removed"}];
        else
            Miss(row.kind, row.line, "is not there");
    }

    void Add(const Event::InTable<EncodedRow> &row)
    {
        Table &table = device_.Rows(row.kind);
        if (table.Has(row.what.key))
            Miss(row.kind, row.line, "is there already");
        else if (table.Insert(row.what))
            ++done_[{row.kind->name, "added"}];
    }

    void Change(const Event::InTable<Event::RowChange> &row)
    {
        Table &table = device_.Rows(row.kind);
        std::optional<EncodedRow> found = table.Find(Seek::Exact, row.what.key);
        if (!found) {
            Miss(row.kind, row.line, "is not there");
            return;
        }
        try {
            ChangeBody(*row.kind, found->body, row.what.change);
        } catch (const std::invalid_argument &error) {
            Miss(row.kind, row.line, error.what());
            return;
        }
        table.Remove(row.what.key);
        table.Insert(std::move(*found));
        ++done_[{row.kind->name, "changed"}];
    }

    void Change(std::string_view name, LayoutRef layout, std::span<uint8_t> image, const RecordChange &change)
    {
        if (change.IsEmpty())
            return;
        try {
            ChangeRecord(*layout, image, change);
            ++done_[{name, "changed"}];
        } catch (const std::invalid_argument &error) {
            outcome_.problems.push_back(fmt::format("{}: {}", name, error.what()));
        }
    }

    void Count(const Event &event)
    {
        for (const auto &[name, number] : event.counts)
            device_.SetCount(name, number);
        for (const auto &[name, number] : event.countsAdded)
            device_.SetCount(name, device_.CountOf(*std::ranges::find(AllCounts(), name, &Count::name)) + number);
        if (const size_t counts = event.counts.size() + event.countsAdded.size(); counts != 0)
            done_[{"counters", "changed"}] = counts;
    }

    Outcome Finish()
    {
        std::vector<std::string> words;
        for (const auto &[what, count] : done_)
            words.push_back(fmt::format("{} {} {}", what.first, count, what.second));
        outcome_.done = fmt::format("{}", fmt::join(words, ", "));
        return std::move(outcome_);
    }

private:
    void Miss(RowKindRef kind, Line line, std::string_view why)
    {
        outcome_.problems.push_back(fmt::format("the {} of line {} {}", kind->name, line.number, why));
    }

    Device &device_;
    std::map<std::pair<std::string_view, std::string_view>, size_t> done_;
    Outcome outcome_;
};

} // namespace

Timeline::Timeline(std::vector<Event> events, Time start) : events_(std::move(events))
{
    for (size_t i = 0; i < events_.size(); ++i)
        due_.emplace(start + events_[i].first, i);
}

const Event *Timeline::Take(Time now)
{
    if (now < Next())
        return nullptr;
    const auto [due, number] = *due_.begin();
    due_.erase(due_.begin());
    const Event &event = events_[number];
    if (event.period.count() != 0)
        due_.emplace(due + ((now - due) / event.period + 1) * event.period, number);
    return &event;
}

Outcome Apply(const Event &event, Device &device)
{
    Doing doing(device);
    for (const auto &row : event.removed)
        doing.Remove(row);
    for (const auto &row : event.added)
        doing.Add(row);
    for (const auto &row : event.changed)
        doing.Change(row);
    doing.Change("global", "globalInfo", device.Global().View(), event.global);
    doing.Change("debug", "debugInfo", device.Debug().View(), event.debug);
    doing.Count(event);
    return doing.Finish();
}

} // namespace rsvpsimd
