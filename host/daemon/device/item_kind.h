// What an item of a message is. A type means something only where it stands: in a request of its class, or in the
// reply to a request for some table. The tables of commands and rows say it; trace, captures and the dissector ask
// here.
#ifndef HOST_DAEMON_DEVICE_ITEM_KIND_H
#define HOST_DAEMON_DEVICE_ITEM_KIND_H

#include "host/daemon/device/row_kind.h"
#include "host/daemon/wire/frame.h"

namespace rsvpsimd {

// An item that nobody knows has neither a layout nor a list, and is no text.
struct ItemKind {
    std::string_view name = "?";
    std::optional<LayoutRef> layout = {};
    std::optional<ListRef> list = {};
    bool isText = false;

    bool IsKnown() const { return name != "?"; }
};

ItemKind KindInRequest(uint8_t msgClass, uint16_t type, bool isFirst);

// `asked` is the type of the request's first item.
ItemKind KindInReply(uint16_t asked, uint16_t type);

// What a request asks for that has no item.
inline constexpr uint16_t kAskedNothing = 0xFFFF;
uint16_t AskedBy(ByteView request);

} // namespace rsvpsimd

#endif
