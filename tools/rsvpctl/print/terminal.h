// What the terminal behind a stream can do.
#ifndef TOOLS_RSVPCTL_PRINT_TERMINAL_H
#define TOOLS_RSVPCTL_PRINT_TERMINAL_H

namespace rsvpctl {

/** Tells whether the stream is a terminal that takes escape sequences: one with TERM=dumb would print them. */
bool TakesEscapes(int stream);

} // namespace rsvpctl

#endif
