// Reading and replacing the small files that hold the device's state, and a descriptor that closes itself.
#ifndef HOST_PLATFORM_FILES_H
#define HOST_PLATFORM_FILES_H

#include <cstddef>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace rsvp_host {

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor()
    {
        if (fd_ >= 0)
            close(fd_);
    }
    int Get() const { return fd_; }

private:
    int fd_;
};

// Returns the number of bytes read (`room` means that the file may be longer), or the negative error number. No heap.
int ReadFile(const char *path, char *content, size_t room);

// Replaces the whole file, so that a reader sees either the old content or the new, never half of it.
// Returns 0 or the error number.
int ReplaceFile(const char *path, std::string_view content);

} // namespace rsvp_host

#endif
