// Reading of keys. Both forms become names with values first, so that what may be written where is decided once. A
// name that is given twice is refused: one of its two values would be dropped in silence.
#include "manager/record/key.h"

#include "manager/record/json.h"
#include "manager/record/text.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace manager {
namespace {

/** The value of each field, as it was written. */
using Values = std::map<std::string, std::string, std::less<>>;

void StoreNumber(std::byte *at, uint32_t width, uint64_t number)
{
    const auto byte = static_cast<uint8_t>(number);
    const auto half = static_cast<uint16_t>(number);
    const auto word = static_cast<uint32_t>(number);
    const void *from = width == 1   ? static_cast<const void *>(&byte)
                       : width == 2 ? static_cast<const void *>(&half)
                       : width == 4 ? static_cast<const void *>(&word)
                                    : static_cast<const void *>(&number);
    std::memcpy(at, from, width);
}

bool StoreBytes(std::byte *at, uint32_t width, std::string_view text)
{
    if (text.size() != size_t{width} * 2)
        return false;
    for (uint32_t i = 0; i < width; ++i) {
        uint8_t byte = 0;
        const char *begin = text.data() + size_t{i} * 2;
        if (std::from_chars(begin, begin + 2, byte, 16).ptr != begin + 2)
            return false;
        at[i] = std::byte{byte};
    }
    return true;
}

void StoreLeaf(const Leaf &leaf, std::string_view text, void *record)
{
    std::byte *at = static_cast<std::byte *>(record) + leaf.offset;
    const Field &field = *leaf.field;
    if (field.kind == FieldKind::Bytes) {
        if (!StoreBytes(at, field.width, text))
            throw KeyError(fmt::format("{} takes {} hex digits, not '{}'", leaf.path, field.width * 2, text));
        return;
    }
    const bool mayBeAddress = field.width == sizeof(uint32_t);
    const auto address = mayBeAddress ? ParseAddress(text) : std::nullopt;
    const auto number = address ? *address : ParseNumber(text);
    if (!number || *number > MaximumOf(field.width))
        throw KeyError(fmt::format("{} takes {}0 to {}, not '{}'", leaf.path,
                                   mayBeAddress ? "an IPv4 address or " : "", MaximumOf(field.width), text));
    StoreNumber(at, field.width, *number);
}

/** The fields that a key must have, in order. */
std::vector<std::string> PlainFields(const RecordDescription &description)
{
    std::vector<std::string> fields;
    for (const Leaf &leaf : Leaves(description)) {
        if (!leaf.field->isQuiet)
            fields.push_back(leaf.path);
    }
    return fields;
}

void Add(Values &values, std::string_view name, std::string_view value)
{
    if (!values.emplace(name, value).second)
        throw KeyError(fmt::format("{} is given twice", name));
}

/** The names of the fields that have no value, or an empty text. */
std::string Missing(const std::vector<Leaf> &leaves, const Values &values)
{
    std::string missing;
    for (const Leaf &leaf : leaves) {
        if (!leaf.field->isQuiet && !values.contains(leaf.path))
            missing += (missing.empty() ? "" : ", ") + leaf.path;
    }
    return missing;
}

void Store(const RecordDescription &description, const Values &values, void *record)
{
    const std::vector<Leaf> leaves = Leaves(description);
    for (const auto &[name, value] : values) {
        const auto leaf =
            std::find_if(leaves.begin(), leaves.end(), [&path = name](const Leaf &one) { return one.path == path; });
        if (leaf == leaves.end())
            throw KeyError(fmt::format("there is no field '{}'; the key is {}", name, KeyShape(description)));
        StoreLeaf(*leaf, value, record);
    }
    if (const std::string missing = Missing(leaves, values); !missing.empty())
        throw KeyError(fmt::format("no value for {}; the key is {}", missing, KeyShape(description)));
}

/** The field that a name stands for. */
std::string FieldOf(const KeyAliases &aliases, std::string_view name)
{
    const auto alias = aliases.find(name);
    return alias == aliases.end() ? std::string(name) : alias->second;
}

/** Adds the values of an object; those of an object inside it have its name in front: "session.tunnelId". */
void AddObject(const KeyAliases &aliases, const Json &object, const std::string &prefix, Values &values)
{
    for (const auto &[name, value] : object.items()) {
        const std::string path = prefix + name;
        if (value.is_object() && name == "named")
            continue;
        if (value.is_object())
            AddObject(aliases, value, path + ".", values);
        else if (value.is_string())
            Add(values, FieldOf(aliases, path), value.get_ref<const std::string &>());
        else if (value.is_number_integer())
            Add(values, FieldOf(aliases, path), value.dump());
        else
            throw KeyError(fmt::format("{} takes a whole number or a text", path));
    }
}

/** The JSON library keeps the last of two members with one name, so they are counted while it reads. */
Json ParseObject(std::string_view text)
{
    std::map<int, std::set<std::string>> names; // of the object that is open at a depth
    std::string twice;
    const auto note = [&](int depth, Json::parse_event_t event, Json &parsed) {
        if (event == Json::parse_event_t::object_start)
            names[depth + 1].clear();
        else if (event == Json::parse_event_t::key && !names[depth].insert(parsed.get<std::string>()).second)
            twice = parsed.get<std::string>();
        return true;
    };
    try {
        Json object = Json::parse(text, note);
        if (!object.is_object())
            throw KeyError("is not a JSON object of field names with values");
        if (!twice.empty())
            throw KeyError(twice + " is given twice");
        return object;
    } catch (const Json::parse_error &error) {
        throw KeyError(fmt::format("is not JSON, at byte {}", error.byte));
    } catch (const Json::out_of_range &) {
        throw KeyError("has a number that no field holds");
    }
}

} // namespace

void ReadKey(const RecordDescription &description, std::string_view text, void *record, const KeyAliases &aliases)
{
    const std::vector<std::string> plain = PlainFields(description);
    const std::vector<std::string_view> parts = Split(text, ',');
    const auto hasName = [](std::string_view part) { return part.find('=') != std::string_view::npos; };
    const auto named = std::find_if(parts.begin(), parts.end(), hasName);
    const auto inOrder = static_cast<size_t>(named - parts.begin());
    if (inOrder != 0 && inOrder != plain.size())
        throw KeyError(
            fmt::format("takes {} ({}), got {}", CountText(plain.size(), "value"), KeyShape(description), inOrder));
    Values values;
    for (size_t i = 0; i < inOrder; ++i)
        Add(values, plain[i], parts[i]);
    for (auto part = named; part != parts.end(); ++part) {
        if (!hasName(*part))
            throw KeyError(fmt::format("'{}' is not NAME=VALUE; the key is {}", *part, KeyShape(description)));
        const size_t equals = part->find('=');
        Add(values, FieldOf(aliases, part->substr(0, equals)), part->substr(equals + 1));
    }
    Store(description, values, record);
}

void ReadJsonKey(const RecordDescription &description, std::string_view json, void *record, const KeyAliases &aliases)
{
    Values values;
    AddObject(aliases, ParseObject(json), "", values);
    Store(description, values, record);
}

std::string KeyText(const RecordDescription &description, const void *record)
{
    std::string text;
    std::string quiet;
    for (const Leaf &leaf : Leaves(description)) {
        const std::byte *at = At(record, leaf.offset);
        if (leaf.field->isQuiet &&
            std::all_of(at, at + leaf.field->width, [](auto byte) { return byte == std::byte{0}; }))
            continue;
        const Json value = ScalarToJson(*leaf.field, at);
        const std::string word = value.is_string() ? value.get<std::string>() : value.dump();
        if (leaf.field->isQuiet)
            quiet += fmt::format(",{}={}", leaf.path, word);
        else
            text += (text.empty() ? "" : ",") + word;
    }
    return text + quiet;
}

std::string KeyShape(const RecordDescription &description)
{
    return Joined(PlainFields(description), ",");
}

} // namespace manager
