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

/** A bad argument (null pointer, operation code out of range), a failed or incomplete send, a receive that failed or
 * took longer than 10 seconds, a malformed reply, or no memory for a list in the reply. */
#define RSVP_MOR_ERR_FAIL 0x40010001u

/** RSVP_Opt_Parse found no usable configuration file. */
#define RSVP_MOR_ERR_NOT_EXIST 0x40010005u

/** No session to the daemon could be opened. */
#define RSVP_MOR_ERR_LIPC 0x2001000eu

/** The service "RSVP" runs on no node, so there is nothing that could take the command. */
#define RSVP_MOR_ERR_NOT_ENABLED 0x6001001au

/** The largest message, header included, in bytes. */
#define RSVP_MOR_MSG_MAX 8192

#endif
