// What faults do to a reply that is otherwise ready.
#ifndef HOST_DAEMON_FAULTS_H
#define HOST_DAEMON_FAULTS_H

#include "host/daemon/scenario/fault.h"
#include "host/daemon/wire/bytes.h"

#include <chrono>

namespace rsvpsimd {

struct Reply {
    Bytes frame;
    int copies = 1; // 0: the request gets no answer
    std::chrono::milliseconds delay{0};
    bool close = false; // end the connection
    bool crash = false; // end the daemon
};

void Strike(const Fault &fault, Reply &reply);

} // namespace rsvpsimd

#endif
