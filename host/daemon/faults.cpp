// Reads fault specifications and spoils ready-made replies by them. Faults that need the tables (a stuck row, a
// shifting table) strike where rows are searched.
#include "faults.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

struct KindName {
    std::string_view name;
    FaultKind kind;
    std::uint32_t most = 0; // the largest number it takes; 0: it takes none
    bool needsNumber = false;
};

constexpr std::uint32_t kAnHour = 3'600'000; // milliseconds

constexpr std::array kKindNames{
    KindName{"late", FaultKind::Late, kAnHour, true},
    KindName{"silent", FaultKind::Silent},
    KindName{"short", FaultKind::Short, RSVP_MOR_MSG_MAX},
    KindName{"long", FaultKind::Long, RSVP_MOR_MSG_MAX},
    KindName{"wrong-body-length", FaultKind::WrongBodyLength},
    KindName{"cut-item", FaultKind::CutItem},
    KindName{"status", FaultKind::Status, 0xFFFFFFFF, true},
    KindName{"item-type", FaultKind::ItemType, 0xFFFF, true},
    KindName{"twice", FaultKind::Twice},
    KindName{"stuck", FaultKind::Stuck},
    KindName{"shifting", FaultKind::Shifting},
    KindName{"close", FaultKind::Close},
    KindName{"exit", FaultKind::Exit},
};

constexpr std::size_t kDefaultCut = 4;

std::uint32_t ParseNumber(std::string_view key, std::string_view text, std::uint32_t most)
{
    const bool hex = text.starts_with("0x");
    const std::string_view digits = hex ? text.substr(2) : text;
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, hex ? 16 : 10);
    if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size() || number > most)
        throw std::invalid_argument(fmt::format("{}: \"{}\" is not a number from 0 to {}", key, text, most));
    return number;
}

void SetSelector(Fault &fault, std::string_view key, std::string_view text)
{
    if (key == "class")
        fault.msgClass = static_cast<std::uint8_t>(ParseNumber(key, text, 0xFF));
    else if (key == "op")
        fault.op = static_cast<std::uint8_t>(ParseNumber(key, text, 0xFF));
    else if (key == "item")
        fault.item = static_cast<std::uint16_t>(ParseNumber(key, text, 0xFFFF));
    else if (key == "once" && text.empty())
        fault.once = true;
    else if (key != "always" || !text.empty())
        throw std::invalid_argument(
            fmt::format("\"{}\" is no part of a fault; it is told by a kind and then class, op, "
                        "item, once or always",
                        key));
}

} // namespace

Fault ParseFault(std::string_view text)
{
    Fault fault;
    bool hasKind = false;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string_view word = text.substr(begin, end - begin);
        begin = end + 1;
        const std::size_t equals = std::min(word.find('='), word.size());
        const std::string_view key = word.substr(0, equals);
        const std::string_view number = equals < word.size() ? word.substr(equals + 1) : std::string_view{};
        if (hasKind) {
            SetSelector(fault, key, number);
            continue;
        }
        const auto *named = std::find_if(kKindNames.begin(), kKindNames.end(),
                                         [&](const KindName &kind) { return kind.name == key; });
        if (named == kKindNames.end())
            throw std::invalid_argument(fmt::format("\"{}\" is no kind of fault", key));
        if (named->needsNumber && number.empty())
            throw std::invalid_argument(fmt::format("{} needs a number, as in {}=200", key, key));
        fault.kind = named->kind;
        if (!number.empty())
            fault.number = ParseNumber(key, number, named->most);
        hasKind = true;
    }
    return fault;
}

void Strike(const Fault &fault, Reply &reply)
{
    const std::span<std::uint8_t> frame(reply.frame);
    switch (fault.kind) {
    case FaultKind::Late:
        reply.delay = std::chrono::milliseconds(fault.number);
        break;
    case FaultKind::Silent:
        reply.copies = 0;
        break;
    case FaultKind::Short:
        reply.frame.resize(std::min(frame.size(), fault.number != 0 ? fault.number : frame.size() - kDefaultCut));
        break;
    case FaultKind::Long:
        reply.frame.resize(frame.size() + (fault.number != 0 ? fault.number : kDefaultCut));
        break;
    case FaultKind::WrongBodyLength:
        StoreNet(frame.subspan(2, 2), LoadNet(frame.subspan(2, 2)) + 1);
        break;
    case FaultKind::CutItem:
        // Without an item to cut, a lone half of an item's header does as well.
        reply.frame.resize(frame.size() > kHeaderSize ? frame.size() - 1 : kHeaderSize + 2);
        StoreNet(std::span(reply.frame).subspan(2, 2), reply.frame.size() - kHeaderSize);
        break;
    case FaultKind::Status:
        StoreNet(frame.subspan(4, 4), fault.number);
        break;
    case FaultKind::ItemType:
        if (frame.size() >= kHeaderSize + kItemHeaderSize)
            StoreNet(frame.subspan(kHeaderSize, 2), fault.number);
        break;
    case FaultKind::Twice:
        reply.copies = 2;
        break;
    case FaultKind::Close:
        reply.copies = 0;
        reply.close = true;
        break;
    case FaultKind::Exit:
        reply.copies = 0;
        reply.crash = true;
        break;
    case FaultKind::Stuck:
    case FaultKind::Shifting:
        break;
    }
}

} // namespace rsvpsimd
