/**
 * @file status_codes.h
 * Status codes, the result of nearly every operation, and the size of the largest message.
 *
 * A status is 0 for success. A value that is not listed here comes from the daemon and is returned as it was sent.
 */
#ifndef RSVP_MOR_STATUS_CODES_H
#define RSVP_MOR_STATUS_CODES_H

#include <stdint.h>

/** Done: the daemon confirmed the operation, or the service does not run and there was nothing to undo. */
#define RSVP_MOR_OK 0x00000000u

/**
 * The call failed. Before anything was sent: a null pointer or an operation code that the function refuses. On the
 * way: a send that failed, took longer than 10 seconds or sent a part; a receive that failed, took longer than 10
 * seconds or found the session closed. In the reply: less than a header, another size than the header says, an item
 * that cannot be read or is missing, a value of the wrong length, a list without its owner, an item that does not
 * belong to a path state block; or no memory for a list. Of RSVP_MOR_SetMplsRsvp: the service manager does not answer
 * for the master, a start failed, or the daemon would not be disabled. Of RSVP_Opt_Parse: the file has no plug-in
 * option. Where the send was made, the daemon may have done what it was asked.
 */
#define RSVP_MOR_ERR_FAIL 0x40010001u

/** RSVP_Opt_Parse found no usable configuration file. The platform's service manager answers with the same number for
 * a service that has never run, and a daemon may send it with a meaning of its own. */
#define RSVP_MOR_ERR_NOT_EXIST 0x40010005u

/** No session to the daemon could be opened: the socket, its options or the connection failed. Nothing was sent. */
#define RSVP_MOR_ERR_LIPC 0x2001000eu

/** A gated command or RSVP_MOR_ResetAuth found the service "RSVP" running on no node, where a node that cannot be
 * asked counts as one on which it does not run. Nothing was sent. A gated command whose `op` is 1 returns 0 instead.
 */
#define RSVP_MOR_ERR_NOT_ENABLED 0x6001001au

/** The largest message, header included, in bytes. The system cuts a longer one to this size before the library sees
 * it: a reply that is too long is refused, unless its header tells exactly what is left, a body of 8184 bytes. */
#define RSVP_MOR_MSG_MAX 8192

#endif
