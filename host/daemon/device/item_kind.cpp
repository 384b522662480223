// Looks an item up in the tables of commands and rows.
#include "host/daemon/device/item_kind.h"

#include "host/daemon/device/device.h"

namespace rsvpsimd {

namespace {

std::optional<ItemKind> FindList(std::span<const ListKind> kinds, uint16_t type)
{
    for (const ListKind &kind : kinds) {
        if (kind.item == type)
            return kind.list ? ItemKind{kind.name, {}, kind.list}
                             : ItemKind{kind.name, kind.entry, {}, kind.shape == Shape::Text};
        if (const auto child = FindList(kind.children, type))
            return child;
    }
    return std::nullopt;
}

} // namespace

ItemKind KindInReply(uint16_t asked, uint16_t type)
{
    if (const RowKind *kind = FindRowKind(asked)) {
        for (const Part &part : kind->parts)
            if (part.item == type)
                return {part.layout.Spec().name, part.layout};
        return FindList(kind->lists, type).value_or(ItemKind{});
    }
    if (type != asked)
        return {};
    for (const Count &count : AllCounts())
        if (count.item == type)
            return {count.name, LayoutRef("count")};
    if (type == kDebugItem)
        return {"debugInfo", LayoutRef("debugInfo")};
    return type == kGlobalItem ? ItemKind{"globalInfo", LayoutRef("globalInfo")} : ItemKind{};
}

ItemKind KindInRequest(uint8_t msgClass, uint16_t type, bool isFirst)
{
    if (msgClass == kShow) {
        if (const RowKind *kind = FindRowKind(type))
            return {kind->name, kind->keyLayout};
        return {KindInReply(type, type).name};
    }
    const auto key = KeyItemOf(msgClass);
    if (key && key->type == type && isFirst)
        return {key->layout.Spec().name, key->layout};
    const Command *command = FindCommand(msgClass, type);
    return command != nullptr ? ItemKind{command->name, command->layout} : ItemKind{};
}

uint16_t AskedBy(ByteView request)
{
    const std::optional<Message> message = ReadMessage(request);
    return message && !message->items.empty() ? message->items.front().type : kAskedNothing;
}

} // namespace rsvpsimd
