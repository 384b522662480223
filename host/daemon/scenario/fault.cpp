// Reads faults as people write them. What a fault does is decided where requests are answered.
#include "host/daemon/scenario/fault.h"

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

// The parts that have a number, and the largest that each takes.
struct FaultPart {
    std::string_view name;
    uint32_t least, most;
    void (*set)(Fault &fault, uint32_t number);
};
constexpr std::array kFaultParts{
    FaultPart{"class", 0, 0xFF,
              [](Fault &fault, uint32_t number) { fault.requests.msgClass = static_cast<uint8_t>(number); }},
    FaultPart{"op", 0, 0xFF, [](Fault &fault, uint32_t number) { fault.requests.op = static_cast<uint8_t>(number); }},
    FaultPart{"item", 0, 0xFFFF,
              [](Fault &fault, uint32_t number) { fault.requests.item = static_cast<uint16_t>(number); }},
    FaultPart{"after", 0, 0xFFFFFFFF, [](Fault &fault, uint32_t number) { fault.after = number; }},
    FaultPart{"after-rows", 0, 0xFFFFFFFF, [](Fault &fault, uint32_t number) { fault.afterRows = number; }},
    FaultPart{"for", 1, 0xFFFFFFFF, [](Fault &fault, uint32_t number) { fault.strikes = number; }},
};

const FaultPart *FindPart(std::string_view name)
{
    const auto *part = std::ranges::find(kFaultParts, name, &FaultPart::name);
    return part == kFaultParts.end() ? nullptr : part;
}

void ReadPart(Fault &fault, std::string_view key, std::string_view text)
{
    if (text.empty() && (key == "once" || key == "always")) {
        fault.strikes = key == "once" ? 1 : 0;
    } else if (FindPart(key) != nullptr) {
        SetPart(fault, key, NumberOf(key, text, 0xFFFFFFFF));
    } else {
        std::vector<std::string> parts;
        parts.reserve(std::size(kFaultParts));
        for (const FaultPart &part : kFaultParts)
            parts.push_back(fmt::format("{}=", part.name));
        throw std::invalid_argument(
            fmt::format("\"{}\" is not a part of a fault; behind its kind a fault has {}, once or always", key,
                        fmt::join(parts, ", ")));
    }
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

bool SetPart(Fault &fault, std::string_view part, uint64_t number)
{
    const FaultPart *known = FindPart(part);
    if (known == nullptr)
        return false;
    if (number < known->least || number > known->most)
        throw std::invalid_argument(
            fmt::format("{}: {} is not a number from {} to {}", part, number, known->least, known->most));
    known->set(fault, static_cast<uint32_t>(number));
    return true;
}

Fault ParseFault(std::string_view text)
{
    std::optional<Fault> fault;
    const auto read = [&](std::string_view word) {
        const std::string_view key = rsvp_host::CutOff(word, "=");
        if (fault)
            ReadPart(*fault, key, word);
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
