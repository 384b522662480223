// What every program of this tree does about itself before anything else.
#ifndef PROCESS_STANDARD_STREAMS_H
#define PROCESS_STANDARD_STREAMS_H

namespace process {

/** Opens those of the descriptors 0 to 2 that the caller closed, so that no socket or file gets their number and
 * receives what the program prints. Reading from one gives nothing, and writing to one fails as to a closed one. */
void OpenStandardStreams();

} // namespace process

#endif
