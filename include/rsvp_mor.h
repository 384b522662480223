/**
 * @file rsvp_mor.h
 * Configure and read an RSVP-TE signalling daemon from a management program.
 *
 * Each function turns one management operation into one request to the daemon, waits for the one reply and returns a
 * 32-bit status. This header includes the whole interface. What follows is true of every function, and the comments
 * on the functions do not repeat it.
 *
 * 1. Numbers are in host byte order, in arguments and in records. A field of type `uint8_t name[N]` holds bytes
 *    exactly as they are on the wire, even where they make up a number; numbers on the wire are in network order.
 * 2. A status is 0 (RSVP_MOR_OK), a code of status_codes.h, or any other non-zero status that the daemon sent,
 *    unchanged. The library checks no value against a range: the daemon refuses what it does not accept.
 * 3. Every function that talks to the daemon blocks until the reply arrives, for at most 10 seconds in the send and
 * 10 seconds in the receive. If a signal interrupts either, it starts again with a new 10 seconds.
 * 4. There are two kinds of session. "Own session": the function opens a session of its own, uses it for one exchange
 *    and closes it in every case; such functions may run at the same time on any threads. "Held session": the caller
 *    opens the session with RSVP_MOR_LIPCOpen and passes it as `fd`, and the function never closes it; a held session
 *    serves one thread at a time.
 * 5. After a call on a held session has returned RSVP_MOR_ERR_FAIL, close the session and open a new one. Replies are
 *    matched to requests by order alone, so a late reply would be taken for the answer to the next request.
 * 6. To walk a table, call get-first once, and then get-next with the key of the previous row until a status is not
 * 0. The key is the only cursor: the library remembers nothing. No status is reserved for the end of a table; the
 *    daemon has a status of its own for it.
 * 7. The caller owns every record. If the status is not 0, a fixed record is unchanged. The list slots of a record
 *    with lists must be null before a get (zero the record): the library neither clears them nor looks at what they
 *    hold. After status 0 release the lists with the function that the get function names; after any other status
 *    there is nothing to release.
 * 8. Pointers must be valid unless a function says that null is accepted or refused.
 * 9. There is no initialisation, no global state, no thread and no log.
 *
 * The headers declare all functions with default visibility; the library hides everything else.
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
