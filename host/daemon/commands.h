// What each command does, as data: one row says which item of which class it is, how its value looks, and in which
// field of which read the setting shows afterwards.
#pragma once

#include "frame.h"

namespace rsvpsimd {

// Where a command's value goes. The first four are places that a later read shows.
enum class Target : std::uint8_t { Global, Interface, Neighbour, Auth, Debug, ResetStatistics, ResetAuth };

struct Command {
    std::uint8_t msgClass = 0;
    std::uint16_t item = 0;
    std::string_view name;
    std::string_view layout; // "none": a switch; it shows as the byte 1
    std::uint16_t ops = 0;   // one bit for each operation that the command knows
    Target target = Target::Global;
    std::string_view field = {}; // where it shows
    std::size_t index = 0;       // byte inside the field
    bool makesRow = false;       // setting it makes the row of its interface or peer, undoing it removes the row
    std::uint16_t flag = 0;      // bit of ifConfig
};

const Command *FindCommand(std::uint8_t msgClass, std::uint16_t item);
std::span<const Command> AllCommands();

// The item that names the interface or peer; nothing in classes that have no such item.
struct KeyItem {
    std::uint16_t type = 0;
    std::string_view layout;
};
std::optional<KeyItem> KeyItemOf(std::uint8_t msgClass);

} // namespace rsvpsimd
