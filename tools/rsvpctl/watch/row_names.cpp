// Pointers with a * in the place of an index.
#include "tools/rsvpctl/watch/row_names.h"

#include "manager/dictionary/standard.h"
#include "manager/record/text.h"

#include <algorithm>

namespace rsvpctl {
namespace {

using manager::Field, manager::FieldKind;

// The bytes of a field are one value of a document, whichever of them have names; the elements of an array are many.
std::string PlaceOf(const manager::RecordDescription &record, const std::string &field)
{
    const size_t bracket = field.find('[');
    std::string name = field.substr(0, bracket);
    const auto described =
        std::find_if(record.fields.begin(), record.fields.end(), [&](const Field &one) { return one.name == name; });
    if (bracket == std::string::npos || described == record.fields.end() || described->count == 0)
        return name;
    return name + "/" + field.substr(bracket + 1, field.find(']') - bracket - 1);
}

} // namespace

void RowNames::Add(const manager::RecordDescription &record, const manager::RecordMeanings &meanings,
                   const std::string &prefix)
{
    for (const manager::Meaning &meaning : meanings.own)
        names_.emplace_back(prefix + "/" + PlaceOf(record, meaning.field), prefix + "/named/" + meaning.name);
    for (const manager::StandardMeaning &standard : StandardMeaningsOf(record)) {
        const manager::Meaning &meaning = standard.meaning;
        std::pair name{prefix + "/" + PlaceOf(record, meaning.field), prefix + "/named/" + meaning.name};
        // One that has several tags is said several times.
        if (std::find(names_.begin(), names_.end(), name) == names_.end())
            names_.push_back(std::move(name));
    }
    for (const Field &field : record.fields) {
        if (field.record == nullptr)
            continue;
        const manager::RecordMeanings &inside = meanings.Inside(field.name);
        const std::string place = prefix + "/" + field.name;
        if (!inside.name.empty())
            names_.emplace_back(place, prefix + "/named/" + inside.name);
        Add(*field.record, inside, field.kind == FieldKind::Record && field.count == 0 ? place : place + "/*");
    }
}

// What lies inside a raw value that has a name is told by that name.
std::vector<std::string> RowNames::Of(const std::string &pointer) const
{
    const std::vector<std::string_view> parts = manager::Split(pointer, '/');
    std::vector<std::string> named;
    for (const auto &[raw, name] : names_) {
        const std::vector<std::string_view> pattern = manager::Split(raw, '/');
        if (pattern.size() > parts.size())
            continue;
        std::string filled = name;
        bool fits = true;
        for (size_t i = 0; fits && i < pattern.size(); ++i) {
            fits = pattern[i] == parts[i] || pattern[i] == "*";
            if (const size_t star = filled.find('*'); fits && pattern[i] == "*" && star != std::string::npos)
                filled.replace(star, 1, parts[i]);
        }
        if (fits && filled != pointer)
            named.push_back(std::move(filled));
    }
    return named;
}

std::string WordsOf(const std::string &pointer)
{
    std::string words;
    for (const std::string_view part : manager::Split(pointer, '/')) {
        if (!part.empty() && part != "named")
            words += (words.empty() ? "" : "/") + std::string(part);
    }
    return words;
}

} // namespace rsvpctl
