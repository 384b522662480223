// Frames that came from anybody: nothing in them is taken for what it claims to be, least of all when it is to be
// shown to others.
#include "host/daemon/capture/captured_frame.h"

#include "host/daemon/device/commands.h"
#include "host/daemon/device/row_kinds.h"
#include "host/daemon/wire/layout.h"

namespace rsvpsimd {

namespace {

constexpr uint8_t kMask = '*'; // as the trace shows it

bool HasSecret(const std::vector<Field> &fields)
{
    return std::ranges::any_of(fields, [](const Field &field) { return field.secret || HasSecret(field.inside); });
}

// True for a class that nobody knows, too: it may be one of the others, spoilt.
bool RequestMayHoldSecret(uint8_t msgClass)
{
    return std::ranges::find(kClasses, msgClass, &Meaning::number) == kClasses.end() ||
           std::ranges::any_of(AllCommands(), [&](const Command &command) {
               return command.msgClass == msgClass && HasSecret(command.layout->fields);
           });
}

bool ReplyMayHoldSecret(uint16_t asked)
{
    if (const RowKind *kind = FindRowKind(asked))
        return std::ranges::any_of(kind->parts, [](const Part &part) { return HasSecret(part.layout->fields); });
    const ItemKind record = KindInReply(asked, asked);
    return record.layout && HasSecret((*record.layout)->fields);
}

bool MayHoldSecret(const CapturedFrame &frame)
{
    if (frame.isReply)
        return ReplyMayHoldSecret(frame.asked);
    return frame.bytes.empty() || RequestMayHoldSecret(frame.bytes.front());
}

void MaskFields(std::span<uint8_t> value, const std::vector<Field> &fields)
{
    for (const Field &field : fields) {
        if (field.secret)
            std::ranges::fill(value.subspan(field.offset, field.Size()), kMask);
        MaskFields(value, field.inside);
    }
}

} // namespace

Bytes CaptureHeader(const CapturedFrame &frame)
{
    Bytes header{kCaptureVersion,
                 static_cast<uint8_t>((frame.isReply ? kReplyFlag : 0) | (frame.isMasked ? kMaskedFlag : 0))};
    AppendNet(header, frame.asked, 2);
    AppendNet(header, frame.client, 4);
    AppendNet(header, frame.process, 4);
    AppendNet(header, frame.exchange, 4);
    return header;
}

std::optional<CapturedFrame> ReadCapturedFrame(ByteView packet, size_t length)
{
    if (packet.size() < kCaptureHeaderSize || packet[0] != kCaptureVersion)
        return std::nullopt;
    const auto number = [&](size_t offset) { return static_cast<uint32_t>(LoadNet(packet.subspan(offset, 4))); };
    return CapturedFrame{.isReply = (packet[1] & kReplyFlag) != 0,
                         .isMasked = (packet[1] & kMaskedFlag) != 0,
                         .asked = static_cast<uint16_t>(LoadNet(packet.subspan(2, 2))),
                         .client = number(4),
                         .process = number(8),
                         .exchange = number(12),
                         .length = std::max(length, packet.size()) - kCaptureHeaderSize,
                         .bytes = packet.subspan(kCaptureHeaderSize)};
}

LooseFrame ReadLoosely(const CapturedFrame &frame)
{
    LooseFrame loose;
    if (frame.bytes.size() < kHeaderSize) {
        loose.problem = "less than a header";
        return loose;
    }
    loose.header = Message{.msgClass = frame.bytes[0],
                           .op = frame.bytes[1],
                           .status = static_cast<uint32_t>(LoadNet(frame.bytes.subspan(4, 4))),
                           .items = {}};
    loose.bodyLength = static_cast<uint16_t>(LoadNet(frame.bytes.subspan(2, 2)));
    ByteView rest = frame.bytes.subspan(kHeaderSize);
    if (loose.bodyLength != rest.size())
        loose.problem = "the body is not as long as the header says";
    while (!rest.empty()) {
        if (rest.size() < kItemHeaderSize) {
            loose.problem = "less than the header of an item";
            break;
        }
        const auto type = static_cast<uint16_t>(LoadNet(rest.first(2)));
        const auto length = static_cast<size_t>(LoadNet(rest.subspan(2, 2)));
        rest = rest.subspan(kItemHeaderSize);
        if (length > rest.size())
            loose.problem = "an item runs past the end";
        const ByteView value = rest.first(std::min(length, rest.size()));
        const ItemKind kind = frame.isReply ? KindInReply(frame.asked, type)
                                            : KindInRequest(loose.header->msgClass, type, loose.items.empty());
        loose.items.push_back({type, length, value, kind});
        rest = rest.subspan(value.size());
    }
    return loose;
}

Bytes WithoutSecrets(const CapturedFrame &frame)
{
    Bytes bytes(frame.bytes.begin(), frame.bytes.end());
    const bool guarded = MayHoldSecret(frame);
    size_t inOrder = std::min(kHeaderSize, bytes.size());
    for (const LooseItem &item : ReadLoosely(frame).items) {
        inOrder += kItemHeaderSize;
        if (item.HasFields())
            MaskFields(std::span(bytes).subspan(inOrder, item.value.size()), (*item.kind.layout)->fields);
        else if (guarded)
            break;
        inOrder += item.value.size();
    }
    if (guarded)
        std::ranges::fill(std::span(bytes).subspan(inOrder), kMask);
    return bytes;
}

} // namespace rsvpsimd
