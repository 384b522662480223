// The list of commands. The protocol does not say in which field a setting shows; this list decides it.
#include "host/daemon/device/commands.h"

namespace rsvpsimd {

namespace {

constexpr uint16_t Bit(Op op)
{
    return static_cast<uint16_t>(1U << op);
}

constexpr uint16_t kSetOnly = Bit(kSet);
constexpr uint16_t kUndoOnly = Bit(kUndo);
constexpr uint16_t kBoth = Bit(kSet) | Bit(kUndo);
constexpr uint16_t kTimer = Bit(kHelloTimer);

constexpr std::array kCommands{
    Command{kGlobal, 2, "authChallenge", "none", kBoth, Target::Global, "authEndBytes", 0},
    Command{kGlobal, 3, "authKey", "authKeySetting", kBoth, Target::Global, "authKey"},
    Command{kGlobal, 4, "authLifeTime", "lifeTime", kSetOnly, Target::Global, "authLifeTime"},
    Command{kGlobal, 5, "authWindowSize", "windowSize", kSetOnly, Target::Global, "authEndBytes", 1},
    Command{kGlobal, 7, "debug", "debugSwitch", kBoth, Target::Debug},
    Command{kGlobal, 8, "gr", "none", kBoth, Target::Global, "settingBytes", 3},
    Command{kGlobal, 10, "helloInterval", "helloInterval", kTimer, Target::Global, "settingBytes", 1},
    Command{kGlobal, 11, "helloLost", "helloLost", kTimer, Target::Global, "settingBytes", 2},
    Command{kGlobal, 12, "keepMultiplier", "keepMultiplier", kSetOnly, Target::Global, "settingBytes", 0},
    Command{kGlobal, 15, "refreshInterval", "interval", kSetOnly, Target::Global, "settingShort"},
    Command{kGlobal, 19, "dscp", "dscp", kSetOnly, Target::Global, "settingWord1"},
    Command{kGlobal, 20, "globalDisable", "none", kUndoOnly, Target::Global, "settingBytes2", 0},

    Command{kInterface, 2, "authChallenge", "none", kBoth, Target::Interface, "authEndBytes", 0, false, 0x08},
    Command{kInterface, 3, "authKey", "authKeySetting", kBoth, Target::Interface, "authKey", 0, false, 0x10},
    Command{kInterface, 4, "authLifeTime", "lifeTime", kSetOnly, Target::Interface, "authLifeTime"},
    Command{kInterface, 5, "authWindowSize", "windowSize", kSetOnly, Target::Interface, "authEndBytes", 1},
    Command{kInterface, 6, "bfd", "none", kBoth, Target::Interface, "ifBytes2", 0, false, 0x04},
    Command{kInterface, 9, "hello", "none", kBoth, Target::Interface, "ifBytes1", 1, false, 0x02},
    Command{kInterface, 14, "reduction", "reduction", kBoth, Target::Interface, "ifShort2", 0, false, 0x20},
    Command{kInterface, 16, "retransInterval", "interval", kSetOnly, Target::Interface, "ifShort4"},
    Command{kInterface, 17, "retransIncrement", "increment", kSetOnly, Target::Interface, "ifBytes2", 1},
    Command{kInterface, 18, "rsvp", "none", kBoth, Target::Interface, "ifBytes1", 0, true, 0x01},

    Command{kPeer, 2, "authChallenge", "none", kBoth, Target::Auth, "authEntryBytes.authEndBytes", 0},
    Command{kPeer, 3, "authKey", "authKeySetting", kBoth, Target::Auth, "authEntryBytes.authKey"},
    Command{kPeer, 4, "authLifeTime", "lifeTime", kSetOnly, Target::Auth, "authEntryBytes.authLifeTime"},
    Command{kPeer, 5, "authWindowSize", "windowSize", kSetOnly, Target::Auth, "authEntryBytes.authEndBytes", 1},
    Command{kPeer, 13, "rsvp", "none", kBoth, Target::Neighbour, "nbrBytes", 0, true},

    Command{kReset, 0, "authEntry", "authEntryKey", kSetOnly, Target::ResetAuth},
    Command{kReset, 1, "statistics", "statisticsKey", kSetOnly, Target::ResetStatistics},
};

// True if the command names no field, or a field of its record from which on the record has room for the value.
constexpr bool ShowsInItsRecord(const Command &command)
{
    const auto record = RecordOf(command.target);
    if (!record || command.field.empty())
        return command.field.empty();
    const auto field = FindExtent(record->Spec().fields, command.field);
    return field && command.index < field->size &&
           command.Shown().offset + command.Shown().size <= record->Spec().size;
}

static_assert(std::ranges::all_of(kCommands, ShowsInItsRecord), "a command shows in a field that its record lacks");

} // namespace

const Command *FindCommand(uint8_t msgClass, uint16_t item)
{
    const auto *found = std::ranges::find_if(
        kCommands, [&](const Command &command) { return command.msgClass == msgClass && command.item == item; });
    return found == kCommands.end() ? nullptr : found;
}

std::span<const Command> AllCommands()
{
    return kCommands;
}

std::optional<KeyItem> KeyItemOf(uint8_t msgClass)
{
    if (msgClass == kInterface)
        return KeyItem{1, "ifKey"};
    if (msgClass == kPeer)
        return KeyItem{0, "peerKey"};
    return std::nullopt;
}

} // namespace rsvpsimd
