// Authentication keys, which come from a file or standard input alone: every user of the machine can see what is in a
// command line.
#ifndef TOOLS_RSVPCTL_COMMAND_AUTH_KEY_H
#define TOOLS_RSVPCTL_COMMAND_AUTH_KEY_H

#include <array>
#include <cstdint>
#include <rsvp_mor.h>
#include <string>

namespace rsvpctl {

/** An authentication key, padded with zeros; wiped with the object. */
class AuthKey {
public:
    AuthKey() = default;
    ~AuthKey();
    AuthKey(const AuthKey &) = delete;
    AuthKey &operator=(const AuthKey &) = delete;

    /** Reads the key from a file, or from standard input for "-". A line end after the key is not part of it, unless
     * the key has its full length. Throws UsageError. */
    void Read(const std::string &file);
    const uint8_t *Bytes() const { return bytes_.data(); }

private:
    std::array<uint8_t, RSVP_MOR_AUTH_KEY_SIZE> bytes_{};
};

} // namespace rsvpctl

#endif
