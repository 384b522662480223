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
        if (!values.contains(leaf.path))
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

/** Adds the values of an object; those of an object inside it have its name in front: "session.tunnelId". */
void AddObject(Values &values, const Json &object, const std::string &prefix)
{
    for (const auto &[name, value] : object.items()) {
        const std::string path = prefix + name;
        if (value.is_object())
            AddObject(values, value, path + ".");
        else if (value.is_string())
            Add(values, path, value.get_ref<const std::string &>());
        else if (value.is_number_integer())
            Add(values, path, value.dump());
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

void ReadKey(const RecordDescription &description, std::string_view text, void *record)
{
    const std::vector<std::string_view> parts = Split(text, ',');
    Values values;
    if (text.find('=') == std::string_view::npos) {
        const std::vector<Leaf> leaves = Leaves(description);
        if (parts.size() != leaves.size())
            throw KeyError(fmt::format("takes {} ({}), got {}", CountText(leaves.size(), "value"),
                                       KeyShape(description), parts.size()));
        for (size_t i = 0; i < parts.size(); ++i)
            Add(values, leaves[i].path, parts[i]);
    } else {
        for (const std::string_view part : parts) {
            const size_t equals = part.find('=');
            if (equals == std::string_view::npos)
                throw KeyError(fmt::format("'{}' is not NAME=VALUE; the key is {}", part, KeyShape(description)));
            Add(values, part.substr(0, equals), part.substr(equals + 1));
        }
    }
    Store(description, values, record);
}

void ReadJsonKey(const RecordDescription &description, std::string_view json, void *record)
{
    Values values;
    AddObject(values, ParseObject(json), "");
    Store(description, values, record);
}

std::string KeyText(const RecordDescription &description, const void *record)
{
    std::string text;
    for (const Leaf &leaf : Leaves(description)) {
        const Json value = ScalarToJson(*leaf.field, At(record, leaf.offset));
        text += (text.empty() ? "" : ",") + (value.is_string() ? value.get<std::string>() : value.dump());
    }
    return text;
}

std::string KeyShape(const RecordDescription &description)
{
    std::string shape;
    for (const Leaf &leaf : Leaves(description))
        shape += (shape.empty() ? "" : ",") + leaf.path;
    return shape;
}

} // namespace manager
