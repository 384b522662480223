// Finding the dictionary once.
#include "tools/rsvpctl/print/names.h"

#include "manager/dictionary/find.h"
#include "manager/table/tables.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <optional>

namespace rsvpctl {
namespace {

constexpr std::string_view kOption = "--dictionary";

struct Choice {
    std::string file;
    std::optional<manager::Dictionary> dictionary;
};

Choice &TheChoice()
{
    static Choice choice;
    return choice;
}

} // namespace

void ChooseDictionary(const std::vector<std::string> &words)
{
    for (size_t i = 0; i < words.size(); ++i) {
        if (words[i] == kOption && i + 1 < words.size())
            TheChoice() = {words[i + 1], {}};
        else if (words[i].starts_with(std::string(kOption) + "="))
            TheChoice() = {words[i].substr(kOption.size() + 1), {}};
    }
}

const manager::Dictionary &Names()
{
    Choice &choice = TheChoice();
    try {
        if (!choice.dictionary)
            choice.dictionary = manager::FindDictionary(choice.file, manager::AllTableShapes());
    } catch (const manager::DictionaryError &error) {
        throw UsageError(error.what());
    }
    return *choice.dictionary;
}

} // namespace rsvpctl
