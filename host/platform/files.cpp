// Writers replace a file as a whole, so readers need no lock.
#include "host/platform/files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>

namespace rsvp_host {

int ReadFile(const char *path, char *content, size_t room)
{
    // A pipe in place of the file must not block the caller for ever.
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.Get() < 0)
        return -errno;
    size_t length = 0;
    while (length < room) {
        const ssize_t got = read(file.Get(), content + length, room - length);
        if (got < 0 && errno != EINTR)
            return -errno;
        if (got == 0)
            break;
        if (got > 0)
            length += static_cast<size_t>(got);
    }
    return static_cast<int>(length);
}

int ReplaceFile(const char *path, std::string_view content)
{
    std::string draft = std::string(path) + ".XXXXXX";
    const Descriptor file(mkostemp(draft.data(), O_CLOEXEC));
    if (file.Get() < 0)
        return errno;
    const ssize_t written = write(file.Get(), content.data(), content.size());
    const bool whole = written == static_cast<ssize_t>(content.size());
    if (whole && std::rename(draft.c_str(), path) == 0)
        return 0;
    const int error = written >= 0 && !whole ? ENOSPC : errno;
    unlink(draft.c_str());
    return error;
}

} // namespace rsvp_host
