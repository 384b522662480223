// What each command does, as data: which item of which class it is, what its value looks like, and in which field of
// which read the setting shows afterwards.
#ifndef HOST_DAEMON_DEVICE_COMMANDS_H
#define HOST_DAEMON_DEVICE_COMMANDS_H

#include "host/daemon/wire/frame.h"
#include "host/daemon/wire/layouts.h"

namespace rsvpsimd {

// Where a command's value goes.
enum class Target : uint8_t { Global, Interface, Neighbour, Auth, Debug, ResetStatistics, ResetAuth };

// The record in which commands of this target show. Resets show in none.
constexpr std::optional<LayoutRef> RecordOf(Target target)
{
    switch (target) {
    case Target::Global:
        return LayoutRef("globalInfo");
    case Target::Interface:
        return LayoutRef("ifInfo");
    case Target::Neighbour:
        return LayoutRef("nbr");
    case Target::Auth:
        return LayoutRef("auth");
    case Target::Debug:
        return LayoutRef("debugInfo");
    case Target::ResetStatistics:
    case Target::ResetAuth:
        break;
    }
    return std::nullopt;
}

struct Command {
    uint8_t msgClass = 0;
    uint16_t item = 0;
    std::string_view name;
    LayoutRef layout; // "none": a switch; it shows as the byte 1
    uint16_t ops = 0; // one bit for each operation that the command knows
    Target target = Target::Global;
    std::string_view field = {}; // where it shows; empty if it has no single field
    size_t index = 0;            // byte inside the field
    bool makesRow = false;       // setting it makes the row of its interface or peer, undoing it removes the row
    uint16_t flag = 0;           // bit of ifConfig

    constexpr bool IsSwitch() const { return layout.Spec().fields.empty(); }

    // The bytes that it fills in its record. A pair of numbers fills the named field and the next one.
    constexpr Extent Shown() const
    {
        const size_t begin = ExtentOf(*RecordOf(target), field).offset + index;
        return {begin, IsSwitch() ? 1 : EndOf(layout.Spec().fields)};
    }
};

const Command *FindCommand(uint8_t msgClass, uint16_t item);
std::span<const Command> AllCommands();

// The item that names the interface or peer, in the classes that have one.
struct KeyItem {
    uint16_t type = 0;
    LayoutRef layout;
};
std::optional<KeyItem> KeyItemOf(uint8_t msgClass);

} // namespace rsvpsimd

#endif
