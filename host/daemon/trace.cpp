// Frames in words. The tables of commands and rows name the items, the layouts name the values. Fields that are 0 are
// left out, so that a line shows what is there.
#include "host/daemon/trace.h"

#include "host/daemon/device/device.h"

#include <fmt/format.h>

namespace rsvpsimd {

namespace {

// Text, and an item that nobody knows, have neither a layout nor a list.
struct ItemWords {
    std::string_view name = "?";
    std::optional<LayoutRef> layout = {};
    std::optional<ListRef> list = {};
};

std::string ShowValue(const Layout &layout, ByteView value)
{
    std::string words;
    const KindLookup kinds = KindsOf(layout, value);
    for (const Field &field : layout.fields) {
        if (FindField(layout, field.name, kinds) != &field || !IsWorthShowing(value, field))
            continue;
        words += fmt::format("{}{}={}", words.empty() ? "" : " ", field.name, ShowField(value, field));
    }
    return words;
}

std::string ShowList(const ListSpec &list, ByteView value)
{
    const Layout &entry = *list.entry;
    std::vector<std::string> entries;
    for (ByteView rest = value.subspan(list.countWidth); rest.size() >= entry.size; rest = rest.subspan(entry.size))
        entries.push_back(ShowValue(entry, rest.first(entry.size)));
    return fmt::format("{}", fmt::join(entries, "; "));
}

std::string ShowItem(const Item &item, const ItemWords &words)
{
    std::string line = fmt::format(" {}({}) {}", words.name, item.type, item.value.size());
    if (item.value.empty())
        return line;
    if (words.list && item.value.size() >= (*words.list)->countWidth)
        line += fmt::format(" [{}]", ShowList(**words.list, item.value));
    else if (words.layout && (*words.layout)->size == item.value.size())
        line += fmt::format(" {{{}}}", ShowValue(**words.layout, item.value));
    return line;
}

std::optional<ItemWords> FindList(std::span<const ListKind> kinds, uint16_t type)
{
    for (const ListKind &kind : kinds) {
        if (kind.item == type)
            return kind.list ? ItemWords{kind.name, {}, kind.list} : ItemWords{kind.name, kind.entry};
        if (const auto child = FindList(kind.children, type))
            return child;
    }
    return std::nullopt;
}

ItemWords WordsOfReply(uint16_t asked, uint16_t type)
{
    if (const RowKind *kind = FindRowKind(asked)) {
        for (const Part &part : kind->parts)
            if (part.item == type)
                return {part.layout.Spec().name, part.layout};
        return FindList(kind->lists, type).value_or(ItemWords{});
    }
    for (const Count &count : AllCounts())
        if (count.item == type)
            return {count.name, LayoutRef("count")};
    if (asked == kDebugItem)
        return {"debugInfo", LayoutRef("debugInfo")};
    return asked == kGlobalItem ? ItemWords{"globalInfo", LayoutRef("globalInfo")} : ItemWords{};
}

ItemWords WordsOfRequest(const Message &message, const Item &item)
{
    if (message.msgClass == kShow) {
        if (const RowKind *kind = FindRowKind(item.type))
            return {kind->name, kind->keyLayout};
        return {WordsOfReply(item.type, item.type).name};
    }
    const auto key = KeyItemOf(message.msgClass);
    if (key && key->type == item.type && &item == &message.items.front())
        return {key->layout.Spec().name, key->layout};
    const Command *command = FindCommand(message.msgClass, item.type);
    return command != nullptr ? ItemWords{command->name, command->layout} : ItemWords{};
}

} // namespace

std::string DescribeRequest(uint64_t client, ByteView frame)
{
    const std::optional<Message> message = ReadMessage(frame);
    if (!message)
        return fmt::format("{} > {} bytes that are not a message", client, frame.size());
    std::string line = fmt::format("{} > {} {}", client, ClassName(message->msgClass), OpName(message->op));
    for (const Item &item : message->items)
        line += ShowItem(item, WordsOfRequest(*message, item));
    return line;
}

std::string DescribeReply(uint64_t client, ByteView request, const Reply &reply)
{
    if (reply.crash)
        return fmt::format("{} < the daemon ends, as it was told to", client);
    if (reply.copies == 0)
        return fmt::format("{} < {}", client, reply.close ? "connection closed" : "no answer");
    std::string line = fmt::format("{} < ", client);
    const std::optional<Message> asked = ReadMessage(request);
    if (const std::optional<Message> message = ReadMessage(reply.frame)) {
        line +=
            fmt::format("{} {} status {:#010x}", ClassName(message->msgClass), OpName(message->op), message->status);
        for (const Item &item : message->items)
            line += ShowItem(
                item, WordsOfReply(asked && !asked->items.empty() ? asked->items.front().type : 0xFFFF, item.type));
    } else {
        line += fmt::format("{} bytes out of format", reply.frame.size());
    }
    if (reply.delay.count() != 0)
        line += fmt::format(", {} ms late", reply.delay.count());
    if (reply.copies > 1)
        line += ", twice";
    return line;
}

} // namespace rsvpsimd
