// The bytes of request items and how a dry run shows them.
#include "tools/rsvpctl/command/wire.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

std::string ValueText(const WireItem &item)
{
    return item.secret ? "hidden" : fmt::format("{:02x}", fmt::join(item.value, ""));
}

} // namespace

std::vector<uint8_t> PairBytes(uint16_t first, uint16_t second)
{
    return {static_cast<uint8_t>(first >> 8), static_cast<uint8_t>(first), static_cast<uint8_t>(second >> 8),
            static_cast<uint8_t>(second)};
}

std::vector<uint8_t> WordBytes(uint32_t number)
{
    return PairBytes(static_cast<uint16_t>(number >> 16), static_cast<uint16_t>(number));
}

std::vector<uint8_t> ShortBytes(uint16_t number)
{
    return PairBytes(number, 0);
}

std::vector<uint8_t> ByteBytes(uint8_t number)
{
    return {number, 0, 0, 0};
}

WireItem InterfaceItem(uint32_t ifIndex)
{
    return {kInterfaceItem, WordBytes(ifIndex), false, fmt::format("interface {}", ifIndex)};
}

manager::Json ToJson(const WireRequest &request)
{
    manager::Json items = manager::Json::array();
    for (const WireItem &item : request.items)
        items.push_back({{"type", item.type},
                         {"length", item.value.size()},
                         {"value", ValueText(item)},
                         {"meaning", item.meaning}});
    return {{"class", request.messageClass}, {"op", request.operation}, {"items", std::move(items)}};
}

std::string ToText(const WireRequest &request)
{
    std::string text = fmt::format("class {} op {}", request.messageClass, request.operation);
    for (const WireItem &item : request.items)
        text += fmt::format(" item {} [{}]{}{} ({})", item.type, item.value.size(), item.value.empty() ? "" : " ",
                            item.value.empty() ? "" : ValueText(item), item.meaning);
    return text;
}

} // namespace rsvpctl
