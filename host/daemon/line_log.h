// Lines for whoever watches the daemon: its messages and its trace. Nothing that happens to them may reach the
// clients: a line is written at once or kept for later, and when too many wait, it is lost and counted.
#ifndef HOST_DAEMON_LINE_LOG_H
#define HOST_DAEMON_LINE_LOG_H

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace rsvpsimd {

// A file takes no more lines at this size. Lines before a fault are often worth more than those after it, so none is
// removed to make room.
inline constexpr uint64_t kMostLogged = uint64_t{64} << 20;

class LineLog {
public:
    // Standard error, whatever it is.
    LineLog();

    // The end of a regular file, which is made if it is missing. Throws std::runtime_error if that cannot be done.
    explicit LineLog(const std::string &path, uint64_t most = kMostLogged);

    ~LineLog();
    LineLog(const LineLog &) = delete;
    LineLog &operator=(const LineLog &) = delete;

    void Write(std::string_view line);

    // Tries to write what waits. Once it is through, one more line tells how many were lost.
    void Flush();

    // Tries for the last time, for which a file may grow beyond its bound. Returns how many lines nobody got to see.
    uint64_t Finish();

private:
    ssize_t WriteSome() const;
    void TellLoss();

    int fd_ = -1;
    bool isRegular_ = false;
    bool isSocket_ = false;
    bool mayBlock_ = false; // the descriptor is shared with others, so that it cannot be made non-blocking
    uint64_t most_ = kMostLogged;
    std::string waiting_;
    uint64_t lost_ = 0;
};

} // namespace rsvpsimd

#endif
