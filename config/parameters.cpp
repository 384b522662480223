// Timers and switches of the daemon, for the whole of it or for one interface. No value is checked or remembered.
// Mind the encodings: a byte, a short or a pair of shorts in a 4-byte item is not a 32-bit number.
#include "rsvp_mor/config.h"

#include "channel/message.h"
#include "channel/presence.h"

using namespace rsvp_mor;

namespace {

// Converts the pair in the caller's memory and leaves it so: callers rely on it.
void PutNetPair(Request &request, uint16_t type, uint16_t *pair)
{
    ConvertNet(pair[0], pair[1]);
    PutRaw(request, type, pair, 2 * sizeof(*pair));
}

} // namespace

uint32_t RSVP_MOR_SetRefreshInterval(uint16_t interval)
{
    Request request{};
    PutNetShort(request, COMMAND_REFRESH_INTERVAL, interval);
    return SendCommand(request, CLASS_GLOBAL, OP_SET);
}

uint32_t RSVP_MOR_SetKeepMultiplier(uint8_t multiplier)
{
    Request request{};
    PutNetByte(request, COMMAND_KEEP_MULTIPLIER, multiplier);
    return SendCommand(request, CLASS_GLOBAL, OP_SET);
}

uint32_t RSVP_MOR_SetHelloInterval(uint8_t interval)
{
    Request request{};
    PutNetByte(request, COMMAND_HELLO_INTERVAL, interval);
    return SendCommand(request, CLASS_GLOBAL, OP_HELLO_TIMER);
}

uint32_t RSVP_MOR_SetHelloLost(uint8_t lost)
{
    Request request{};
    PutNetByte(request, COMMAND_HELLO_LOST, lost);
    return SendCommand(request, CLASS_GLOBAL, OP_HELLO_TIMER);
}

uint32_t RSVP_MOR_SetDscpValue(uint32_t dscp)
{
    Request request{};
    PutNetWord(request, COMMAND_DSCP, dscp);
    return SendCommand(request, CLASS_GLOBAL, OP_SET);
}

uint32_t RSVP_MOR_SetGrEnable(uint32_t op)
{
    Request request{};
    PutEmpty(request, COMMAND_GR);
    return SendCommand(request, CLASS_GLOBAL, op);
}

uint32_t RSVP_MOR_SetHelloEnable(uint32_t op, uint32_t ifIndex)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutEmpty(request, COMMAND_HELLO_ENABLE);
    return SendCommand(request, CLASS_INTERFACE, op);
}

uint32_t RSVP_MOR_SetBfdEnable(uint32_t op, uint32_t ifIndex)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutEmpty(request, COMMAND_BFD);
    return SendCommand(request, CLASS_INTERFACE, op);
}

uint32_t RSVP_MOR_SetReduction(uint32_t op, uint32_t ifIndex, uint16_t *pair)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutNetPair(request, COMMAND_REDUCTION, pair);
    return SendCommand(request, CLASS_INTERFACE, op);
}

// The two retransmission timers use `op` for the gate alone: set and undo send the same message.

uint32_t RSVP_MOR_SetRetransInterval(uint32_t op, uint32_t ifIndex, uint16_t interval)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutNetShort(request, COMMAND_RETRANS_INTERVAL, interval);
    return SendCommand(request, CLASS_INTERFACE, OP_SET);
}

uint32_t RSVP_MOR_SetRetransIncrement(uint32_t op, uint32_t ifIndex, uint8_t increment)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutNetByte(request, COMMAND_RETRANS_INCREMENT, increment);
    return SendCommand(request, CLASS_INTERFACE, OP_SET);
}
