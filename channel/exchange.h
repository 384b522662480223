// The transport: one request and one reply on a session, and the shortcut that does it on a session of its own.
// Everything reaches the daemon through these two and through nothing else.
#pragma once

#include "rsvp_mor/channel.h"

extern "C" {

// Sends `length` bytes of `request`, header included, and receives the reply into `reply`, an area of
// RSVP_MOR_MSG_MAX bytes, as it stands on the wire. Returns the reply's status, or RSVP_MOR_ERR_FAIL if the send or
// the receive failed or the reply's size is not the one that its header tells. Never closes the session.
uint32_t RSVP_MOR_Exchange(int32_t fd, const void *request, uint32_t length, void *reply);

// The exchange of a command: opens a session, drops the reply's body, closes. RSVP_MOR_ERR_LIPC if none opens.
uint32_t RSVP_MOR_SendCommand(const void *request, uint32_t length);
}
