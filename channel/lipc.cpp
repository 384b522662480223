// The session to the daemon over LIPC, the router's private socket family, and the exchange of one request and one
// reply. The library remembers nothing between calls: a session is a bare descriptor.
#include "channel/exchange.h"
#include "channel/protocol.h"
#include "channel/wire.h"

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

using namespace rsvp_mor;

namespace {

// The numbers by which the router's kernel knows LIPC.
constexpr int LIPC_FAMILY = 37;
constexpr int LIPC_TYPE_DATAGRAM = 2;
constexpr int LIPC_PROTOCOL = 1;
constexpr int LIPC_LEVEL_SOCKET = 1;
constexpr int LIPC_SEND_TIMEOUT = 0x1005;
constexpr int LIPC_RECEIVE_TIMEOUT = 0x1006;

// Two 32-bit words on every machine, unlike the system's own timeval.
constexpr uint32_t TEN_SECONDS[2] = {10, 0};

// The daemon's fixed address: its length, the family, the end point, zeros.
constexpr uint8_t DAEMON_ADDRESS[16] = {0x10, 0x25, 0x0a, 0xe1, 0x80, 0x00};

bool SetTimeouts(int fd)
{
    return setsockopt(fd, LIPC_LEVEL_SOCKET, LIPC_SEND_TIMEOUT, TEN_SECONDS, sizeof(TEN_SECONDS)) == 0 &&
           setsockopt(fd, LIPC_LEVEL_SOCKET, LIPC_RECEIVE_TIMEOUT, TEN_SECONDS, sizeof(TEN_SECONDS)) == 0;
}

bool Connect(int fd)
{
    // The family's address has no C type, and sockaddr may ask for more alignment than bytes have.
    alignas(sockaddr) uint8_t address[sizeof(DAEMON_ADDRESS)];
    memcpy(address, DAEMON_ADDRESS, sizeof(address));
    while (connect(fd, reinterpret_cast<const sockaddr *>(address), sizeof(address)) != 0) {
        if (errno == EISCONN)
            return true;
        if (errno != EINTR)
            return false;
    }
    return true;
}

} // namespace

int32_t RSVP_MOR_LIPCOpen(void)
{
    const int fd = socket(LIPC_FAMILY, LIPC_TYPE_DATAGRAM, LIPC_PROTOCOL);
    if (fd < 0)
        return -1;
    if (!SetTimeouts(fd) || !Connect(fd)) {
        RSVP_MOR_LIPCClose(fd);
        return -1;
    }
    return fd;
}

int32_t RSVP_MOR_LIPCClose(int32_t fd)
{
    return close(fd);
}

uint32_t RSVP_MOR_Exchange(int32_t fd, const void *request, uint32_t length, void *reply)
{
    ssize_t sent;
    do
        sent = send(fd, request, length, 0);
    while (sent == -1 && errno == EINTR);
    if (sent != static_cast<ssize_t>(length))
        return RSVP_MOR_ERR_FAIL;

    ssize_t received;
    do
        received = recv(fd, reply, RSVP_MOR_MSG_MAX, MSG_WAITALL);
    while (received == -1 && errno == EINTR);
    if (received < static_cast<ssize_t>(HEADER_SIZE))
        return RSVP_MOR_ERR_FAIL;

    const Bytes<HEADER_SIZE> &header = *static_cast<const Bytes<HEADER_SIZE> *>(reply);
    uint16_t bodyLength;
    LoadNet<HEADER_BODY_LENGTH>(header, bodyLength);
    if (received != static_cast<ssize_t>(HEADER_SIZE) + bodyLength)
        return RSVP_MOR_ERR_FAIL;
    uint32_t status;
    LoadNet<HEADER_STATUS>(header, status);
    return status;
}

uint32_t RSVP_MOR_SendCommand(const void *request, uint32_t length)
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    if (fd < 0)
        return RSVP_MOR_ERR_LIPC;
    uint8_t reply[RSVP_MOR_MSG_MAX] = {};
    const uint32_t status = RSVP_MOR_Exchange(fd, request, length, reply);
    RSVP_MOR_LIPCClose(fd);
    return status;
}
