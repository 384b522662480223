/**
 * @file rsvp_mor.h
 * Configure and read an RSVP-TE signalling daemon from a management program.
 *
 * Each function turns one management operation into one request to the daemon, waits for the one reply and returns
 * a 32-bit status. This header includes the whole interface; what follows holds for every function of it, and the
 * comments at the functions do not repeat it.
 *
 * 1. Numbers are in host byte order, in arguments and in records. A field of type `uint8_t name[N]` holds bytes as
 *    they stand on the wire, also where they are a multi-byte number; a number on the wire is in network order.
 * 2. A status is 0 (RSVP_MOR_OK), a code of status_codes.h, or whatever other non-zero status the daemon sent,
 *    unchanged. No value is checked against a range here: the daemon refuses what it does not take.
 * 3. Every function that speaks to the daemon blocks until the reply is there: at most 10 seconds in the send and
 *    10 seconds in the receive. A signal restarts the interrupted call with a new 10 seconds.
 * 4. Own session: the function opens a session, uses it for one exchange and closes it on every path. Held session:
 *    the caller opens one with RSVP_MOR_LIPCOpen and passes it as `fd`; the function never closes it. Own-session
 *    functions may run side by side on any threads. A held session serves one thread at a time.
 * 5. After a held-session call has returned RSVP_MOR_ERR_FAIL, close the session and open a new one. A reply is
 *    matched to its request by order alone, so that a late reply would be taken for the answer to the next request.
 * 6. A walk of a table is one get-first call and then get-next calls with the key of the row before, until a status
 *    is not 0. The key is the only cursor: the library remembers nothing. No status is reserved for the end of a
 *    table; the daemon says it with a status of its own.
 * 7. The caller owns every record. On a status other than 0 a fixed record is as it was. A record with lists has its
 *    list slots null (zero the record) before a get: nothing clears it and nothing looks at what a slot held. After
 *    status 0 its lists go back through the release function that its get function names; after another status
 *    there is nothing to release.
 * 8. Pointers must be valid unless the function says that null is taken or refused.
 * 9. There is no initialisation, no global state, no thread and no log.
 *
 * The headers declare all functions with default visibility, as the library itself hides everything else.
 */
#ifndef RSVP_MOR_H
#define RSVP_MOR_H

#include "rsvp_mor/channel.h"
#include "rsvp_mor/config.h"
#include "rsvp_mor/lsp.h"
#include "rsvp_mor/p2mp.h"
#include "rsvp_mor/status.h"
#include "rsvp_mor/status_codes.h"
#include "rsvp_mor/tables.h"

#endif
