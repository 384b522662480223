// What the point-to-multipoint path and reservation reads share: the objects in their P2MP form, the three items that
// both replies have, and the key of both requests.
#pragma once

#include "rsvp_mor/p2mp.h"

extern "C" {

// Each takes the value of an item and its length, and refuses one that is shorter than what is read of it. What
// stands behind that is not looked at.
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

void DecodeP2mpSender(const uint8_t *at, RSVP_MOR_P2mpSender &sender);
void EncodeP2mpStateKey(uint8_t *at, const RSVP_MOR_P2mpStateKey &key);

} // namespace rsvp_mor
