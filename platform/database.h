/*
 * The platform's database manager. The library only asks whether a database can be opened.
 */
#ifndef PLATFORM_DATABASE_H
#define PLATFORM_DATABASE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Opens `database` for `user` and stores the handle. Returns 0 on success; the caller then closes it with DBM_Close.
 * The library's names are "eRSVP" and "RSVP", its numbers 1 and {1, 0, 1, 0, 0, 0, 0, 0}. */
uint32_t DBM_Open(const char *database, const char *user, uint32_t, const uint32_t record[8], int32_t *handle);

void DBM_Close(int32_t handle);

#ifdef __cplusplus
}
#endif

#endif
