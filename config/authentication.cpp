// Message authentication: key, challenge, life time and window size, each for the whole daemon, one interface or one
// peer; and the reset of one entry. A key is 68 bytes, whatever they hold: it is not a string and is never cut at a
// 0.
#include "rsvp_mor/config.h"

#include "channel/message.h"
#include "channel/presence.h"

using namespace rsvp_mor;

namespace {

void EncodeEntryKey(Bytes<12> &value, const RSVP_MOR_AuthEntryKey &key)
{
    StoreNet<0>(value, key.authId1);
    StoreNet<4>(value, key.authId2);
    StoreNet<8>(value, key.authId3);
    StoreNet<10>(value, key.authId4);
}

} // namespace

// ---- The whole daemon ----

uint32_t RSVP_MOR_SetAuthKey(uint32_t op, const uint8_t *authKey)
{
    Request request{};
    PutRaw(request, COMMAND_AUTH_KEY, authKey, RSVP_MOR_AUTH_KEY_SIZE);
    return SendSecret(request, CLASS_GLOBAL, op);
}

uint32_t RSVP_MOR_SetAuthChallenge(uint32_t op)
{
    Request request{};
    PutEmpty(request, COMMAND_AUTH_CHALLENGE);
    return SendCommand(request, CLASS_GLOBAL, op);
}

uint32_t RSVP_MOR_SetAuthLifeTime(uint32_t lifeTime)
{
    Request request{};
    PutNetWord(request, COMMAND_AUTH_LIFE_TIME, lifeTime);
    return SendCommand(request, CLASS_GLOBAL, OP_SET);
}

uint32_t RSVP_MOR_SetAuthWindowSize(uint8_t windowSize)
{
    Request request{};
    PutNetByte(request, COMMAND_AUTH_WINDOW_SIZE, windowSize);
    return SendCommand(request, CLASS_GLOBAL, OP_SET);
}

// ---- One interface: gated. Life time and window size use `op` for the gate alone ----

uint32_t RSVP_MOR_SetIntfAuthKey(uint32_t op, uint32_t ifIndex, const uint8_t *authKey)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutRaw(request, COMMAND_AUTH_KEY, authKey, RSVP_MOR_AUTH_KEY_SIZE);
    return SendSecret(request, CLASS_INTERFACE, op);
}

uint32_t RSVP_MOR_SetIntfAuthChallenge(uint32_t op, uint32_t ifIndex)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutEmpty(request, COMMAND_AUTH_CHALLENGE);
    return SendCommand(request, CLASS_INTERFACE, op);
}

uint32_t RSVP_MOR_SetIntfAuthLifeTime(uint32_t op, uint32_t ifIndex, uint32_t lifeTime)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutNetWord(request, COMMAND_AUTH_LIFE_TIME, lifeTime);
    return SendCommand(request, CLASS_INTERFACE, OP_SET);
}

uint32_t RSVP_MOR_SetIntfAuthWindowSize(uint32_t op, uint32_t ifIndex, uint8_t windowSize)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutNetByte(request, COMMAND_AUTH_WINDOW_SIZE, windowSize);
    return SendCommand(request, CLASS_INTERFACE, OP_SET);
}

// ---- One peer ----

uint32_t RSVP_MOR_SetPeerAuthKey(uint32_t op, uint32_t peer, const uint8_t *authKey)
{
    Request request{};
    PutNetWord(request, COMMAND_PEER, peer);
    PutRaw(request, COMMAND_AUTH_KEY, authKey, RSVP_MOR_AUTH_KEY_SIZE);
    return SendSecret(request, CLASS_PEER, op);
}

uint32_t RSVP_MOR_SetPeerAuthChallenge(uint32_t op, uint32_t peer)
{
    Request request{};
    PutNetWord(request, COMMAND_PEER, peer);
    PutEmpty(request, COMMAND_AUTH_CHALLENGE);
    return SendCommand(request, CLASS_PEER, op);
}

uint32_t RSVP_MOR_SetPeerAuthLifeTime(uint32_t peer, uint32_t lifeTime)
{
    Request request{};
    PutNetWord(request, COMMAND_PEER, peer);
    PutNetWord(request, COMMAND_AUTH_LIFE_TIME, lifeTime);
    return SendCommand(request, CLASS_PEER, OP_SET);
}

uint32_t RSVP_MOR_SetPeerAuthWindowSize(uint32_t peer, uint8_t windowSize)
{
    Request request{};
    PutNetWord(request, COMMAND_PEER, peer);
    PutNetByte(request, COMMAND_AUTH_WINDOW_SIZE, windowSize);
    return SendCommand(request, CLASS_PEER, OP_SET);
}

// ---- Reset of one entry ----

uint32_t RSVP_MOR_ResetAuth(const RSVP_MOR_AuthEntryKey *key)
{
    if (!RSVP_MOR_IsServiceRunning())
        return RSVP_MOR_ERR_NOT_ENABLED; // a reset is not an undo: with nothing to reset it fails
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<12> value;
    EncodeEntryKey(value, *key);
    Request request{};
    PutRaw(request, RESET_AUTH, value);
    return SendCommand(request, CLASS_RESET, OP_SET);
}
