// What a program that holds keys does about its own memory.
#ifndef PROCESS_HARDENING_H
#define PROCESS_HARDENING_H

namespace process {

/** Sees to it that a crash leaves no core: a core holds the keys in the program's memory. If the system refuses, that
 * is said on standard error. */
void LeaveNoCore();

} // namespace process

#endif
