// Reading of point-to-multipoint keys. A repeated name is refused: one of its two values would be dropped in silence.
#include "p2mp_keys.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <iterator>

namespace rsvpctl {
namespace {

using Json = nlohmann::ordered_json;

std::string Joined(const std::vector<std::string> &words)
{
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : ",") + word;
    return text;
}

std::vector<std::string> SplitAtCommas(const std::string &text)
{
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == ',')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

void AddField(KeyFields &fields, const std::string &name, const std::string &value)
{
    if (!fields.emplace(name, value).second)
        throw UsageError(fmt::format("key: {} stands twice", name));
}

// Words that are addresses are typed as such; the record holds them as numbers.
std::string AsNumber(const Field &field, const std::string &value)
{
    if (field.kind != FieldKind::Number || field.width != 4)
        return value;
    const auto address = ParseAddress(value);
    return address ? fmt::format("{}", *address) : value;
}

std::string FileText(const std::string &name)
{
    std::ifstream input(name, std::ios::binary);
    if (!input)
        throw UsageError(fmt::format("--key-file: {}: {}", name, std::strerror(errno)));
    std::string text{std::istreambuf_iterator<char>(input), {}};
    if (input.bad())
        throw UsageError(fmt::format("--key-file: {}: {}", name, std::strerror(errno)));
    return text;
}

} // namespace

KeyFields KeyFromWords(const RecordDescription &description, const std::vector<std::string> &words)
{
    KeyFields fields;
    const std::vector<std::string> parts = SplitAtCommas(Joined(words));
    const bool named = std::any_of(parts.begin(), parts.end(),
                                   [](const std::string &part) { return part.find('=') != std::string::npos; });
    const std::vector<Leaf> leaves = Leaves(description);
    if (!named && parts.size() > leaves.size())
        throw UsageError(fmt::format("key: takes {} values, not {}", leaves.size(), parts.size()));
    for (size_t i = 0; i < parts.size(); ++i) {
        const size_t equals = parts[i].find('=');
        if (!named)
            AddField(fields, leaves[i].path, parts[i]);
        else if (equals == std::string::npos)
            throw UsageError(fmt::format("key: '{}' is not FIELD=VALUE", parts[i]));
        else
            AddField(fields, parts[i].substr(0, equals), parts[i].substr(equals + 1));
    }
    return fields;
}

KeyFields KeyFromJson(std::string_view text, const std::string &file)
{
    KeyFields fields;
    std::string twice;
    std::vector<std::string> names;
    const auto note = [&](int depth, Json::parse_event_t event, Json &parsed) {
        if (event == Json::parse_event_t::key && depth == 1) {
            const auto name = parsed.get<std::string>();
            if (std::find(names.begin(), names.end(), name) != names.end())
                twice = name;
            names.push_back(name);
        }
        return true;
    };
    Json object;
    try {
        object = Json::parse(text, note);
    } catch (const Json::parse_error &error) {
        throw UsageError(fmt::format("--key-file: {}: is no JSON, at byte {}", file, error.byte));
    }
    if (!object.is_object())
        throw UsageError(fmt::format("--key-file: {}: takes a JSON object of field names with values", file));
    if (!twice.empty())
        throw UsageError(fmt::format("--key-file: {}: {} stands twice", file, twice));
    for (const auto &[name, value] : object.items()) {
        if (!value.is_string() && !value.is_number_integer())
            throw UsageError(fmt::format("--key-file: {}: {} takes a whole number or a text", file, name));
        AddField(fields, name, value.is_string() ? value.get<std::string>() : value.dump());
    }
    return fields;
}

void FillKey(const RecordDescription &description, const KeyFields &fields, void *record)
{
    const std::vector<Leaf> leaves = Leaves(description);
    for (const auto &field : fields) {
        if (std::none_of(leaves.begin(), leaves.end(), [&](const Leaf &leaf) { return leaf.path == field.first; }))
            throw UsageError(
                fmt::format("key: there is no field '{}'; the fields are {}", field.first, KeyShape(description)));
    }
    std::string text;
    std::string missing;
    for (const Leaf &leaf : leaves) {
        const auto given = fields.find(leaf.path);
        if (given == fields.end())
            missing += (missing.empty() ? "" : ", ") + leaf.path;
        else
            text += (text.empty() ? "" : ",") + leaf.path + "=" + AsNumber(*leaf.field, given->second);
    }
    if (!missing.empty())
        throw UsageError(fmt::format("key: no value for {}", missing));
    RequireKey(description, text, record);
}

KeyOptions AddKeyOptions(CLI::App &app, const RecordDescription &description)
{
    CLI::Option *words = app.add_option("--key")
                             ->description("The key: every field, or all values in their order (" +
                                           KeyShape(description) + "); a number may be written as an address")
                             ->type_name("FIELD=VALUE...")
                             ->expected(1, static_cast<int>(description.fields.size()));
    CLI::Option *file = app.add_option("--key-file")
                            ->description("JSON file with the key: an object of field names with values")
                            ->type_name("FILE")
                            ->excludes(words);
    return {&description, words, file};
}

template <typename Key> Key KeyOf(const KeyOptions &options)
{
    if (options.words->count() == 0 && options.file->count() == 0)
        throw UsageError("key: --key or --key-file is needed");
    Key key{};
    const std::string file = TextValue(options.file);
    FillKey(*options.description,
            file.empty() ? KeyFromWords(*options.description, options.words->results())
                         : KeyFromJson(FileText(file), file),
            &key);
    return key;
}

template RSVP_MOR_P2mpStateKey KeyOf<RSVP_MOR_P2mpStateKey>(const KeyOptions &options);
template RSVP_MOR_P2mpCrlspKey KeyOf<RSVP_MOR_P2mpCrlspKey>(const KeyOptions &options);

} // namespace rsvpctl
