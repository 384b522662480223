// Takes messages apart and puts them together. A message whose lengths do not add up is refused as a whole: none of
// its items is used.
#include "host/daemon/wire/frame.h"

#include <algorithm>

namespace rsvpsimd {

namespace {

std::string NameOf(std::span<const Meaning> all, uint32_t number)
{
    const auto found = std::ranges::find(all, number, &Meaning::number);
    return found == all.end() ? std::to_string(number) + "?" : std::string(found->words);
}

} // namespace

std::optional<Message> ReadMessage(ByteView frame)
{
    if (frame.size() < kHeaderSize || LoadNet(frame.subspan(2, 2)) != frame.size() - kHeaderSize)
        return std::nullopt;
    std::optional<std::vector<Item>> items = ReadItems(frame.subspan(kHeaderSize));
    if (!items)
        return std::nullopt;
    return Message{.msgClass = frame[0],
                   .op = frame[1],
                   .status = static_cast<uint32_t>(LoadNet(frame.subspan(4, 4))),
                   .items = std::move(*items)};
}

std::optional<std::vector<Item>> ReadItems(ByteView body)
{
    std::vector<Item> items;
    for (ByteView rest = body; !rest.empty();) {
        if (rest.size() < kItemHeaderSize)
            return std::nullopt;
        const auto type = static_cast<uint16_t>(LoadNet(rest.first(2)));
        const auto length = static_cast<size_t>(LoadNet(rest.subspan(2, 2)));
        rest = rest.subspan(kItemHeaderSize);
        if (length > rest.size())
            return std::nullopt;
        items.push_back({type, rest.first(length)});
        rest = rest.subspan(length);
    }
    return items;
}

void AppendItem(Bytes &body, uint16_t type, ByteView value)
{
    AppendNet(body, type, 2);
    AppendNet(body, value.size(), 2);
    body.insert(body.end(), value.begin(), value.end());
}

Bytes BuildFrame(uint8_t msgClass, uint8_t op, uint32_t status, ByteView body)
{
    Bytes frame{msgClass, op};
    AppendNet(frame, body.size(), 2);
    AppendNet(frame, status, 4);
    frame.insert(frame.end(), body.begin(), body.end());
    return frame;
}

std::string ClassName(uint8_t msgClass)
{
    return NameOf(kClasses, msgClass);
}

std::string OpName(uint8_t op)
{
    return NameOf(kOps, op);
}

} // namespace rsvpsimd
