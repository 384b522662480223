/**
 * @file rsvp_mor.h
 * Configure and read an RSVP-TE signalling daemon from a management program.
 *
 * Each function turns one management operation into one request to the daemon, waits for the one reply and returns a
 * 32-bit status. This header includes the whole interface. What follows is true of every function, and the comments
 * on the functions do not repeat it.
 *
 * 1. Numbers are in host byte order, in arguments and in records. A field of type `uint8_t name[N]` holds bytes
 *    exactly as they are on the wire, even where they make up a number. Numbers on the wire are in network order, but
 *    for the two rates of a CR-LSP.
 * 2. A status is 0 (RSVP_MOR_OK), a code of status_codes.h, or any other non-zero status that the daemon sent,
 *    unchanged. The library checks no value against a range: the daemon refuses what it does not accept.
 * 3. A call blocks until the reply arrives: for at most 10 seconds in the send and 10 seconds in the receive. To open
 *    a session can take 10 seconds too, if the daemon does not accept it, so that a call with a session of its own
 *    takes up to 30. If a signal interrupts one of the three, it starts again with a new 10 seconds. What asks the
 *    service manager (RSVP_MOR_SetMplsRsvp, RSVP_IsGlobalEnabled, RSVP_GetUpLspNumber, RSVP_MOR_ResetAuth and the
 *    commands that are called gated) waits for it as well, and the library sets no limit to that.
 * 4. There are two kinds of session. "Own session": the function opens a session of its own, uses it for one exchange
 *    and closes it in every case; such functions may run at the same time on any threads. "Held session": the caller
 *    opens the session with RSVP_MOR_LIPCOpen and passes it as `fd`, and the function never closes it; a held session
 *    serves one thread at a time.
 * 5. After a call on a held session has returned RSVP_MOR_ERR_FAIL, close the session and open a new one. Replies are
 *    matched to requests by order alone, so a late reply would be taken for the answer to the next request.
 * 6. To walk a table, call get-first once, and then get-next with the key of the previous row until a status is not
 *    0. The key is the only cursor: the library remembers nothing. No status is reserved for the end of a table; the
 *    daemon has a status of its own for it.
 * 7. The caller owns every record. A record without lists is unchanged unless the status is 0. One with lists (lsp.h,
 *    p2mp.h) is unchanged after a status of the daemon; but after RSVP_MOR_ERR_FAIL its fixed fields, the key among
 *    them, may already hold what the bad reply began with. So keep the key of the next call outside the record.
 * 8. The value of a record without lists may be shorter than the record, even 0 bytes long. Then it fills only the
 *    front; the rest keeps the caller's bytes, and all numbers are converted, the caller's too: on a little-endian
 *    machine these come back with their bytes reversed. To have zeros there, clear the record before the call. A
 *    longer value is cut off. Where a function is stricter, its comment says so.
 * 9. List slots must be null before a get (zero the record); each get function says what happens otherwise. After
 *    status 0 release the lists with the function that it names; after any other status there is nothing to release.
 *    A node that the caller makes, and what it points to, come from `malloc`.
 * 10. Pointers must be valid unless a function says that null is accepted or refused.
 * 11. A call needs more than 16 KiB of stack, since request and reply lie there. Give a thread 64 KiB.
 * 12. There is no initialisation, no global state, no thread and no log. RSVP_MOR_LIPCOpen and RSVP_MOR_LIPCClose,
 *     RSVP_IsGlobalEnabled, RSVP_Opt_Parse and the functions that release memory send the daemon nothing.
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
