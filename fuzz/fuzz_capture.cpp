// Captures from anybody. Input: a file. It is printed in both forms up to its end, or up to a mistake that names the
// block; and whatever frames it holds, what is kept of them without key material is as long as they are.
#include "promise.h"

#include "host/daemon/decode.h"

#include <sstream>

using namespace rsvpsimd;

namespace {

size_t Lines(const std::string &file, DecodeForm form)
{
    std::istringstream input(file);
    size_t lines = 0;
    try {
        Decode(input, form, [&](const std::string &line) {
            Must(!line.empty() && line.find('\n') == std::string::npos, "a frame is a line");
            ++lines;
        });
    } catch (const CaptureError &error) {
        Must(std::string_view(error.what()).starts_with("block "), "a mistake names the block");
    }
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string file(reinterpret_cast<const char *>(data), size);
    const size_t lines = Lines(file, DecodeForm::Words);
    Must(Lines(file, DecodeForm::Json) == lines, "both forms have every frame");
    std::istringstream input(file);
    CaptureReader reader(input);
    for (size_t i = 0; i < lines; ++i) {
        const CapturedFrame frame = reader.Next()->frame;
        Must(WithoutSecrets(frame).size() == frame.bytes.size(), "masking changes no length");
    }
    return 0;
}
