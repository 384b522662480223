// The new text goes into a file beside the old one, which takes its name when everything is on the disk.
#include "tools/rsvpctl/print/replaced_file.h"

#include "tools/rsvpctl/print/usage_error.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace rsvpctl {
namespace {

constexpr mode_t kReadableByAll = 0644;

[[noreturn]] void Fail(const std::string &path, int error = errno)
{
    throw std::system_error(error, std::generic_category(), path);
}

/** While it lives, signals wait. */
class SignalsHeld {
public:
    SignalsHeld()
    {
        sigset_t all;
        sigfillset(&all);
        (void)pthread_sigmask(SIG_SETMASK, &all, &before_); // fails for arguments alone
    }
    ~SignalsHeld() { (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld &) = delete;
    SignalsHeld &operator=(const SignalsHeld &) = delete;

private:
    sigset_t before_{};
};

/** A new file in a folder, which is removed with this unless it gets a name. */
class NewFile {
public:
    explicit NewFile(const std::string &beside) : path_(beside + ".XXXXXX")
    {
        fd_ = mkostemp(path_.data(), O_CLOEXEC);
        if (fd_ < 0)
            Fail(path_);
    }
    ~NewFile()
    {
        close(fd_);
        if (!path_.empty())
            (void)unlink(path_.c_str()); // nothing is left to be done if it stays
    }
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    void Write(std::string_view text)
    {
        while (!text.empty()) {
            const ssize_t written = write(fd_, text.data(), text.size());
            if (written < 0 && errno != EINTR)
                Fail(path_);
            text.remove_prefix(static_cast<size_t>(written < 0 ? 0 : written));
        }
        if (fchmod(fd_, kReadableByAll) != 0 || fsync(fd_) != 0)
            Fail(path_);
    }

    void Rename(const std::string &path)
    {
        if (rename(path_.c_str(), path.c_str()) != 0)
            Fail(path);
        path_.clear();
    }

private:
    std::string path_;
    int fd_;
};

} // namespace

void ReplaceFile(const std::string &path, std::string_view text)
{
    struct stat found {};
    if (stat(path.c_str(), &found) == 0 && !S_ISREG(found.st_mode))
        throw UsageError(path + " is not a plain file, and would be gone if it was replaced");
    const SignalsHeld held;
    NewFile file(path);
    file.Write(text);
    file.Rename(path);
}

} // namespace rsvpctl
