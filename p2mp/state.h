// What the point-to-multipoint path and reservation reads share: the P2MP form of an object, the three items that
// both replies have, and the key of both requests.
#ifndef P2MP_STATE_H
#define P2MP_STATE_H

#include "channel/wire.h"
#include "rsvp_mor/p2mp.h"

extern "C" {

// Each takes the value of an item and its length, and refuses one that is shorter than what is read of it. Any bytes
// beyond that are ignored.
uint32_t rsvp_mor_DecodeP2mpPathState(const uint8_t *value, uint32_t length, RSVP_MOR_P2mpPathState *out);
uint32_t rsvp_mor_DecodeP2mpResvState(const uint8_t *value, uint32_t length, RSVP_MOR_P2mpResvState *out);
uint32_t rsvp_mor_DecodeP2mpSubGroup(const uint8_t *value, uint32_t length, RSVP_MOR_P2mpSubGroup *out);
}

namespace rsvp_mor {

// Sizes on the wire.
enum P2mpSize : uint16_t {
    P2MP_SENDER_SIZE = 16,
    P2MP_STATE_KEY_SIZE = 56,
};

void DecodeP2mpSender(const Bytes<P2MP_SENDER_SIZE> &value, RSVP_MOR_P2mpSender &sender);
void EncodeP2mpStateKey(Bytes<P2MP_STATE_KEY_SIZE> &value, const RSVP_MOR_P2mpStateKey &key);

} // namespace rsvp_mor

#endif
