// The table of settings and what it says about the wire. The commands made of it are in setting_commands.cpp.
#include "tools/rsvpctl/set/settings.h"

#include "manager/record/text.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

using Arguments = SettingArguments;

uint8_t Byte(uint32_t number)
{
    return static_cast<uint8_t>(number);
}

uint16_t Short(uint32_t number)
{
    return static_cast<uint16_t>(number);
}

// The library leaves the caller's pair in network order, so it gets a copy.
uint32_t SetReduction(uint32_t op, const Arguments &a)
{
    uint16_t pair[2] = {Short(a.number), Short(a.secondNumber)};
    return RSVP_MOR_SetReduction(op, a.ifIndex, pair);
}

// One line a setting and one for its call; aligned by hand, since the eye checks columns.
// clang-format off
constexpr Setting kSettings[] = {
    {"interface", Level::Interface, ValueKind::None, Undo::Sent, nullptr, 18, 0, "RSVP_MOR_SetRsvpEnable",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetRsvpEnable(op, a.ifIndex); },
     "RSVP on an interface"},
    {"peer", Level::Peer, ValueKind::None, Undo::Sent, nullptr, 13, 0, "RSVP_MOR_SetRsvpPeer",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetRsvpPeer(op, a.peer); },
     "An RSVP peer"},

    {"refresh-interval", Level::Global, ValueKind::Short, Undo::None, "interval", 15, 0, "RSVP_MOR_SetRefreshInterval",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetRefreshInterval(Short(a.number)); },
     "Interval of Path and Resv refreshes (RFC 2205, R), in the daemon's own unit"},
    {"keep-multiplier", Level::Global, ValueKind::Byte, Undo::None, "multiplier", 12, 0, "RSVP_MOR_SetKeepMultiplier",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetKeepMultiplier(Byte(a.number)); },
     "Refreshes that may be missed before state is dropped (RFC 2205, K)", "refreshes"},
    {"hello-interval", Level::Global, ValueKind::Byte, Undo::None, "interval", 10, 8, "RSVP_MOR_SetHelloInterval",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetHelloInterval(Byte(a.number)); },
     "Interval of Hello messages (RFC 3209), in the daemon's own unit"},
    {"hello-lost", Level::Global, ValueKind::Byte, Undo::None, "lost", 11, 8, "RSVP_MOR_SetHelloLost",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetHelloLost(Byte(a.number)); },
     "Hello messages that may be lost before a neighbour is taken for dead (RFC 3209)", "messages"},
    {"dscp", Level::Global, ValueKind::Word, Undo::None, "dscp", 19, 0, "RSVP_MOR_SetDscpValue",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetDscpValue(a.number); },
     "DSCP value of the daemon's messages (RFC 2474)", nullptr, 63},
    {"graceful-restart", Level::Global, ValueKind::None, Undo::Sent, nullptr, 8, 0, "RSVP_MOR_SetGrEnable",
     [](uint32_t op, const Arguments &) { return RSVP_MOR_SetGrEnable(op); },
     "Graceful restart"},

    {"hello", Level::Interface, ValueKind::None, Undo::Sent, nullptr, 9, 0, "RSVP_MOR_SetHelloEnable",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetHelloEnable(op, a.ifIndex); },
     "Hello messages on an interface"},
    {"bfd", Level::Interface, ValueKind::None, Undo::Sent, nullptr, 6, 0, "RSVP_MOR_SetBfdEnable",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetBfdEnable(op, a.ifIndex); },
     "BFD on an interface"},
    {"reduction", Level::Interface, ValueKind::Pair, Undo::Sent, "first", 14, 0, "RSVP_MOR_SetReduction",
     SetReduction,
     "Refresh overhead reduction on an interface (RFC 2961); both numbers are the daemon's"},
    {"retrans-interval", Level::Interface, ValueKind::Short, Undo::Number, "interval", 16, 0, "RSVP_MOR_SetRetransInterval",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetRetransInterval(op, a.ifIndex, Short(a.number)); },
     "Retransmission interval of an interface (RFC 2961, Rf), in the daemon's own unit"},
    {"retrans-increment", Level::Interface, ValueKind::Byte, Undo::Number, "increment", 17, 0, "RSVP_MOR_SetRetransIncrement",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetRetransIncrement(op, a.ifIndex, Byte(a.number)); },
     "Retransmission increment of an interface (RFC 2961, Delta), in the daemon's own scale"},

    {"auth-key", Level::Global, ValueKind::Key, Undo::Sent, nullptr, 3, 0, "RSVP_MOR_SetAuthKey",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetAuthKey(op, a.key.Bytes()); },
     "Authentication key"},
    {"auth-key", Level::Interface, ValueKind::Key, Undo::Sent, nullptr, 3, 0, "RSVP_MOR_SetIntfAuthKey",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetIntfAuthKey(op, a.ifIndex, a.key.Bytes()); },
     "Authentication key"},
    {"auth-key", Level::Peer, ValueKind::Key, Undo::Sent, nullptr, 3, 0, "RSVP_MOR_SetPeerAuthKey",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetPeerAuthKey(op, a.peer, a.key.Bytes()); },
     "Authentication key"},
    {"auth-challenge", Level::Global, ValueKind::None, Undo::Sent, nullptr, 2, 0, "RSVP_MOR_SetAuthChallenge",
     [](uint32_t op, const Arguments &) { return RSVP_MOR_SetAuthChallenge(op); },
     "Challenge handshake of authentication"},
    {"auth-challenge", Level::Interface, ValueKind::None, Undo::Sent, nullptr, 2, 0, "RSVP_MOR_SetIntfAuthChallenge",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetIntfAuthChallenge(op, a.ifIndex); },
     "Challenge handshake of authentication"},
    {"auth-challenge", Level::Peer, ValueKind::None, Undo::Sent, nullptr, 2, 0, "RSVP_MOR_SetPeerAuthChallenge",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetPeerAuthChallenge(op, a.peer); },
     "Challenge handshake of authentication"},
    {"auth-lifetime", Level::Global, ValueKind::Word, Undo::None, "life-time", 4, 0, "RSVP_MOR_SetAuthLifeTime",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetAuthLifeTime(a.number); },
     "Life time of the authentication key (RFC 2747), in the daemon's own unit"},
    {"auth-lifetime", Level::Interface, ValueKind::Word, Undo::Number, "life-time", 4, 0, "RSVP_MOR_SetIntfAuthLifeTime",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetIntfAuthLifeTime(op, a.ifIndex, a.number); },
     "Life time of the authentication key (RFC 2747), in the daemon's own unit"},
    {"auth-lifetime", Level::Peer, ValueKind::Word, Undo::None, "life-time", 4, 0, "RSVP_MOR_SetPeerAuthLifeTime",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetPeerAuthLifeTime(a.peer, a.number); },
     "Life time of the authentication key (RFC 2747), in the daemon's own unit"},
    {"auth-window", Level::Global, ValueKind::Byte, Undo::None, "window-size", 5, 0, "RSVP_MOR_SetAuthWindowSize",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetAuthWindowSize(Byte(a.number)); },
     "Messages that may arrive out of sequence (RFC 2747)", "messages"},
    {"auth-window", Level::Interface, ValueKind::Byte, Undo::Number, "window-size", 5, 0, "RSVP_MOR_SetIntfAuthWindowSize",
     [](uint32_t op, const Arguments &a) { return RSVP_MOR_SetIntfAuthWindowSize(op, a.ifIndex, Byte(a.number)); },
     "Messages that may arrive out of sequence (RFC 2747)", "messages"},
    {"auth-window", Level::Peer, ValueKind::Byte, Undo::None, "window-size", 5, 0, "RSVP_MOR_SetPeerAuthWindowSize",
     [](uint32_t, const Arguments &a) { return RSVP_MOR_SetPeerAuthWindowSize(a.peer, Byte(a.number)); },
     "Messages that may arrive out of sequence (RFC 2747)", "messages"},
};
// clang-format on

std::vector<uint8_t> ValueBytes(const Setting &setting, const SettingArguments &arguments)
{
    switch (setting.kind) {
    case ValueKind::Byte:
        return ByteBytes(Byte(arguments.number));
    case ValueKind::Short:
        return ShortBytes(Short(arguments.number));
    case ValueKind::Word:
        return WordBytes(arguments.number);
    case ValueKind::Pair:
        return PairBytes(Short(arguments.number), Short(arguments.secondNumber));
    case ValueKind::Key:
        // A dry run shows the length of a key and nothing else, so the bytes stay where they are.
        return std::vector<uint8_t>(RSVP_MOR_AUTH_KEY_SIZE);
    default:
        return {};
    }
}

WireItem ValueItem(const Setting &setting, const SettingArguments &arguments)
{
    std::string meaning = setting.name;
    if (setting.argument != nullptr)
        meaning += fmt::format(" {}", arguments.number);
    if (setting.kind == ValueKind::Pair)
        meaning += fmt::format(" {}", arguments.secondNumber);
    return {setting.item, ValueBytes(setting, arguments), setting.kind == ValueKind::Key, meaning};
}

} // namespace

std::span<const Setting> AllSettings()
{
    return kSettings;
}

uint64_t MaximumOf(const Setting &setting)
{
    if (setting.most != 0)
        return setting.most;
    switch (setting.kind) {
    case ValueKind::Byte:
        return UINT8_MAX;
    case ValueKind::Word:
        return UINT32_MAX;
    default:
        return UINT16_MAX;
    }
}

WireRequest RequestOf(const Setting &setting, const SettingArguments &arguments)
{
    const bool sentUndo = arguments.undo && setting.undo == Undo::Sent;
    WireRequest request{static_cast<uint8_t>(setting.level), sentUndo ? kUndoOperation : setting.setOperation, {}};
    if (setting.level == Level::Interface)
        request.items.push_back(InterfaceItem(arguments.ifIndex));
    else if (setting.level == Level::Peer)
        request.items.push_back(
            {kPeerItem, WordBytes(arguments.peer), false, "peer " + manager::DottedText(arguments.peer)});
    request.items.push_back(ValueItem(setting, arguments));
    return request;
}

} // namespace rsvpctl
