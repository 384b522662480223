// The list of commands. A setting whose fields have no name of their own was given one here, once for all readers.
#include "commands.h"

#include <algorithm>
#include <array>

namespace rsvpsimd {

namespace {

constexpr std::uint16_t Bit(Op op)
{
    return static_cast<std::uint16_t>(1U << op);
}

constexpr std::uint16_t kSetOnly = Bit(kSet);
constexpr std::uint16_t kUndoOnly = Bit(kUndo);
constexpr std::uint16_t kBoth = Bit(kSet) | Bit(kUndo);
constexpr std::uint16_t kTimer = Bit(kHelloTimer);

constexpr std::array kCommands{
    Command{kGlobal, 2, "authChallenge", "none", kBoth, Target::kGlobal, "authEndBytes", 0},
    Command{kGlobal, 3, "authKey", "authKeySetting", kBoth, Target::kGlobal, "authKey"},
    Command{kGlobal, 4, "authLifeTime", "lifeTime", kSetOnly, Target::kGlobal, "authLifeTime"},
    Command{kGlobal, 5, "authWindowSize", "windowSize", kSetOnly, Target::kGlobal, "authEndBytes", 1},
    Command{kGlobal, 7, "debug", "debugSwitch", kBoth, Target::kDebug},
    Command{kGlobal, 8, "gr", "none", kBoth, Target::kGlobal, "settingBytes", 3},
    Command{kGlobal, 10, "helloInterval", "helloInterval", kTimer, Target::kGlobal, "settingBytes", 1},
    Command{kGlobal, 11, "helloLost", "helloLost", kTimer, Target::kGlobal, "settingBytes", 2},
    Command{kGlobal, 12, "keepMultiplier", "keepMultiplier", kSetOnly, Target::kGlobal, "settingBytes", 0},
    Command{kGlobal, 15, "refreshInterval", "interval", kSetOnly, Target::kGlobal, "settingShort"},
    Command{kGlobal, 19, "dscp", "dscp", kSetOnly, Target::kGlobal, "settingWord1"},
    Command{kGlobal, 20, "globalDisable", "none", kUndoOnly, Target::kGlobal, "settingBytes2", 0},

    Command{kInterface, 2, "authChallenge", "none", kBoth, Target::kInterface, "authEndBytes", 0, false, 0x08},
    Command{kInterface, 3, "authKey", "authKeySetting", kBoth, Target::kInterface, "authKey", 0, false, 0x10},
    Command{kInterface, 4, "authLifeTime", "lifeTime", kSetOnly, Target::kInterface, "authLifeTime"},
    Command{kInterface, 5, "authWindowSize", "windowSize", kSetOnly, Target::kInterface, "authEndBytes", 1},
    Command{kInterface, 6, "bfd", "none", kBoth, Target::kInterface, "ifBytes2", 0, false, 0x04},
    Command{kInterface, 9, "hello", "none", kBoth, Target::kInterface, "ifBytes1", 1, false, 0x02},
    Command{kInterface, 14, "reduction", "reduction", kBoth, Target::kInterface, "ifShort2", 0, false, 0x20},
    Command{kInterface, 16, "retransInterval", "interval", kSetOnly, Target::kInterface, "ifShort4"},
    Command{kInterface, 17, "retransIncrement", "increment", kSetOnly, Target::kInterface, "ifBytes2", 1},
    Command{kInterface, 18, "rsvp", "none", kBoth, Target::kInterface, "ifBytes1", 0, true, 0x01},

    Command{kPeer, 2, "authChallenge", "none", kBoth, Target::kAuth, "authEntryBytes", 78},
    Command{kPeer, 3, "authKey", "authKeySetting", kBoth, Target::kAuth, "authEntryBytes", 4},
    Command{kPeer, 4, "authLifeTime", "lifeTime", kSetOnly, Target::kAuth, "authEntryBytes", 72},
    Command{kPeer, 5, "authWindowSize", "windowSize", kSetOnly, Target::kAuth, "authEntryBytes", 79},
    Command{kPeer, 13, "rsvp", "none", kBoth, Target::kNeighbour, "nbrBytes", 0, true},

    Command{kReset, 0, "authEntry", "authEntryKey", kSetOnly, Target::kResetAuth},
    Command{kReset, 1, "statistics", "statisticsKey", kSetOnly, Target::kResetStatistics},
};

} // namespace

const Command *FindCommand(std::uint8_t msg_class, std::uint16_t item)
{
    const auto *found = std::find_if(kCommands.begin(), kCommands.end(), [&](const Command &command) {
        return command.msg_class == msg_class && command.item == item;
    });
    return found == kCommands.end() ? nullptr : found;
}

std::span<const Command> AllCommands()
{
    return kCommands;
}

std::optional<KeyItem> KeyItemOf(std::uint8_t msg_class)
{
    if (msg_class == kInterface)
        return KeyItem{1, "ifKey"};
    if (msg_class == kPeer)
        return KeyItem{0, "peerKey"};
    return std::nullopt;
}

} // namespace rsvpsimd
