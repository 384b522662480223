// Files that a command reads its arguments from. The input of a batch is not one of them: a command that read it
// would swallow the lines after its own.
#ifndef TOOLS_RSVPCTL_COMMAND_INPUT_FILE_H
#define TOOLS_RSVPCTL_COMMAND_INPUT_FILE_H

#include <cstdio>
#include <memory>
#include <string>

namespace rsvpctl {

struct InputCloser {
    void operator()(FILE *file) const;
};
using InputFile = std::unique_ptr<FILE, InputCloser>;

/** While the object lives, no command may read this file, by whatever name. Throws std::system_error. */
class ReservedInput {
public:
    explicit ReservedInput(const InputFile &file);
    ~ReservedInput();
    ReservedInput(const ReservedInput &) = delete;
    ReservedInput &operator=(const ReservedInput &) = delete;
};

/** Opens the file that an option names, or standard input for "-". Throws UsageError. */
InputFile OpenInput(const std::string &option, const std::string &name);

/** The whole text of such a file, which may have at most `most` bytes. Throws UsageError. */
std::string ReadInput(const std::string &option, const std::string &name, size_t most);

} // namespace rsvpctl

#endif
