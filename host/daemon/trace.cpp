// Frames in words. Items are named by the tables of commands and rows, values by the tables of fields; fields that
// are 0 are left out, so that a line says what is there.
#include "trace.h"

#include "device.h"

#include <algorithm>
#include <fmt/format.h>

namespace rsvpsimd {

namespace {

struct ItemWords {
    std::string_view name = "?";
    std::string_view layout = {}; // of a value or of a list; empty if the value is text or unknown
};

std::string ShowValue(const Layout &layout, ByteView value)
{
    std::string words;
    const KindLookup kinds = KindsOf(layout, value);
    for (const Field &field : layout.fields) {
        const ByteView bytes = value.subspan(field.offset, field.width * field.count);
        if (FindField(layout, field.name, kinds) != &field ||
            (!field.secret && std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; })))
            continue;
        words += fmt::format("{}{}={}", words.empty() ? "" : " ", field.name, ShowField(value, field));
    }
    return words;
}

std::string ShowList(const ListLayout &list, ByteView value)
{
    const Layout &entry = LayoutNamed(list.entry);
    std::vector<std::string> entries;
    for (ByteView rest = value.subspan(list.countWidth); rest.size() >= entry.size; rest = rest.subspan(entry.size))
        entries.push_back(ShowValue(entry, rest.first(entry.size)));
    return fmt::format("{}", fmt::join(entries, "; "));
}

std::string ShowItem(const Item &item, const ItemWords &words)
{
    std::string line = fmt::format(" {}({}) {}", words.name, item.type, item.value.size());
    const Layout *layout = FindLayout(words.layout);
    const ListLayout *list = FindListLayout(words.layout);
    if (item.value.empty())
        return line;
    if (layout != nullptr && layout->size == item.value.size())
        line += fmt::format(" {{{}}}", ShowValue(*layout, item.value));
    else if (list != nullptr && item.value.size() >= list->countWidth)
        line += fmt::format(" [{}]", ShowList(*list, item.value));
    return line;
}

std::optional<ItemWords> FindList(std::span<const ListKind> kinds, std::uint16_t type)
{
    for (const ListKind &kind : kinds) {
        if (kind.item == type)
            return ItemWords{kind.name, kind.layout};
        if (const auto child = FindList(kind.children, type))
            return child;
    }
    return std::nullopt;
}

ItemWords WordsOfReply(std::uint16_t asked, std::uint16_t type)
{
    if (const RowKind *kind = FindRowKind(asked)) {
        for (const Part &part : kind->parts)
            if (part.item == type)
                return {part.layout, part.layout};
        return FindList(kind->lists, type).value_or(ItemWords{});
    }
    for (const Count &count : AllCounts())
        if (count.item == type)
            return {count.name, "count"};
    if (asked == kDebugItem)
        return {"debugInfo", "debugInfo"};
    return asked == kGlobalItem ? ItemWords{"globalInfo", "globalInfo"} : ItemWords{};
}

ItemWords WordsOfRequest(const Message &message, const Item &item)
{
    if (message.msgClass == kShow) {
        if (const RowKind *kind = FindRowKind(item.type))
            return {kind->name, kind->keyLayout};
        return {WordsOfReply(item.type, item.type).name, {}};
    }
    const auto key = KeyItemOf(message.msgClass);
    if (key && key->type == item.type && &item == &message.items.front())
        return {key->layout, key->layout};
    const Command *command = FindCommand(message.msgClass, item.type);
    return command != nullptr ? ItemWords{command->name, command->layout} : ItemWords{};
}

} // namespace

std::string DescribeRequest(std::uint64_t client, ByteView frame)
{
    const std::optional<Message> message = ReadMessage(frame);
    if (!message)
        return fmt::format("{} > {} bytes that are no message", client, frame.size());
    std::string line = fmt::format("{} > {} {}", client, ClassName(message->msgClass), OpName(message->op));
    for (const Item &item : message->items)
        line += ShowItem(item, WordsOfRequest(*message, item));
    return line;
}

std::string DescribeReply(std::uint64_t client, ByteView request, const Reply &reply)
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
