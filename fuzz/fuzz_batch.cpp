// The lines of a batch, from a file as the tool reads it. They are rehearsed, so that nothing is sent: whatever they
// are, the tool ends with one whole document that steers no terminal, and keeps the promises of its exit status.
#include "promise.h"

#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/run.h"
#include "tools/rsvpctl/commands.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sys/mman.h>
#include <unistd.h>

using namespace rsvpctl;

namespace {

/** The parsed command. Its lines go through the parsers of the same tree, one after another, as in one long batch. */
const Command &BatchOf(const std::string &file)
{
    static CommandLine line;
    AddCommands(line);
    return line.Parse({"batch", file, "--json", "--dry-run"});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (std::find(data, data + size, '/') != data + size)
        return 0; // the name of a key's file, which may be any device's
    static const int lines = memfd_create("lines", MFD_CLOEXEC);
    static FILE *const messages = std::fopen("/dev/null", "we");
    static const Command &batch = BatchOf("/proc/self/fd/" + std::to_string(lines));
    Must(ftruncate(lines, 0) == 0 && pwrite(lines, data, size, 0) == static_cast<ssize_t>(size),
         "the input is a file");
    char *text = nullptr;
    size_t length = 0;
    FILE *document = open_memstream(&text, &length);
    Must(document != nullptr && messages != nullptr, "there is memory");
    Output out(Style::Json, Color::Never, document, messages);
    const Exit exit = out.Finish(Run(out, batch));
    (void)std::fclose(document);
    const std::string_view written(text, length);
    Must(std::all_of(written.begin(), written.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }),
         "nothing steers the terminal");
    const auto read = nlohmann::json::parse(written, nullptr, false);
    Must(read.is_object() && read["exitStatus"] == static_cast<int>(exit), "one document, with the exit status");
    Must(exit == Exit::Done || exit == Exit::Usage || exit == Exit::Exchange, "nothing was asked of the daemon");
    Must(read["complete"].get<bool>() != (exit == Exit::Exchange), "complete unless the file could not be read");
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc): of open_memstream
    return 0;
}
