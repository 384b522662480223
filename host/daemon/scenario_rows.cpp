// Goes down a table of the scenario and finds the field of the wire for every value in it. The field says what the
// value must look like: a number, an address, hexadecimal bytes, a rate.
#include "scenario_rows.h"

#include "scenario.h"

#include <arpa/inet.h>
#include <charconv>
#include <fmt/format.h>

namespace rsvpsimd {

namespace {

constexpr std::string_view kRequestKey = "requestKey";

struct Leaf {
    const toml::node *node = nullptr;
    toml::source_region where;
};
using Leaves = std::map<std::string, Leaf, std::less<>>;

void Flatten(Leaves &leaves, const std::string &name, const toml::node &node, const toml::source_region &where)
{
    const toml::array *array = node.as_array();
    if (const toml::table *table = node.as_table()) {
        for (const auto &[key, child] : *table)
            Flatten(leaves, fmt::format("{}.{}", name, key.str()), child, key.source());
    } else if (array != nullptr && !array->empty() && array->front().is_table()) {
        for (std::size_t i = 0; i < array->size(); i++)
            Flatten(leaves, fmt::format("{}[{}]", name, i), (*array)[i], (*array)[i].source());
    } else {
        leaves.insert_or_assign(name, Leaf{&node, where});
    }
}

std::uint64_t ReadAddress(const toml::node &node)
{
    std::array<std::uint8_t, 4> bytes{};
    const std::string text = node.value_or(std::string());
    if (inet_pton(AF_INET, text.c_str(), bytes.data()) != 1)
        throw std::invalid_argument(fmt::format("\"{}\" is no IPv4 address", text));
    return LoadNet(bytes);
}

Bytes ReadHex(const toml::node &node)
{
    const auto text = node.value<std::string>();
    if (!text)
        throw std::invalid_argument("must be bytes, as hexadecimal text");
    Bytes bytes(text->size() / 2);
    for (std::size_t i = 0; i < bytes.size(); i++) {
        const char *digits = text->data() + 2 * i;
        const auto [end, error] = std::from_chars(digits, digits + 2, bytes[i], 16);
        if (error != std::errc{} || end != digits + 2)
            throw std::invalid_argument(fmt::format("\"{}\" is not hexadecimal", *text));
    }
    if (text->size() % 2 != 0)
        throw std::invalid_argument(fmt::format("\"{}\" has half a byte at its end", *text));
    return bytes;
}

std::uint64_t ReadElement(const toml::node &node, const Field &field)
{
    if (node.is_string() && field.order != Order::Raw && field.width == 4)
        return ReadAddress(node);
    const auto number = node.is_integer() ? node.value<std::int64_t>() : std::nullopt;
    if (!number)
        throw std::invalid_argument("must be a whole number");
    if (*number < 0)
        throw std::invalid_argument("must not be negative");
    return static_cast<std::uint64_t>(*number);
}

Value ReadValue(const toml::node &node, const Field &field)
{
    if (field.count > 1) {
        const toml::array *array = node.as_array();
        if (array == nullptr)
            throw std::invalid_argument(fmt::format("must be an array of up to {} numbers", field.count));
        std::vector<std::uint64_t> numbers;
        for (const toml::node &element : *array)
            numbers.push_back(ReadElement(element, field));
        return numbers;
    }
    if (field.order == Order::Raw && field.width > 1)
        return ReadHex(node);
    if (field.order == Order::Float || field.order == Order::Rate) {
        const auto number = node.is_number() ? node.value<double>() : std::nullopt;
        if (!number)
            throw std::invalid_argument("must be a number");
        return *number;
    }
    return ReadElement(node, field);
}

struct Found {
    const Field *field = nullptr; // null: no part has such a field in this form
    std::size_t layoutSize = 0;
    bool inAnotherForm = false;
};

Found FindInParts(std::span<const Part> parts, std::string_view name, const Leaves &leaves)
{
    Found found;
    for (const Part &part : parts) {
        const std::string prefix = part.prefix.empty() ? "" : std::string(part.prefix) + ".";
        if (!name.starts_with(prefix))
            continue;
        const std::string_view rest = name.substr(prefix.size());
        const Layout &layout = LayoutNamed(part.layout);
        const KindLookup kinds = [&](std::string_view field) -> std::uint64_t {
            const auto leaf = leaves.find(prefix + std::string(field));
            return leaf == leaves.end() ? 0
                                        : static_cast<std::uint64_t>(leaf->second.node->value_or(std::int64_t{0}));
        };
        found.field = FindField(layout, rest, kinds);
        found.layoutSize = layout.size;
        if (found.field != nullptr)
            return found;
        for (const Field &field : layout.fields)
            found.inAnotherForm = found.inAnotherForm || field.name == rest;
    }
    return found;
}

Record ReadFields(const Leaves &leaves, std::span<const Part> parts)
{
    Record record;
    for (const auto &[name, leaf] : leaves) {
        const Found found = FindInParts(parts, name, leaves);
        if (found.field == nullptr)
            Refuse(leaf.where, name,
                   found.inAnotherForm ? "has no place in an object of this kind" : "there is no such key");
        try {
            Value value = ReadValue(*leaf.node, *found.field);
            Bytes scratch(found.layoutSize);
            if (const std::string problem = StoreField(scratch, *found.field, value); !problem.empty())
                throw std::invalid_argument(problem);
            record.emplace(name, std::move(value));
        } catch (const std::invalid_argument &error) {
            Refuse(leaf.where, name, error.what());
        }
    }
    return record;
}

Block ReadBlock(const toml::table &table, std::span<const Part> parts, std::span<const ListKind> lists,
                std::string_view keyLayout);

void ReadList(Block &block, const ListKind &kind, const toml::node &node, const toml::source_region &where)
{
    if (kind.shape == Shape::Text) {
        const auto text = node.value<std::string>();
        if (!text)
            Refuse(where, kind.name, "must be text");
        block.texts.emplace(kind.name, *text);
        return;
    }
    const toml::array *array = node.as_array();
    if (array == nullptr)
        Refuse(where, kind.name, "must be an array of tables");
    std::vector<Block> &list = block.lists[std::string(kind.name)];
    const Part entry{.layout = kind.shape == Shape::Counted ? FindListLayout(kind.layout)->entry : kind.layout};
    for (const toml::node &element : *array) {
        if (!element.is_table())
            Refuse(element.source(), kind.name, "must be an array of tables");
        list.push_back(ReadBlock(*element.as_table(), {&entry, 1}, kind.children, {}));
    }
}

Block ReadBlock(const toml::table &table, std::span<const Part> parts, std::span<const ListKind> lists,
                std::string_view keyLayout)
{
    Block block;
    Leaves leaves;
    for (const auto &[key, node] : table) {
        const auto list = std::ranges::find(lists, key.str(), &ListKind::name);
        if (list != lists.end())
            ReadList(block, *list, node, key.source());
        else if (!keyLayout.empty() && key.str() == kRequestKey && node.is_table())
            block.key = ReadRecord(*node.as_table(), keyLayout);
        else
            Flatten(leaves, std::string(key.str()), node, key.source());
    }
    block.fields = ReadFields(leaves, parts);
    return block;
}

} // namespace

void Refuse(const toml::source_region &where, std::string_view key, std::string_view problem)
{
    throw ScenarioError(fmt::format("{}: {}: {}", where.begin.line, key, problem));
}

Block ReadRow(const toml::table &table, const RowKind &kind)
{
    return ReadBlock(table, kind.parts, kind.lists, kind.keyFields.empty() ? kind.keyLayout : std::string_view{});
}

Record ReadRecord(const toml::table &table, std::string_view layout)
{
    const Part part{.layout = layout};
    return ReadBlock(table, {&part, 1}, {}, {}).fields;
}

std::uint64_t ReadNumber(const toml::node &node, std::string_view key, std::uint64_t most)
{
    const auto number = node.is_integer() ? node.value<std::int64_t>() : std::nullopt;
    if (!number || *number < 0 || static_cast<std::uint64_t>(*number) > most)
        Refuse(node.source(), key, fmt::format("must be a whole number from 0 to {}", most));
    return static_cast<std::uint64_t>(*number);
}

} // namespace rsvpsimd
