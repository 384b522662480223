// `dictionary`: what the daemon means by the words of its records, and whether a file says it well.
#include "manager/dictionary/find.h"
#include "manager/record/text.h"
#include "manager/table/tables.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/view/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Json, manager::Meaning, manager::RecordDescription, manager::RecordMeanings;

Json RowOf(const std::string &record, const std::string &field, const Meaning &meaning)
{
    Json words = Json::object();
    for (const auto &[number, word] : meaning.words)
        words[std::to_string(number)] = word;
    return {{"record", record},
            {"field", field},
            {"name", meaning.name},
            {"form", NameOf(meaning.form)},
            {"words", meaning.words.empty() ? Json() : std::move(words)},
            {"unit", TextOrNull(meaning.unit)},
            {"counter", meaning.counter},
            {"mib", TextOrNull(meaning.mib)},
            {"setting", TextOrNull(meaning.setting)}};
}

// "number, s", "words: 1 up, 2 down".
std::string FormText(const Meaning &meaning)
{
    std::vector<std::string> words;
    for (const auto &[number, word] : meaning.words)
        words.push_back(fmt::format("{} {}", number, word));
    return fmt::format("{}{}{}{}{}", NameOf(meaning.form), words.empty() ? "" : ": ", manager::Joined(words, ", "),
                       meaning.unit.empty() ? "" : ", ", meaning.unit);
}

// A heading for each record, then a line a name.
void ListMeanings(Output &out, const RecordDescription &record, const RecordMeanings &meanings,
                  const std::string &prefix, std::string &heading)
{
    for (const Meaning &meaning : meanings.own) {
        const std::string field = prefix + meaning.field;
        out.ListRow(RowOf(record.name, field, meaning),
                    fmt::format("{}  {:<28} {:<24} {}\n", std::exchange(heading, ""), field, meaning.name,
                                FormText(meaning)));
    }
    for (const auto &[field, inside] : meanings.inside) {
        if (!inside.name.empty()) {
            Meaning route;
            route.name = inside.name;
            out.ListRow(
                RowOf(record.name, prefix + field, route),
                fmt::format("{}  {:<28} {:<24} route\n", std::exchange(heading, ""), prefix + field, inside.name));
        }
        ListMeanings(out, record, inside, prefix + field + ".", heading);
    }
}

Exit ListDictionary(Output &out, const std::string &operation)
{
    const manager::Dictionary &dictionary = Names();
    out.BeginList(operation);
    for (const RecordDescription *record : manager::AllRecords()) {
        std::string heading = std::string(record->name) + "\n";
        ListMeanings(out, *record, dictionary.Of(*record), "", heading);
    }
    return out.EndList();
}

Exit CheckDictionary(Output &out, const std::string &operation, const std::string &file)
{
    try {
        const manager::Dictionary dictionary = manager::ReadDictionary(file, manager::AllTableShapes());
        return out.Record(operation, {{"file", file}, {"daemon", dictionary.Daemon()}},
                          fmt::format("{}: a dictionary of {}\n", file, dictionary.Daemon()), RSVP_MOR_OK);
    } catch (const manager::DictionaryError &error) {
        throw UsageError(error.what());
    }
}

} // namespace

void AddDictionaryCommand(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "dictionary",
                                "What the daemon means by the words of its records, or whether a file says it well",
                                "  rsvpctl dictionary\n"
                                "  printf 'dictionary = 1\\ndaemon = \"mine\"\\nend-of-table = [1]\\n' > mine.toml\n"
                                "  rsvpctl dictionary check mine.toml\n"
                                "  rsvpctl --dictionary none show global");
    const Option verb = command.node.AddChoice("verb", "VERB", {"check"}, "check: read a file and say what is wrong");
    const Option file = command.node.AddFile("file,--file", "The file to check");
    command.mayBeLong = true;
    command.run = [&command, verb, file](Output &out) {
        if (verb.IsGiven() != file.IsGiven())
            throw UsageError("dictionary check takes a file");
        return verb.IsGiven() ? CheckDictionary(out, command.name, file.Text()) : ListDictionary(out, command.name);
    };
}

} // namespace rsvpctl
