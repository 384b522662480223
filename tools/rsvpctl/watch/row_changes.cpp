// Comparing rows: by their texts, then by their keys, then field by field.
#include "tools/rsvpctl/watch/row_changes.h"

#include "manager/record/text.h"

#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace rsvpctl {
namespace {

using manager::Json;

// A counter that seems to have gone more than half way round was cleared instead.
std::optional<double> Rate(const Json &before, const Json &after, double seconds)
{
    if (!before.is_number_unsigned() || !after.is_number_unsigned() || seconds <= 0)
        return std::nullopt;
    const auto up = static_cast<uint32_t>(after.get<uint64_t>() - before.get<uint64_t>());
    return up > INT32_MAX ? std::nullopt : std::optional(up / seconds);
}

// Words that stand for bits change as one value.
void JoinWords(Json &value)
{
    if (value.is_array() && !value.empty() && value.front().is_string())
        value = manager::Joined(value.get<std::vector<std::string>>(), ", ");
    else if (value.is_structured()) {
        for (Json &inside : value)
            JoinWords(inside);
    }
}

Json Values(Json row)
{
    JoinWords(row);
    return row.flatten();
}

std::vector<FieldChange> Compare(const Json &before, const Json &after, double seconds,
                                 const std::set<std::string, std::less<>> &counters)
{
    std::vector<FieldChange> changes;
    const Json old = Values(before);
    const Json now = Values(after);
    std::map<std::string_view, const Json *> left;
    for (const auto &[field, value] : old.items())
        left.emplace(field, &value);
    for (const auto &[field, value] : now.items()) {
        const auto found = left.find(field);
        if (found == left.end()) {
            changes.push_back({field, nullptr, value, std::nullopt});
            continue;
        }
        if (*found->second != value)
            changes.push_back({field, *found->second, value,
                               counters.contains(field) ? Rate(*found->second, value, seconds) : std::nullopt});
        left.erase(found);
    }
    for (const auto &[field, value] : left)
        changes.push_back({std::string(field), *value, nullptr, std::nullopt});
    return changes;
}

} // namespace

RowChanges::RowChanges(const RowShape &shape, size_t mostBytes)
    : keyFields_(shape.key.begin(), shape.key.end()), counters_(shape.counters), mostBytes_(mostBytes)
{
}

Json RowChanges::KeyOf(const Json &row) const
{
    Json key = Json::object();
    for (const auto &field : keyFields_)
        key[field] = row.at(field);
    return key;
}

void RowChanges::Row(std::string_view text, double seconds)
{
    const auto known = rows_.find(text);
    if (known != rows_.end()) {
        known->second = {seconds, poll_};
        return;
    }
    const KnownRow &row = *rows_.emplace(text, Read{seconds, poll_}).first;
    new_.push_back(&row);
    bytes_ += BytesOf(row);
    if (bytes_ > mostBytes_)
        throw std::length_error(fmt::format("after {} rows there are still more, and they already take the {} MiB "
                                            "that a watch may keep; 'show' reads a table of any length",
                                            rows_.size(), mostBytes_ >> 20));
}

RowChanges::ByKey RowChanges::MissingRows()
{
    ByKey missing;
    for (KnownRow &row : rows_) {
        if (row.second.poll != poll_)
            missing.emplace(KeyOf(Json::parse(row.first)).dump(), &row);
    }
    return missing;
}

void RowChanges::Tell(bool complete, double seconds, const OnRowEvent &onEvent)
{
    ByKey missing = MissingRows();
    for (const KnownRow *row : new_) {
        const auto &[text, read] = *row;
        Json now = Json::parse(text);
        RowEvent event{RowEvent::Kind::Added, read.seconds, KeyOf(now), std::move(now), {}};
        const auto found = missing.find(event.key.dump());
        if (found != missing.end()) {
            auto &[before, readBefore] = *found->second;
            event.kind = RowEvent::Kind::Changed;
            event.changes = Compare(Json::parse(before), event.row, read.seconds - readBefore.seconds, counters_);
            readBefore.poll = kReplaced;
            missing.erase(found);
        }
        if (!onEvent(event))
            return;
    }
    if (!complete)
        return;
    for (const auto &[key, row] : missing) {
        if (!onEvent({RowEvent::Kind::Removed, seconds, Json::parse(key), Json::parse(row->first), {}}))
            return;
    }
}

void RowChanges::EndPoll(bool complete, double seconds, const OnRowEvent &onEvent)
{
    if (onEvent && (complete || !new_.empty()))
        Tell(complete, seconds, onEvent);
    std::erase_if(rows_, [&](const KnownRow &row) {
        const bool gone = row.second.poll == kReplaced || (complete && row.second.poll != poll_);
        bytes_ -= gone ? BytesOf(row) : 0;
        return gone;
    });
    new_.clear();
    ++poll_;
}

} // namespace rsvpctl
