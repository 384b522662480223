// Prints a capture: a line a frame, in the words of the trace or as a JSON object.
#ifndef HOST_DAEMON_DECODE_H
#define HOST_DAEMON_DECODE_H

#include "host/daemon/capture/pcapng.h"

#include <functional>
#include <istream>
#include <string>

namespace rsvpsimd {

enum class DecodeForm : uint8_t { Words, Json };

// Calls `print` with each line, those before a mistake of the file included. Throws CaptureError.
void Decode(std::istream &capture, DecodeForm form, const std::function<void(const std::string &line)> &print);

} // namespace rsvpsimd

#endif
