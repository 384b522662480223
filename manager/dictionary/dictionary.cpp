// Looking things up in a dictionary.
#include "manager/dictionary/dictionary.h"

#include <algorithm>

namespace manager {

bool RecordMeanings::IsEmpty() const
{
    return own.empty() &&
           std::all_of(inside.begin(), inside.end(), [](const auto &one) { return one.second.name.empty(); });
}

const Meaning *RecordMeanings::Find(std::string_view wanted) const
{
    const auto found = std::find_if(own.begin(), own.end(), [&](const Meaning &one) { return one.name == wanted; });
    return found == own.end() ? nullptr : &*found;
}

const RecordMeanings &RecordMeanings::Inside(std::string_view field) const
{
    static const RecordMeanings none;
    const auto found = inside.find(field);
    return found == inside.end() ? none : found->second;
}

std::vector<PlacedMeaning> AllMeanings(const RecordDescription &record, const RecordMeanings &meanings)
{
    std::vector<PlacedMeaning> all;
    for (const Meaning &meaning : meanings.own)
        all.push_back({&meaning, 0});
    for (const Field &field : record.fields) {
        if (field.kind != FieldKind::Record || field.count != 0)
            continue;
        for (const PlacedMeaning &placed : AllMeanings(*field.record, meanings.Inside(field.name)))
            all.push_back({placed.meaning, field.offset + placed.base});
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const auto &left, const auto &right) { return left.Offset() < right.Offset(); });
    return all;
}

NamedValue::NamedValue(const RecordDescription &record, const RecordMeanings &meanings, std::string_view name)
{
    for (const PlacedMeaning &placed : AllMeanings(record, meanings)) {
        if (placed.meaning->name == name)
            placed_ = placed;
    }
}

uint64_t NamedValue::NumberIn(const void *record) const
{
    return placed_.meaning == nullptr ? 0 : NumberOf(*placed_.meaning, At(record, placed_.base));
}

std::string NamedValue::TextIn(const void *record) const
{
    return placed_.meaning == nullptr ? "" : ValueText(*placed_.meaning, At(record, placed_.base));
}

bool NamedValue::HasWord(std::string_view word) const
{
    return placed_.meaning != nullptr && std::any_of(placed_.meaning->words.begin(), placed_.meaning->words.end(),
                                                     [&](const auto &one) { return one.second == word; });
}

const Meaning *MeaningAt(const RecordDescription &record, const RecordMeanings &meanings, uint32_t offset)
{
    for (const PlacedMeaning &placed : AllMeanings(record, meanings)) {
        if (placed.Offset() == offset)
            return placed.meaning;
    }
    return nullptr;
}

// A walk has to end somewhere: without a word of the daemon's, the status that says that something does not exist.
Dictionary::Dictionary() : ends_{RSVP_MOR_ERR_NOT_EXIST} {}

const RecordMeanings &Dictionary::Of(const RecordDescription &record) const
{
    static const RecordMeanings none;
    const auto found = records_.find(std::string_view(record.name));
    return found == records_.end() ? none : found->second;
}

const TableMeanings &Dictionary::OfTable(std::string_view name) const
{
    static const TableMeanings none;
    const auto found = tables_.find(name);
    return found == tables_.end() ? none : found->second;
}

} // namespace manager
