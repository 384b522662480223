// The disable request, which only the global switch sends; declared for the tests.
#pragma once

#include <cstdint>

extern "C" {

// Tells the daemon that it will be stopped. A refusal counts only while the daemon's database can still be opened:
// 0 to go on, RSVP_MOR_ERR_FAIL to stop nothing.
uint32_t rsvp_mor_RequestDisable(void);
}
