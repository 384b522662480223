// The disable request, which only the global switch sends; declared for the tests.
#ifndef CONFIG_ENABLE_H
#define CONFIG_ENABLE_H

#include <cstdint>

extern "C" {

// Tells the daemon that it will be stopped. A refusal counts only while the daemon's database can still be opened.
// Returns 0 if the stop may go on, RSVP_MOR_ERR_FAIL if nothing may be stopped.
uint32_t rsvp_mor_RequestDisable(void);
}

#endif
