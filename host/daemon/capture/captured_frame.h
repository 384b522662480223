// The rule of this room: it keeps frames as they went over the wire and reads them back. It stands on wire and
// device, and knows neither sockets nor scenarios. This header has a frame with what its bytes alone do not tell: who
// sent it, and what it answers.
#ifndef HOST_DAEMON_CAPTURE_CAPTURED_FRAME_H
#define HOST_DAEMON_CAPTURE_CAPTURED_FRAME_H

#include "host/daemon/device/item_kind.h"

namespace rsvpsimd {

struct CapturedFrame {
    bool isReply = false;
    bool isMasked = false; // key material in it was overwritten
    uint16_t asked = kAskedNothing;
    uint32_t client = 0;   // the number that the trace has as well
    uint32_t process = 0;  // 0 if it cannot be seen from here
    uint32_t exchange = 0; // a request and what answers it have the same
    size_t length = 0;     // on the wire; of what is longer than any message, the rest was never read
    ByteView bytes = {};
};

// What stands in front of the bytes in a capture: docs/host.md has it as a table.
inline constexpr size_t kCaptureHeaderSize = 16;
inline constexpr uint8_t kCaptureVersion = 1;
inline constexpr uint8_t kReplyFlag = 1;
inline constexpr uint8_t kMaskedFlag = 2;

Bytes CaptureHeader(const CapturedFrame &frame);

// Reads header and bytes, which the frame points into. Nothing if there is no header of this version.
std::optional<CapturedFrame> ReadCapturedFrame(ByteView packet, size_t length);

// What can be made out of a frame, even if a correct reader refuses it. A value that runs past the end is what is
// left of it.
struct LooseItem {
    uint16_t type = 0;
    size_t length = 0; // as it claims
    ByteView value;
    ItemKind kind;

    bool IsWhole() const { return value.size() == length; }

    // Whether the layout says what the value holds.
    bool HasFields() const { return IsWhole() && kind.layout && kind.layout->Spec().size == length; }
};

struct LooseFrame {
    std::optional<Message> header; // without items; nothing if the frame is shorter
    uint16_t bodyLength = 0;       // as the header claims
    std::vector<LooseItem> items;
    std::string_view problem; // why a correct reader refuses it; empty if none does
};

LooseFrame ReadLoosely(const CapturedFrame &frame);

// The frame's bytes without key material: where a field is secret, and, in frames that could carry a key, whatever
// comes after the last item that is what it says it is.
Bytes WithoutSecrets(const CapturedFrame &frame);

} // namespace rsvpsimd

#endif
