// Reading of authentication keys. No copy of one is left in a buffer.
#include "tools/rsvpctl/command/auth_key.h"

#include "tools/rsvpctl/command/input_file.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>

namespace rsvpctl {

AuthKey::~AuthKey()
{
    explicit_bzero(bytes_.data(), bytes_.size());
}

void AuthKey::Read(const std::string &name)
{
    const InputFile file = OpenInput("--key-file", name);
    (void)std::setvbuf(file.get(), nullptr, _IONBF, 0); // no copy of a key stays in a buffer
    const size_t size = std::fread(bytes_.data(), 1, bytes_.size(), file.get());
    const int next = size == bytes_.size() ? std::fgetc(file.get()) : EOF;
    const bool lineEnd = next == '\n' && std::fgetc(file.get()) == EOF;
    if (std::ferror(file.get()) != 0)
        throw UsageError(fmt::format("--key-file: {}: {}", name, std::strerror(errno)));
    if (next != EOF && !lineEnd)
        throw UsageError(fmt::format("--key-file: {}: a key has at most {} bytes", name, bytes_.size()));
    const bool ownLineEnd = size > 0 && size < bytes_.size() && bytes_[size - 1] == '\n';
    if (size == (ownLineEnd ? 1U : 0U))
        throw UsageError(fmt::format("--key-file: {}: there is no key in it", name));
    if (ownLineEnd)
        bytes_[size - 1] = 0;
}

} // namespace rsvpctl
