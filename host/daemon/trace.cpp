// Frames in words. The tables of commands and rows name the items, the layouts name the values. Fields that are 0 are
// left out, so that a line shows what is there.
#include "host/daemon/trace.h"

#include "host/daemon/device/item_kind.h"
#include "host/daemon/wire/record.h"

#include <fmt/format.h>

namespace rsvpsimd {

namespace {

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

std::string ShowItem(const Item &item, const ItemKind &kind)
{
    std::string line = fmt::format(" {}({}) {}", kind.name, item.type, item.value.size());
    if (item.value.empty())
        return line;
    if (kind.list && item.value.size() >= (*kind.list)->countWidth)
        line += fmt::format(" [{}]", ShowList(**kind.list, item.value));
    else if (kind.layout && (*kind.layout)->size == item.value.size())
        line += fmt::format(" {{{}}}", ShowValue(**kind.layout, item.value));
    return line;
}

} // namespace

std::string DescribeRequest(uint64_t client, ByteView frame)
{
    const std::optional<Message> message = ReadMessage(frame);
    if (!message)
        return fmt::format("{} > {} bytes that are not a message", client, frame.size());
    std::string line = fmt::format("{} > {} {}", client, ClassName(message->msgClass), OpName(message->op));
    for (const Item &item : message->items)
        line += ShowItem(item, KindInRequest(message->msgClass, item.type, &item == &message->items.front()));
    return line;
}

std::string DescribeReply(uint64_t client, uint16_t asked, ByteView frame)
{
    const std::optional<Message> message = ReadMessage(frame);
    if (!message)
        return fmt::format("{} < {} bytes out of format", client, frame.size());
    std::string line = fmt::format("{} < {} {} status {:#010x}", client, ClassName(message->msgClass),
                                   OpName(message->op), message->status);
    for (const Item &item : message->items)
        line += ShowItem(item, KindInReply(asked, item.type));
    return line;
}

std::string DescribeReply(uint64_t client, ByteView request, const Reply &reply)
{
    if (reply.crash)
        return fmt::format("{} < the daemon ends, as it was told to", client);
    if (reply.copies == 0)
        return fmt::format("{} < {}", client, reply.close ? "connection closed" : "no answer");
    std::string line = DescribeReply(client, AskedBy(request), reply.frame);
    if (reply.delay.count() != 0)
        line += fmt::format(", {} ms late", reply.delay.count());
    if (reply.copies > 1)
        line += ", twice";
    return line;
}

} // namespace rsvpsimd
