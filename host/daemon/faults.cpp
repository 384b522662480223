// Spoils finished replies. Faults that need the tables (a stuck row, a shifting table) act where rows are searched.
#include "host/daemon/faults.h"

#include "host/daemon/wire/frame.h"

#include <algorithm>

namespace rsvpsimd {

namespace {

constexpr size_t kDefaultCut = 4;

} // namespace

void Strike(const Fault &fault, Reply &reply)
{
    const std::span<uint8_t> frame(reply.frame);
    switch (fault.kind) {
    case FaultKind::Late:
        reply.delay = std::chrono::milliseconds(fault.number);
        break;
    case FaultKind::Silent:
        reply.copies = 0;
        break;
    case FaultKind::Short:
        reply.frame.resize(std::min(frame.size(), fault.number != 0 ? fault.number : frame.size() - kDefaultCut));
        break;
    case FaultKind::Long:
        reply.frame.resize(frame.size() + (fault.number != 0 ? fault.number : kDefaultCut));
        break;
    case FaultKind::WrongBodyLength:
        StoreNet(frame.subspan(2, 2), LoadNet(frame.subspan(2, 2)) + 1);
        break;
    case FaultKind::CutItem:
        // If there is no item to cut, half an item header does as well.
        reply.frame.resize(frame.size() > kHeaderSize ? frame.size() - 1 : kHeaderSize + 2);
        StoreNet(std::span(reply.frame).subspan(2, 2), reply.frame.size() - kHeaderSize);
        break;
    case FaultKind::Status:
        StoreNet(frame.subspan(4, 4), fault.number);
        break;
    case FaultKind::ItemType:
        if (frame.size() >= kHeaderSize + kItemHeaderSize)
            StoreNet(frame.subspan(kHeaderSize, 2), fault.number);
        break;
    case FaultKind::Twice:
        reply.copies = 2;
        break;
    case FaultKind::Close:
        reply.copies = 0;
        reply.close = true;
        break;
    case FaultKind::Exit:
        reply.copies = 0;
        reply.crash = true;
        break;
    case FaultKind::Stuck:
    case FaultKind::Shifting:
        break;
    }
}

} // namespace rsvpsimd
