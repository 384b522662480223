// The settings of the daemon as a table: one row for each setting at each level that has it. `set`, `undo`, the range
// checks, the help and the dry run all read it, so that a setting exists in one place.
#ifndef TOOLS_RSVPCTL_SET_SETTINGS_H
#define TOOLS_RSVPCTL_SET_SETTINGS_H

#include "tools/rsvpctl/command/auth_key.h"
#include "tools/rsvpctl/command/wire.h"

#include <cstdint>
#include <span>

namespace rsvpctl {

/** Whose setting it is. The numbers are the message classes. */
enum class Level : uint8_t { Global = 0, Interface = 1, Peer = 2 };

/** What is set; it decides the arguments, their range, and the bytes of the item. */
enum class ValueKind : uint8_t { None, Byte, Short, Word, Pair, Key };

enum class Undo : uint8_t {
    None,   // the daemon has no way back but another number
    Sent,   // the same message, as an undo
    Number, // the number to go back to is set; on a stopped service there is nothing to undo
};

/** The arguments of one setting, as a command line gives them. */
struct SettingArguments {
    bool undo = false;
    uint32_t ifIndex = 0;
    uint32_t peer = 0;
    uint32_t number = 0;
    uint32_t secondNumber = 0;
    AuthKey key;
};

struct Setting {
    const char *name;
    Level level;
    ValueKind kind;
    Undo undo;
    const char *argument; // name of the number, as an option and in the help; null if there is none
    uint16_t item;        // item type on the wire
    uint8_t setOperation; // message operation of a set; an undo that is sent has 1
    const char *function;
    uint32_t (*apply)(uint32_t op, const SettingArguments &arguments);
    const char *help;
    const char *unit = nullptr; // what the number counts; null where the standard leaves it to the daemon
    uint8_t most = 0;           // the largest number that the standard gives; 0: whatever the field holds
};

std::span<const Setting> AllSettings();

/** The largest number that the setting takes: the standard's, or else what its field holds. */
uint64_t MaximumOf(const Setting &setting);

/** The request that the setting would send, with its items in words. */
WireRequest RequestOf(const Setting &setting, const SettingArguments &arguments);

} // namespace rsvpctl

#endif
