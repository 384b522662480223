/*
 * The platform's option file reader: plug-in options, one after another, each parsed against a caller's table.
 */
#ifndef PLATFORM_OPTIONS_H
#define PLATFORM_OPTIONS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the option file; null if it cannot be used. PLUGIN_OptFini closes it. */
void *PLUGIN_OptInit(const char *path);

/* The next plug-in option, or null if there is none. The caller sets `buffer[0]` and `*word` to 0 before the call.
 * What comes back and what is stored in `*word` mean something to OPT_ParseEx alone, which gets both while `buffer`
 * is still there. */
void *PLUGIN_GetNextPlugOpt(void *handle, char buffer[128], uint32_t *word);

/* Parses an option, given by the two values of PLUGIN_GetNextPlugOpt, against `table` into `target`; returns 0 or the
 * platform's code. */
uint32_t OPT_ParseEx(uint32_t word, void *option, void *table, void *target);

void PLUGIN_OptFini(void *handle);

#ifdef __cplusplus
}
#endif

#endif
