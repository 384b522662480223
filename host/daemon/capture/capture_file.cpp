// Opened before the daemon confines itself, and then only written to. Each write looks at the size of the file, so
// that one that somebody empties begins with a section again.
#include "host/daemon/capture/capture_file.h"

#include "host/daemon/capture/pcapng.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rsvpsimd {

namespace {

uint64_t Now()
{
    return static_cast<uint64_t>(
        std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count());
}

} // namespace

CaptureFile::CaptureFile(const std::string &path, std::string_view program, bool withSecrets, uint64_t most)
    : path_(path), program_(program), withSecrets_(withSecrets), most_(most),
      fd_(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0600))
{
    try {
        struct stat found {};
        if (fd_ < 0 || fstat(fd_, &found) != 0)
            Refuse(std::strerror(errno));
        if (!S_ISREG(found.st_mode))
            Refuse("it is not a regular file");
        if (flock(fd_, LOCK_EX | LOCK_NB) != 0)
            Refuse("another daemon does");
        if (found.st_size != 0)
            CutOffHalfBlock();
        if (!Append(found.st_size != 0 ? SectionStart(program_) : Bytes{}))
            Refuse(reason_);
    } catch (const std::runtime_error &) {
        close(fd_);
        throw;
    }
}

CaptureFile::~CaptureFile()
{
    close(fd_);
}

void CaptureFile::Refuse(const std::string &reason) const
{
    throw std::runtime_error(fmt::format("cannot write to {}: {}", path_, reason));
}

void CaptureFile::CutOffHalfBlock()
{
    std::ifstream input(path_, std::ios::binary);
    CaptureReader reader(input);
    try {
        while (reader.Next())
            ;
    } catch (const CaptureError &error) {
        if (!reader.IsCutOff() || reader.Read() == 0)
            Refuse(fmt::format("what it holds is no capture: {}", error.what()));
        if (ftruncate(fd_, static_cast<off_t>(reader.Read())) != 0)
            Refuse(std::strerror(errno));
    }
}

void CaptureFile::Write(const CapturedFrame &frame)
{
    CapturedFrame shown = frame;
    Bytes masked;
    if (!withSecrets_) {
        masked = WithoutSecrets(frame);
        shown.isMasked = !std::ranges::equal(masked, frame.bytes);
        shown.bytes = masked;
    }
    if (Append(PacketBlock(Now(), shown)))
        isTold_ = false;
    else
        ++lost_;
}

bool CaptureFile::Append(Bytes blocks)
{
    struct stat found {};
    if (isSpoilt_)
        return false;
    if (fstat(fd_, &found) != 0) {
        reason_ = std::strerror(errno);
        return false;
    }
    if (found.st_size == 0) { // it is new, or somebody has emptied it
        const Bytes start = SectionStart(program_);
        blocks.insert(blocks.begin(), start.begin(), start.end());
    }
    if (static_cast<uint64_t>(found.st_size) + blocks.size() > most_) {
        reason_ = fmt::format("a file takes no more than {} bytes", most_);
        return false;
    }
    const ssize_t written = write(fd_, blocks.data(), blocks.size());
    if (written == static_cast<ssize_t>(blocks.size()))
        return true;
    reason_ = std::strerror(written < 0 ? errno : ENOSPC);
    isSpoilt_ = written > 0 && ftruncate(fd_, found.st_size) != 0;
    return false;
}

std::string CaptureFile::Loss(bool isEnd)
{
    if (lost_ == 0 || (isTold_ && !isEnd))
        return {};
    isTold_ = true;
    return fmt::format("{} frames are not in the capture {}: {}", lost_, path_, reason_);
}

} // namespace rsvpsimd
