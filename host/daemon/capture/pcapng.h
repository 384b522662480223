// The few blocks of pcapng that a capture is made of, written and read: the section, one interface, a packet a frame.
#ifndef HOST_DAEMON_CAPTURE_PCAPNG_H
#define HOST_DAEMON_CAPTURE_PCAPNG_H

#include "host/daemon/capture/captured_frame.h"

#include <istream>
#include <stdexcept>

namespace rsvpsimd {

inline constexpr uint16_t kCaptureLinkType = 147; // the first of those that are left to users

// What a section begins with. A file may have several, one behind the other.
Bytes SectionStart(std::string_view program);

// `time` counts nanoseconds since 1970.
Bytes PacketBlock(uint64_t time, const CapturedFrame &frame);

// "block 7 at byte 1234: what is wrong".
struct CaptureError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct CapturedPacket {
    uint64_t time = 0;
    CapturedFrame frame; // points into the reader's memory until the next packet is read
};

// Blocks of other kinds, and packets of interfaces with another link type, are passed over.
class CaptureReader {
public:
    explicit CaptureReader(std::istream &input) : input_(input) {}

    // The next packet, or nothing at the end. Throws CaptureError.
    std::optional<CapturedPacket> Next();

    // Where the last whole block ends.
    uint64_t Read() const { return read_; }

    // True if the input ended inside a block. Then CaptureError was thrown.
    bool IsCutOff() const { return cutOff_; }

private:
    struct Interface {
        bool isOurs = false;
        uint64_t perSecond = 1000000; // units of its time stamps
    };

    bool ReadBlock(); // false at the end
    bool Take(size_t size, bool isFirst = false);
    void ReadSection();
    void ReadInterface();
    std::optional<CapturedPacket> ReadPacket();
    uint64_t NumberAt(size_t offset, size_t width) const;
    [[noreturn]] void Fail(const std::string &what) const;

    std::istream &input_;
    Bytes block_; // with its type and both its lengths
    bool littleEndian_ = false;
    std::vector<Interface> interfaces_; // of this section
    uint64_t number_ = 0;               // of the block
    uint64_t read_ = 0;
    bool cutOff_ = false;
};

} // namespace rsvpsimd

#endif
