// An event has a time, a table for each of the things that can happen to rows, and the words of a fault.
#include "host/daemon/scenario/events.h"

#include "host/daemon/device/device.h"
#include "host/text.h"

namespace rsvpsimd {

namespace {

constexpr std::string_view kAdd = "add";
constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24) * 365;

const std::string &TextIn(const Member &member)
{
    if (const auto *text = member.node.As<std::string>())
        return *text;
    Refuse(member.line, member.name, "must be text");
}

std::chrono::milliseconds ReadTime(const Member &member, std::chrono::milliseconds least)
{
    constexpr struct {
        std::string_view name;
        std::chrono::milliseconds length;
    } kUnits[] = {{"ms", std::chrono::milliseconds(1)},
                  {"s", std::chrono::seconds(1)},
                  {"m", std::chrono::minutes(1)},
                  {"h", std::chrono::hours(1)}};
    const std::string_view text = TextIn(member);
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    for (const auto &unit : kUnits) {
        const auto number =
            rsvp_host::ReadDecimal(text.substr(0, digits), static_cast<uint64_t>(kLongest / unit.length));
        if (text.substr(digits) == unit.name && number && *number * unit.length >= least)
            return *number * unit.length;
    }
    Refuse(member.line, member.name,
           fmt::format("must be a time from {} to a year, as \"500ms\", \"2s\", \"1m\" or \"1h\"",
                       least.count() == 0 ? "\"0s\"" : "\"1ms\""));
}

Fault FaultIn(const Member &member)
{
    try {
        return ParseFault(TextIn(member));
    } catch (const std::invalid_argument &error) {
        Refuse(member.line, member.name, error.what());
    }
}

bool IsKey(const RowKind &kind, std::string_view name)
{
    return kind.keyFields.empty() ? name == kRequestKey : std::ranges::count(kind.keyFields, name) != 0;
}

// Calls `read` with the kind, the table and the line of each row.
template <typename Reader> void ForEachRow(const Member &member, const Reader &read)
{
    const RowKind *kind = FindRowKind(member.name);
    if (kind == nullptr || kind->name != member.name)
        Refuse(member.line, member.name, kNoSuchKey);
    ForEachTable(member, [&](const Node::Table &table, size_t line) { read(RowKindRef(*kind), table, line); });
}

Bytes ReadKey(const RowKind &kind, const Node::Table &table)
{
    for (const Member &member : table)
        if (!IsKey(kind, member.name))
            Refuse(member.line, member.name, "is no part of the key");
    return EncodeRow(kind, ReadRow(table, kind)).key;
}

Event::RowChange ReadChange(const RowKind &kind, const Node::Table &table)
{
    Event::RowChange change;
    Node::Table key;
    Node::Table values;
    for (const Member &member : table) {
        if (IsKey(kind, member.name))
            key.push_back(member);
        else if (member.name != kAdd)
            values.push_back(member);
        else
            change.change.added = ReadAdditions(member, kind.parts);
        if (member.name == kAdd)
            for (const Member &added : AsTable(member.node, kAdd))
                if (IsKey(kind, added.name))
                    Refuse(added.line, added.name, "is a part of the key");
    }
    if (values.empty() && change.change.added.empty())
        throw std::invalid_argument("has only the fields of the key; what is to be changed?");
    change.key = ReadKey(kind, key);
    change.change.set = ReadRow(values, kind);
    EncodeRow(kind, change.change.set); // whatever the rest of the row is, these lists must fit
    return change;
}

RecordChange ReadRecordChange(const Node::Table &table, LayoutRef layout)
{
    RecordChange change;
    Node::Table values;
    for (const Member &member : table) {
        const Part part{.layout = layout};
        if (member.name == kAdd)
            change.added = ReadAdditions(member, {&part, 1});
        else
            values.push_back(member);
    }
    change.set = ReadRecord(values, layout);
    return change;
}

void ReadCountChanges(Event &event, const Node::Table &table)
{
    Node::Table values;
    for (const Member &member : table) {
        if (member.name == kAdd)
            event.countsAdded = ReadCounts(AsTable(member.node, kAdd));
        else
            values.push_back(member);
    }
    event.counts = ReadCounts(values);
}

void ReadChanges(Event &event, const Node::Table &table)
{
    for (const Member &member : table) {
        if (member.name == "global")
            event.global = ReadRecordChange(AsTable(member.node, member.name), "globalInfo");
        else if (member.name == "debug")
            event.debug = ReadRecordChange(AsTable(member.node, member.name), "debugInfo");
        else if (member.name == "counters")
            ReadCountChanges(event, AsTable(member.node, member.name));
        else
            ForEachRow(member, [&](RowKindRef kind, const Node::Table &row, size_t line) {
                event.changed.push_back({kind, {line}, ReadChange(*kind, row)});
            });
    }
}

} // namespace

Event ReadEvent(const Node::Table &table, size_t line)
{
    Event event{.line = {line}};
    std::optional<std::chrono::milliseconds> first;
    for (const Member &member : table) {
        const std::string &name = member.name;
        if (name == "at") {
            first = ReadTime(member, std::chrono::milliseconds(0));
        } else if (name == "every") {
            event.period = ReadTime(member, std::chrono::milliseconds(1));
        } else if (name == kAdd) {
            for (const Member &rows : AsTable(member.node, name))
                ForEachRow(rows, [&](RowKindRef kind, const Node::Table &row, size_t rowLine) {
                    event.added.push_back({kind, {rowLine}, EncodeRow(*kind, ReadRow(row, *kind))});
                });
        } else if (name == "remove") {
            for (const Member &rows : AsTable(member.node, name))
                ForEachRow(rows, [&](RowKindRef kind, const Node::Table &row, size_t rowLine) {
                    event.removed.push_back({kind, {rowLine}, ReadKey(*kind, row)});
                });
        } else if (name == "change") {
            ReadChanges(event, AsTable(member.node, name));
        } else if (name == "fault") {
            event.begins = FaultIn(member);
        } else if (name == "end-fault") {
            event.ends = FaultIn(member);
        } else {
            Refuse(member.line, name, kNoSuchKey);
        }
    }
    if (!first && event.period.count() == 0)
        throw std::invalid_argument("needs its time, at or every");
    event.first = first.value_or(event.period);
    if (event == Event{.first = event.first, .period = event.period})
        throw std::invalid_argument("nothing happens in it");
    return event;
}

std::map<std::string, uint32_t> ReadCounts(const Node::Table &table)
{
    std::map<std::string, uint32_t> counts;
    for (const Member &member : table) {
        if (std::ranges::find(AllCounts(), member.name, &Count::name) == AllCounts().end())
            Refuse(member.line, member.name, "there is no such count");
        counts.emplace(member.name, static_cast<uint32_t>(NumberIn(member, 0xFFFFFFFF)));
    }
    return counts;
}

} // namespace rsvpsimd
