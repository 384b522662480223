// A session that is closed with its scope.
#ifndef MANAGER_TABLE_SESSION_H
#define MANAGER_TABLE_SESSION_H

#include <rsvp_mor.h>

namespace manager {

/**
 * A session for the reads that want a held one. A program opens a new one after an exchange that failed: the late
 * reply would be taken for the answer to the next question, since replies are matched by order alone.
 */
class Session {
public:
    explicit Session(bool wanted = true) : fd_(wanted ? RSVP_MOR_LIPCOpen() : -1), wanted_(wanted) {}
    ~Session()
    {
        if (fd_ >= 0)
            RSVP_MOR_LIPCClose(fd_);
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    bool IsMissing() const { return wanted_ && fd_ < 0; }
    int32_t Fd() const { return fd_; }

private:
    int32_t fd_;
    bool wanted_;
};

} // namespace manager

#endif
