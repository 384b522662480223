// Takes messages apart and puts them together. A message that does not add up is refused whole: no item of it
// is believed.
#include "frame.h"

#include <array>
#include <fmt/format.h>

namespace rsvpsimd {

namespace {

constexpr std::array<std::string_view, 6> kClassNames{"global", "interface", "peer", "show", "", "reset"};
constexpr std::array<std::string_view, 9> kOpNames{
    "set", "undo", "", "get", "get-first", "get-next", "get-first-ingress", "get-next-ingress", "hello-timer"};

template <std::size_t N> std::string NameIn(const std::array<std::string_view, N> &names, std::uint8_t number)
{
    return number < N && !names[number].empty() ? std::string(names[number]) : fmt::format("{}?", number);
}

} // namespace

std::optional<Message> ReadMessage(ByteView frame)
{
    if (frame.size() < kHeaderSize || LoadNet(frame.subspan(2, 2)) != frame.size() - kHeaderSize)
        return std::nullopt;
    Message message{.msgClass = frame[0],
                    .op = frame[1],
                    .status = static_cast<std::uint32_t>(LoadNet(frame.subspan(4, 4))),
                    .items = {}};
    for (ByteView rest = frame.subspan(kHeaderSize); !rest.empty();) {
        if (rest.size() < kItemHeaderSize)
            return std::nullopt;
        const auto type = static_cast<std::uint16_t>(LoadNet(rest.first(2)));
        const auto length = static_cast<std::size_t>(LoadNet(rest.subspan(2, 2)));
        rest = rest.subspan(kItemHeaderSize);
        if (length > rest.size())
            return std::nullopt;
        message.items.push_back({type, rest.first(length)});
        rest = rest.subspan(length);
    }
    return message;
}

void AppendItem(Bytes &body, std::uint16_t type, ByteView value)
{
    AppendNet(body, type, 2);
    AppendNet(body, value.size(), 2);
    body.insert(body.end(), value.begin(), value.end());
}

Bytes BuildFrame(std::uint8_t msgClass, std::uint8_t op, std::uint32_t status, ByteView body)
{
    Bytes frame{msgClass, op};
    AppendNet(frame, body.size(), 2);
    AppendNet(frame, status, 4);
    frame.insert(frame.end(), body.begin(), body.end());
    return frame;
}

std::string ClassName(std::uint8_t msgClass)
{
    return NameIn(kClassNames, msgClass);
}

std::string OpName(std::uint8_t op)
{
    return NameIn(kOpNames, op);
}

} // namespace rsvpsimd
