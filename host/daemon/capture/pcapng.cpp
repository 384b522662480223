// Sections are written most significant byte first, as everything else on this wire, so that a capture has the same
// bytes on every machine. They are read in both orders, since other programs that cut and merge captures write their
// own.
#include "host/daemon/capture/pcapng.h"

#include <array>
#include <fmt/format.h>

namespace rsvpsimd {

namespace {

constexpr uint32_t kSectionBlock = 0x0A0D0D0A;
constexpr uint32_t kInterfaceBlock = 1;
constexpr uint32_t kPacketBlock = 6;
constexpr uint32_t kByteOrderMagic = 0x1A2B3C4D;
constexpr uint64_t kUnknownLength = UINT64_MAX;
constexpr size_t kBlockHead = 8;   // type and length
constexpr size_t kBlockFrame = 12; // and the length again at the end
constexpr size_t kMostBlock = size_t{16} << 20;
constexpr uint64_t kNanoseconds = 1000000000;

constexpr uint16_t kOptionUserApplication = 4; // of a section
constexpr uint16_t kOptionTimeResolution = 9;  // of an interface
constexpr uint16_t kOptionFlags = 2;           // of a packet
constexpr uint32_t kInbound = 1;
constexpr uint32_t kOutbound = 2;

constexpr size_t Padded(size_t size)
{
    return (size + 3) / 4 * 4;
}

void AppendPadded(Bytes &block, ByteView value)
{
    block.insert(block.end(), value.begin(), value.end());
    block.resize(Padded(block.size()));
}

void AppendOption(Bytes &block, uint16_t code, ByteView value)
{
    AppendNet(block, code, 2);
    AppendNet(block, value.size(), 2);
    AppendPadded(block, value);
}

Bytes BeginBlock(uint32_t type)
{
    Bytes block;
    AppendNet(block, type, 4);
    AppendNet(block, 0, 4); // the length, which is known at the end
    return block;
}

void EndBlock(Bytes &block)
{
    AppendOption(block, 0, {});
    AppendNet(block, block.size() + 4, 4);
    StoreNet(std::span(block).subspan(4, 4), block.size());
}

ByteView AsBytes(std::string_view text)
{
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

} // namespace

Bytes SectionStart(std::string_view program)
{
    Bytes section = BeginBlock(kSectionBlock);
    AppendNet(section, kByteOrderMagic, 4);
    AppendNet(section, 1, 2); // version 1.0
    AppendNet(section, 0, 2);
    AppendNet(section, kUnknownLength, 8);
    AppendOption(section, kOptionUserApplication, AsBytes(program));
    EndBlock(section);
    Bytes interface = BeginBlock(kInterfaceBlock);
    AppendNet(interface, kCaptureLinkType, 2);
    AppendNet(interface, 0, 2);
    AppendNet(interface, 0, 4); // no limit on the length of a packet
    AppendOption(interface, kOptionTimeResolution, std::array<uint8_t, 1>{9});
    EndBlock(interface);
    section.insert(section.end(), interface.begin(), interface.end());
    return section;
}

Bytes PacketBlock(uint64_t time, const CapturedFrame &frame)
{
    Bytes block = BeginBlock(kPacketBlock);
    AppendNet(block, 0, 4); // the interface
    AppendNet(block, time, 8);
    AppendNet(block, kCaptureHeaderSize + frame.bytes.size(), 4);
    AppendNet(block, kCaptureHeaderSize + frame.length, 4);
    const Bytes header = CaptureHeader(frame);
    block.insert(block.end(), header.begin(), header.end());
    AppendPadded(block, frame.bytes);
    Bytes flags;
    AppendNet(flags, frame.isReply ? kOutbound : kInbound, 4);
    AppendOption(block, kOptionFlags, flags);
    EndBlock(block);
    return block;
}

std::optional<CapturedPacket> CaptureReader::Next()
{
    while (ReadBlock()) {
        std::optional<CapturedPacket> packet;
        switch (NumberAt(0, 4)) {
        case kSectionBlock:
            ReadSection();
            break;
        case kInterfaceBlock:
            ReadInterface();
            break;
        case kPacketBlock:
            packet = ReadPacket();
            break;
        default:
            break;
        }
        read_ += block_.size();
        if (packet)
            return packet;
    }
    return std::nullopt;
}

// Adds so many bytes to the block. At the end of the input there need be no first one.
bool CaptureReader::Take(size_t size, bool isFirst)
{
    const size_t before = block_.size();
    block_.resize(before + size);
    input_.read(reinterpret_cast<char *>(block_.data() + before), static_cast<std::streamsize>(size));
    const auto got = static_cast<size_t>(input_.gcount());
    if (input_.bad())
        Fail("the file cannot be read");
    if (got == 0 && isFirst)
        return false;
    cutOff_ = got < size;
    if (cutOff_)
        Fail("the file ends inside the block");
    return true;
}

bool CaptureReader::ReadBlock()
{
    block_.clear();
    ++number_;
    if (!Take(kBlockHead, true))
        return false;
    // The type of a section reads the same in both orders; its third word then tells which one it is.
    if (LoadNet(ByteView(block_).first(4)) == kSectionBlock) {
        Take(4);
        littleEndian_ = LoadNet(ByteView(block_).subspan(8, 4)) != kByteOrderMagic;
        if (NumberAt(8, 4) != kByteOrderMagic)
            Fail("a section without a byte order");
    } else if (number_ == 1) {
        Fail("this is not a pcapng file");
    }
    const auto length = static_cast<size_t>(NumberAt(4, 4));
    if (length < std::max(kBlockFrame, block_.size() + 4) || length % 4 != 0 || length > kMostBlock)
        Fail(fmt::format("a length of {} bytes cannot be", length));
    Take(length - block_.size());
    if (NumberAt(length - 4, 4) != length)
        Fail("its two lengths differ");
    return true;
}

void CaptureReader::ReadSection()
{
    if (block_.size() < kBlockFrame + 16 || NumberAt(12, 2) != 1)
        Fail("a section of a version that is not known");
    interfaces_.clear();
}

void CaptureReader::ReadInterface()
{
    size_t at = kBlockHead + 8;
    const size_t end = block_.size() - 4;
    if (at > end)
        Fail("an interface that is too short");
    Interface interface {
        .isOurs = NumberAt(kBlockHead, 2) == kCaptureLinkType
    };
    while (end - at >= 4) {
        const uint64_t code = NumberAt(at, 2);
        const auto size = static_cast<size_t>(NumberAt(at + 2, 2));
        at += 4;
        if (code == 0)
            break;
        if (Padded(size) > end - at)
            Fail("an option runs past the end of the block");
        if (code == kOptionTimeResolution && size == 1) {
            const uint8_t resolution = block_[at];
            const bool binary = (resolution & 0x80) != 0;
            const int exponent = resolution & 0x7F;
            if (exponent > (binary ? 30 : 9))
                Fail("time stamps finer than nanoseconds");
            interface.perSecond = 1;
            for (int i = 0; i < exponent; ++i)
                interface.perSecond *= binary ? 2 : 10;
        }
        at += Padded(size);
    }
    interfaces_.push_back(interface);
}

std::optional<CapturedPacket> CaptureReader::ReadPacket()
{
    constexpr size_t kFixed = 20;
    if (block_.size() < kBlockFrame + kFixed)
        Fail("a packet that is too short");
    const auto index = static_cast<size_t>(NumberAt(kBlockHead, 4));
    if (index >= interfaces_.size())
        Fail(fmt::format("a packet of interface {}, which nobody has described", index));
    const Interface &interface = interfaces_[index];
    if (!interface.isOurs)
        return std::nullopt;
    const uint64_t time = NumberAt(kBlockHead + 4, 4) << 32 | NumberAt(kBlockHead + 8, 4);
    const auto captured = static_cast<size_t>(NumberAt(kBlockHead + 12, 4));
    if (captured > block_.size() - kBlockFrame - kFixed)
        Fail("a packet runs past the end of its block");
    const auto frame = ReadCapturedFrame(ByteView(block_).subspan(kBlockHead + kFixed, captured),
                                         static_cast<size_t>(NumberAt(kBlockHead + 16, 4)));
    if (!frame)
        Fail("a packet without the header that says who sent it");
    return CapturedPacket{.time = time / interface.perSecond * kNanoseconds +
                                  time % interface.perSecond * kNanoseconds / interface.perSecond,
                          .frame = *frame};
}

uint64_t CaptureReader::NumberAt(size_t offset, size_t width) const
{
    Bytes bytes(block_.begin() + static_cast<std::ptrdiff_t>(offset),
                block_.begin() + static_cast<std::ptrdiff_t>(offset + width));
    if (littleEndian_)
        std::ranges::reverse(bytes);
    return LoadNet(bytes);
}

void CaptureReader::Fail(const std::string &what) const
{
    throw CaptureError(fmt::format("block {} at byte {}: {}", number_, read_, what));
}

} // namespace rsvpsimd
