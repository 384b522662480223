// Reads faults as people write them. What a fault does is decided where requests are answered.
#include "host/daemon/scenario/behaviour.h"

#include "host/text.h"
#include "rsvp_mor/status_codes.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

constexpr uint32_t kAnHour = 3'600'000; // milliseconds

constexpr std::array kFaults{
    FaultName{"late", FaultKind::Late, kAnHour, true},
    FaultName{"silent", FaultKind::Silent},
    FaultName{"short", FaultKind::Short, RSVP_MOR_MSG_MAX},
    FaultName{"long", FaultKind::Long, RSVP_MOR_MSG_MAX},
    FaultName{"wrong-body-length", FaultKind::WrongBodyLength},
    FaultName{"cut-item", FaultKind::CutItem},
    FaultName{"status", FaultKind::Status, 0xFFFFFFFF, true},
    FaultName{"item-type", FaultKind::ItemType, 0xFFFF, true},
    FaultName{"twice", FaultKind::Twice},
    FaultName{"stuck", FaultKind::Stuck},
    FaultName{"shifting", FaultKind::Shifting},
    FaultName{"close", FaultKind::Close},
    FaultName{"exit", FaultKind::Exit},
};

static_assert(kFaults.size() == static_cast<size_t>(FaultKind::Exit) + 1, "a kind of fault has no name");

uint64_t NumberOf(std::string_view key, std::string_view text, uint64_t most)
{
    const auto number = rsvp_host::ReadNumber(text, most);
    if (!number)
        throw std::invalid_argument(fmt::format("{}: \"{}\" is not a number from 0 to {}", key, text, most));
    return *number;
}

void SetSelector(Fault &fault, std::string_view key, std::string_view text)
{
    if (key == "class")
        fault.requests.msgClass = static_cast<uint8_t>(NumberOf(key, text, 0xFF));
    else if (key == "op")
        fault.requests.op = static_cast<uint8_t>(NumberOf(key, text, 0xFF));
    else if (key == "item")
        fault.requests.item = static_cast<uint16_t>(NumberOf(key, text, 0xFFFF));
    else if ((key == "once" || key == "always") && text.empty())
        fault.once = key == "once";
    else
        throw std::invalid_argument(
            fmt::format("\"{}\" is not a part of a fault; behind its kind a fault has class=, "
                        "op=, item=, once or always",
                        key));
}

} // namespace

std::span<const FaultName> AllFaults()
{
    return kFaults;
}

Fault MakeFault(std::string_view kind, std::optional<uint64_t> number)
{
    const auto *named = std::ranges::find(kFaults, kind, &FaultName::name);
    if (named == kFaults.end()) {
        std::vector<std::string_view> names;
        std::ranges::transform(kFaults, std::back_inserter(names), &FaultName::name);
        throw std::invalid_argument(
            fmt::format("\"{}\" is not a kind of fault; the kinds are {}", kind, fmt::join(names, ", ")));
    }
    if (named->needsNumber && !number)
        throw std::invalid_argument(fmt::format("{} needs a number, as in {}=200", kind, kind));
    if (number && named->most == 0)
        throw std::invalid_argument(fmt::format("{} takes no number", kind));
    if (number.value_or(0) > named->most)
        throw std::invalid_argument(fmt::format("{}: {} is not a number from 0 to {}", kind, *number, named->most));
    return {.kind = named->kind, .number = static_cast<uint32_t>(number.value_or(0))};
}

Fault ParseFault(std::string_view text)
{
    std::optional<Fault> fault;
    const auto read = [&](std::string_view word) {
        const std::string_view key = rsvp_host::CutOff(word, "=");
        if (fault)
            SetSelector(*fault, key, word);
        else if (word.empty())
            fault = MakeFault(key, std::nullopt);
        else
            fault = MakeFault(key, NumberOf(key, word, 0xFFFFFFFF));
    };
    for (bool more = true; more;) {
        more = text.find(',') != text.npos;
        read(rsvp_host::CutOff(text, ","));
    }
    return *fault;
}

} // namespace rsvpsimd
