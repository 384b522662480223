// Comparing rows. Most rows are as they were, so equal texts are found first, at no cost.
#include "tools/rsvpctl/watch/row_changes.h"

#include <utility>

namespace rsvpctl {
namespace {

using manager::Json;

// Counters only go up, 32 bits wide; no field that has a name for people is a counter.
bool IsCounter(std::string_view pointer)
{
    return pointer.find("/counts") != std::string_view::npos || pointer.find("/statWord") != std::string_view::npos;
}

// A counter that seems to have gone more than half way round was cleared instead.
std::optional<double> Rate(const Json &before, const Json &after, double seconds)
{
    if (!before.is_number_unsigned() || !after.is_number_unsigned() || seconds <= 0)
        return std::nullopt;
    const auto up = static_cast<uint32_t>(after.get<uint64_t>() - before.get<uint64_t>());
    return up > INT32_MAX ? std::nullopt : std::optional(up / seconds);
}

std::vector<FieldChange> Compare(const Json &before, const Json &after, double seconds)
{
    std::vector<FieldChange> changes;
    const Json old = before.flatten();
    const Json now = after.flatten();
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
                               IsCounter(field) ? Rate(*found->second, value, seconds) : std::nullopt});
        left.erase(found);
    }
    for (const auto &[field, value] : left)
        changes.push_back({std::string(field), *value, nullptr, std::nullopt});
    return changes;
}

} // namespace

RowChanges::RowChanges(std::span<const manager::KeyPart> keyParts)
{
    for (const manager::KeyPart &part : keyParts) {
        if (part.size != 0)
            keyFields_.emplace_back(part.field);
    }
}

Json RowChanges::KeyOf(const Json &row) const
{
    Json key = Json::object();
    for (const std::string &field : keyFields_)
        key[field] = row.at(field);
    return key;
}

void RowChanges::BeginPoll()
{
    ++poll_;
}

std::optional<RowEvent> RowChanges::Row(const Json &row, double seconds)
{
    Json key = KeyOf(row);
    std::string text = row.dump();
    const auto [at, isNew] = rows_.try_emplace(key.dump());
    const Known before = std::exchange(at->second, {std::move(text), seconds, poll_});
    if (isNew)
        return RowEvent{RowEvent::Kind::Added, std::move(key), row, {}};
    if (before.row == at->second.row)
        return std::nullopt;
    return RowEvent{RowEvent::Kind::Changed, std::move(key), row,
                    Compare(Json::parse(before.row), row, seconds - before.seconds)};
}

std::vector<RowEvent> RowChanges::EndPoll(bool complete)
{
    std::vector<RowEvent> gone;
    for (auto at = rows_.begin(); complete && at != rows_.end();) {
        if (at->second.poll == poll_) {
            ++at;
            continue;
        }
        gone.push_back({RowEvent::Kind::Removed, Json::parse(at->first), Json::parse(at->second.row), {}});
        at = rows_.erase(at);
    }
    return gone;
}

} // namespace rsvpctl
