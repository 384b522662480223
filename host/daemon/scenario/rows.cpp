// Walks through a table of the scenario and finds the wire's field for each value. The field decides what the value
// must look like: a number, an address, hexadecimal bytes, a rate.
#include "host/daemon/scenario/rows.h"

#include "host/daemon/device/change.h"

#include <arpa/inet.h>
#include <charconv>
#include <fmt/format.h>

namespace rsvpsimd {

namespace {

struct Leaf {
    const Node *node = nullptr;
    size_t line = 0;
};
using Leaves = std::map<std::string, Leaf, std::less<>>;

// An empty table is a leaf, so that its name is looked at.
void Flatten(Leaves &leaves, const std::string &name, const Node &node, size_t line)
{
    const auto *array = node.As<Node::Array>();
    if (const auto *table = node.As<Node::Table>(); table != nullptr && !table->empty()) {
        for (const Member &member : *table)
            Flatten(leaves, fmt::format("{}.{}", name, member.name), member.node, member.line);
    } else if (array != nullptr && !array->empty() && array->front().As<Node::Table>() != nullptr) {
        for (size_t i = 0; i < array->size(); ++i)
            Flatten(leaves, fmt::format("{}[{}]", name, i), (*array)[i], (*array)[i].line);
    } else {
        leaves.insert_or_assign(name, Leaf{&node, line});
    }
}

uint64_t ReadAddress(const std::string &text)
{
    std::array<uint8_t, 4> bytes{};
    if (inet_pton(AF_INET, text.c_str(), bytes.data()) != 1)
        throw std::invalid_argument(fmt::format("\"{}\" is not an IPv4 address", text));
    return LoadNet(bytes);
}

Bytes ReadHex(const Node &node)
{
    const auto *text = node.As<std::string>();
    if (text == nullptr)
        throw std::invalid_argument("must be bytes, as hexadecimal text");
    // The text may be a key, so a message does not repeat it.
    if (const size_t wrong = text->find_first_not_of("0123456789abcdefABCDEF"); wrong != std::string::npos)
        throw std::invalid_argument(fmt::format("character {} is not a hexadecimal digit", wrong + 1));
    if (text->size() % 2 != 0)
        throw std::invalid_argument("has half a byte at its end");
    Bytes bytes(text->size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i)
        std::from_chars(text->data() + 2 * i, text->data() + 2 * i + 2, bytes[i], 16);
    return bytes;
}

uint64_t ReadElement(const Node &node, const Field &field)
{
    if (const auto *text = node.As<std::string>(); text != nullptr && field.order != Order::Raw && field.width == 4)
        return ReadAddress(*text);
    const auto *number = node.As<int64_t>();
    if (number == nullptr)
        throw std::invalid_argument("must be a whole number");
    if (*number < 0)
        throw std::invalid_argument("must not be negative");
    return static_cast<uint64_t>(*number);
}

double ReadReal(const Node &node)
{
    if (const auto *number = node.As<int64_t>())
        return static_cast<double>(*number);
    if (const auto *real = node.As<double>())
        return *real;
    throw std::invalid_argument("must be a number");
}

Value ReadValue(const Node &node, const Field &field)
{
    if (field.count > 1) {
        const auto *array = node.As<Node::Array>();
        if (array == nullptr)
            throw std::invalid_argument(fmt::format("must be an array of up to {} numbers", field.count));
        std::vector<uint64_t> numbers;
        for (const Node &element : *array)
            numbers.push_back(ReadElement(element, field));
        return numbers;
    }
    if (field.order == Order::Raw && field.width > 1)
        return ReadHex(node);
    if (field.order == Order::Float || field.order == Order::Rate)
        return ReadReal(node);
    return ReadElement(node, field);
}

struct Found {
    const Field *field = nullptr; // null: no part has such a field in this form
    size_t layoutSize = 0;
    bool inAnotherForm = false;
};

Found FindInParts(std::span<const Part> parts, std::string_view name, const Leaves &leaves)
{
    Found found;
    for (const Part &part : parts) {
        const std::string prefix = PrefixOf(part);
        if (!name.starts_with(prefix))
            continue;
        const std::string_view rest = name.substr(prefix.size());
        const KindLookup kinds = [&](std::string_view field) -> uint64_t {
            const auto leaf = leaves.find(prefix + std::string(field));
            const auto *kind = leaf == leaves.end() ? nullptr : leaf->second.node->As<int64_t>();
            return kind == nullptr ? 0 : static_cast<uint64_t>(*kind);
        };
        found.field = FindField(*part.layout, rest, kinds);
        found.layoutSize = part.layout->size;
        if (found.field != nullptr)
            return found;
        found.inAnotherForm = found.inAnotherForm || part.layout->Has(rest);
    }
    return found;
}

bool IsObject(std::span<const Part> parts, const std::string &name)
{
    return std::ranges::any_of(parts, [&](const Part &part) {
        return std::ranges::any_of(part.layout->fields, [&](const Field &field) {
            return (PrefixOf(part) + field.name).starts_with(name + ".");
        });
    });
}

Record ReadFields(const Leaves &leaves, std::span<const Part> parts)
{
    Record record;
    for (const auto &[name, leaf] : leaves) {
        if (leaf.node->As<Node::Table>() != nullptr && IsObject(parts, name))
            continue; // an object that names none of its fields
        const Found found = FindInParts(parts, name, leaves);
        if (found.field == nullptr)
            Refuse(leaf.line, name, found.inAnotherForm ? "has no place in an object of this kind" : kNoSuchKey);
        try {
            Value value = ReadValue(*leaf.node, *found.field);
            Bytes scratch(found.layoutSize);
            if (const std::string problem = StoreField(scratch, *found.field, value); !problem.empty())
                throw std::invalid_argument(problem);
            record.emplace(name, std::move(value));
        } catch (const std::invalid_argument &error) {
            Refuse(leaf.line, name, error.what());
        }
    }
    return record;
}

Block ReadBlock(const Node::Table &table, std::span<const Part> parts, std::span<const ListKind> lists,
                std::optional<LayoutRef> ownKey);

void ReadList(Block &block, const ListKind &kind, const Member &member)
{
    if (kind.shape == Shape::Text) {
        const auto *text = member.node.As<std::string>();
        if (text == nullptr)
            Refuse(member.line, kind.name, "must be text");
        block.texts.emplace(kind.name, *text);
        return;
    }
    const auto *array = member.node.As<Node::Array>();
    if (array == nullptr)
        Refuse(member.line, kind.name, "must be an array of tables");
    if (array->empty() && !kind.mayBeEmpty)
        Refuse(member.line, kind.name, "must have an entry, or not be named at all");
    std::vector<Block> &list = block.lists[std::string(kind.name)];
    const Part entry{.layout = *kind.entry};
    for (const Node &element : *array) {
        const auto *table = element.As<Node::Table>();
        if (table == nullptr)
            Refuse(element.line, kind.name, "must be an array of tables");
        list.push_back(ReadBlock(*table, {&entry, 1}, kind.children, std::nullopt));
    }
}

Block ReadBlock(const Node::Table &table, std::span<const Part> parts, std::span<const ListKind> lists,
                std::optional<LayoutRef> ownKey)
{
    Block block;
    Leaves leaves;
    for (const Member &member : table) {
        const auto list = std::ranges::find(lists, member.name, &ListKind::name);
        const auto *inner = member.node.As<Node::Table>();
        if (list != lists.end())
            ReadList(block, *list, member);
        else if (ownKey && inner != nullptr && member.name == kRequestKey)
            block.key = ReadRecord(*inner, *ownKey);
        else
            Flatten(leaves, member.name, member.node, member.line);
    }
    block.fields = ReadFields(leaves, parts);
    return block;
}

} // namespace

const Node::Table &AsTable(const Node &node, std::string_view key)
{
    if (const auto *table = node.As<Node::Table>())
        return *table;
    Refuse(node.line, key, "must be a table");
}

Block ReadRow(const Node::Table &table, const RowKind &kind)
{
    return ReadBlock(table, kind.parts, kind.lists,
                     kind.keyFields.empty() ? std::optional(kind.keyLayout) : std::nullopt);
}

Record ReadRecord(const Node::Table &table, LayoutRef layout)
{
    const Part part{.layout = layout};
    return ReadBlock(table, {&part, 1}, {}, std::nullopt).fields;
}

Record ReadAdditions(const Member &member, std::span<const Part> parts)
{
    Leaves leaves;
    for (const Member &inner : AsTable(member.node, member.name))
        Flatten(leaves, inner.name, inner.node, inner.line);
    Record record = ReadFields(leaves, parts);
    for (const auto &[name, leaf] : leaves) {
        const Field *field = FindInParts(parts, name, leaves).field; // null for an object that names none of its own
        if (field != nullptr && !IsCounted(*field))
            Refuse(leaf.line, name, "is no whole number that can be added to");
    }
    return record;
}

} // namespace rsvpsimd
