// The transport: one request and one reply on a session, and the same on a session of its own. Nothing reaches the
// daemon but through these two.
#ifndef CHANNEL_EXCHANGE_H
#define CHANNEL_EXCHANGE_H

#include "rsvp_mor/channel.h"

extern "C" {

// Sends `length` bytes of `request`, header included, and receives the reply as it comes into `reply`, an area of
// RSVP_MOR_MSG_MAX bytes. Returns the reply's status, or RSVP_MOR_ERR_FAIL if the send or the receive failed or the
// reply does not have the size that its header says. Never closes the session.
uint32_t RSVP_MOR_Exchange(int32_t fd, const void *request, uint32_t length, void *reply);

// The exchange of a command: opens a session, drops the reply's body, closes. RSVP_MOR_ERR_LIPC if none opens.
uint32_t RSVP_MOR_SendCommand(const void *request, uint32_t length);
}

#endif
