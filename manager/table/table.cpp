// Reading one row, and the key that it holds.
#include "manager/table/table.h"

#include "manager/exchange/exchange.h"

#include <algorithm>

namespace manager {

namespace {

// The row's first numbers, where they are as wide as those of the key. It is a guess, and the walk notices if it is
// wrong: the keys do not advance.
std::vector<KeyPart> FirstNumbers(const Table &table)
{
    const auto isNumber = [](const Leaf &leaf) {
        return leaf.field->width == sizeof(uint32_t) &&
               (leaf.field->kind == FieldKind::Number || leaf.field->kind == FieldKind::Address);
    };
    const std::vector<Leaf> ofKey = Leaves(table.key());
    std::vector<KeyPart> parts;
    for (const Leaf &leaf : Leaves(table.row())) {
        if (parts.size() == ofKey.size())
            break;
        if (isNumber(leaf) && isNumber(ofKey[parts.size()]))
            parts.push_back({leaf.offset, leaf.field->width, ofKey[parts.size()].offset});
    }
    return parts.size() == ofKey.size() ? parts : std::vector<KeyPart>();
}

// A name that is a field's own, or that two fields would have, stands for none other.
void AddAlias(const std::vector<Leaf> &ofKey, const std::string &alias, const Leaf &leaf, KeyAliases &aliases)
{
    const auto isOwn = [&](const Leaf &one) { return one.path == alias; };
    if (std::any_of(ofKey.begin(), ofKey.end(), isOwn))
        return;
    const auto [place, isNew] = aliases.emplace(alias, leaf.path);
    if (!isNew && place->second != leaf.path)
        place->second.clear();
}

const Leaf *LeafAt(const std::vector<Leaf> &leaves, uint32_t offset)
{
    const auto leaf =
        std::find_if(leaves.begin(), leaves.end(), [&](const Leaf &one) { return one.offset == offset; });
    return leaf == leaves.end() ? nullptr : &*leaf;
}

} // namespace

std::vector<KeyPart> KeyPartsOf(const Table &table, const Dictionary &dictionary)
{
    if (table.key == nullptr)
        return {};
    const std::vector<KeyPart> &said = dictionary.OfTable(table.name).nextKey;
    if (!said.empty())
        return said;
    std::vector<KeyPart> own;
    for (const KeyPart &part : table.ownKey) {
        if (part.size != 0)
            own.push_back(part);
    }
    return own.empty() ? FirstNumbers(table) : own;
}

uint32_t ReadRow(const Table &table, const RowRead &read, int32_t fd, const void *key, void *row)
{
    if (key != nullptr && !read.keyed) {
        for (const KeyPart &part : table.ownKey)
            std::memcpy(static_cast<std::byte *>(row) + part.offset, At(key, part.keyOffset), part.size);
    }
    ForgetExchange();
    return read.call(fd, key, row);
}

void CopyKey(std::span<const KeyPart> parts, const void *row, void *key)
{
    for (const KeyPart &part : parts)
        std::memcpy(static_cast<std::byte *>(key) + part.keyOffset, At(row, part.offset), part.size);
}

KeyAliases AliasesOf(const Table &table, const Dictionary &dictionary)
{
    const std::vector<Leaf> ofKey = Leaves(table.key());
    const std::vector<Leaf> ofRow = Leaves(table.row());
    const std::vector<KeyPart> parts = KeyPartsOf(table, dictionary);
    KeyAliases aliases;
    for (const Leaf &leaf : ofKey) {
        AddAlias(ofKey, leaf.path.substr(leaf.path.rfind('.') + 1), leaf, aliases);
        if (const Meaning *meaning = MeaningAt(table.key(), dictionary.Of(table.key()), leaf.offset))
            AddAlias(ofKey, meaning->name, leaf, aliases);
        for (const KeyPart &part : parts) {
            if (leaf.offset < part.keyOffset || leaf.offset >= part.keyOffset + part.size)
                continue;
            const uint32_t inRow = part.offset + leaf.offset - part.keyOffset;
            if (const Leaf *same = LeafAt(ofRow, inRow))
                AddAlias(ofKey, same->path, leaf, aliases);
            if (const Meaning *meaning = MeaningAt(table.row(), dictionary.Of(table.row()), inRow))
                AddAlias(ofKey, meaning->name, leaf, aliases);
        }
    }
    std::erase_if(aliases, [](const auto &alias) { return alias.second.empty(); });
    return aliases;
}

} // namespace manager
