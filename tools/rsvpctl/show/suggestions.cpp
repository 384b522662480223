// Suggestions from the columns of a table, from the dictionary and from the daemon.
#include "tools/rsvpctl/show/suggestions.h"

#include "manager/exchange/deadline.h"
#include "manager/record/key.h"
#include "manager/record/text.h"
#include "manager/table/session.h"
#include "manager/table/walk.h"
#include "tools/rsvpctl/print/names.h"

#include <algorithm>
#include <chrono>
#include <set>

namespace rsvpctl {
namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr size_t kMostSuggestions = 1000;

using Texts = std::vector<std::string>;

/** "endPoint" for "end-point". */
std::string CamelCase(const std::string &option)
{
    std::string name;
    for (size_t i = 0; i < option.size(); ++i) {
        if (option[i] == '-' && i + 1 < option.size())
            name += static_cast<char>(std::toupper(static_cast<unsigned char>(option[++i])));
        else
            name += option[i];
    }
    return name;
}

/** One more name behind those of a list that are typed already. */
Texts NextOfList(const Columns &columns, const std::string &typed)
{
    const std::string before = typed.substr(0, typed.rfind(',') + 1);
    const std::vector<std::string_view> given = manager::Split(before, ',');
    Texts lists;
    for (const Column &column : columns.all) {
        if (std::find(given.begin(), given.end(), column.name) == given.end())
            lists.push_back(before + column.name);
    }
    return lists;
}

/** The texts of rows that are there, each once, that begin with what is typed and are one word. */
Texts TextsOfRows(const manager::Table &table, const std::string &typed,
                  const std::function<std::string(const void *row)> &textOf)
{
    Texts texts;
    std::set<std::string> seen;
    const manager::Deadline deadline(kPatience);
    const manager::Session session(table.first.held);
    if (session.IsMissing())
        return texts;
    (void)Walk(table, Names(), session.Fd(), nullptr, [&](void *row) {
        const std::string text = textOf(row);
        if (text.starts_with(typed) && text.find(' ') == std::string::npos && seen.insert(text).second)
            texts.push_back(text);
        return texts.size() < kMostSuggestions;
    });
    return texts;
}

Texts KeysOfRows(const manager::Table &table, const std::string &typed)
{
    const std::vector<manager::KeyPart> parts = KeyPartsOf(table, Names());
    return TextsOfRows(table, typed, [&](const void *row) {
        std::vector<std::byte> key(table.key().size);
        CopyKey(parts, row, key.data());
        return KeyText(table.key(), key.data());
    });
}

} // namespace

std::vector<std::string> Suggest(const ShowSpec &show, const std::string &option, const std::string &typed)
{
    return show.HasRows() ? Suggest(show, ColumnsOf(show), option, typed) : std::vector<std::string>();
}

std::vector<std::string> Suggest(const ShowSpec &show, const Columns &shown, const std::string &option,
                                 const std::string &typed)
{
    const manager::RecordDescription &row = show.table->row();
    const Columns columns = ColumnsOf(show);
    if (option == "columns")
        return NextOfList(shown, typed);
    if (option == "key" || option == "after")
        return KeysOfRows(*show.table, typed);
    Texts texts;
    if (option == "sort") {
        for (const Column &column : shown.all)
            texts.push_back(column.name);
        return texts;
    }
    const std::string name = CamelCase(option);
    for (const manager::PlacedMeaning &placed : AllMeanings(row, Names().Of(row))) {
        if (placed.meaning->name != name)
            continue;
        for (const auto &[number, word] : placed.meaning->words)
            texts.push_back(word);
    }
    const auto column = std::find_if(columns.all.begin(), columns.all.end(), [&](const Column &one) {
        return one.name == name || one.name + "Id" == name; // "tunnel" is also asked for by its identifier
    });
    return texts.empty() && column != columns.all.end() ? TextsOfRows(*show.table, typed, column->text) : texts;
}

} // namespace rsvpctl
