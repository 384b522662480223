// The file that takes the frames. Each is one write, so that a daemon that is killed leaves all that it has seen.
// Nothing that happens to the file may reach the clients: what it does not take is lost and counted.
#ifndef HOST_DAEMON_CAPTURE_CAPTURE_FILE_H
#define HOST_DAEMON_CAPTURE_CAPTURE_FILE_H

#include "host/daemon/capture/captured_frame.h"

#include <string>

namespace rsvpsimd {

// Of a file. The frames before a fault are often worth more than those after it, so none is removed to make room.
inline constexpr uint64_t kMostCaptured = uint64_t{64} << 20;

class CaptureFile {
public:
    // A new section at the end of a regular file, which is made if it is missing. Half a block that a crash or a full
    // disk left there is cut off. Throws std::runtime_error if the file cannot be written, is not a capture, or has
    // another daemon that writes to it.
    CaptureFile(const std::string &path, std::string_view program, bool withSecrets, uint64_t most = kMostCaptured);
    ~CaptureFile();
    CaptureFile(const CaptureFile &) = delete;
    CaptureFile &operator=(const CaptureFile &) = delete;

    void Write(const CapturedFrame &frame);

    // How many frames are not in the file, and why, in a sentence. Empty if all are, or if that was told since the
    // file took the last one, but for the end.
    std::string Loss(bool isEnd);

private:
    [[noreturn]] void Refuse(const std::string &reason) const;
    void CutOffHalfBlock();
    bool Append(Bytes blocks); // all of them or nothing

    std::string path_;
    std::string program_;
    bool withSecrets_;
    uint64_t most_;
    int fd_;
    uint64_t lost_ = 0;
    bool isTold_ = false;
    std::string reason_;    // of the last loss
    bool isSpoilt_ = false; // half a block stands at its end for good
};

} // namespace rsvpsimd

#endif
