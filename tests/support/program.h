// Programs run as a user runs them, on a device of their own: a private host directory that is gone afterwards, with
// the daemon that was started in it. Where the build is for another processor, they run under its emulator.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace program {

class HostDirectory {
public:
    explicit HostDirectory(const std::string &scenario = "");
    ~HostDirectory();
    HostDirectory(const HostDirectory &) = delete;
    HostDirectory &operator=(const HostDirectory &) = delete;

    // Makes it the device of this process, and of the programs that it starts from now on.
    void Use() const;

    std::string PathOf(std::string_view name) const { return path_ + "/" + std::string(name); }
    void Write(std::string_view name, const std::string &text) const;
    std::string Read(std::string_view name) const; // empty if there is no such file
    std::string Log() const;                       // what the daemon said

private:
    std::string path_;
};

struct Result {
    int exit = -1; // the exit status; 128 and the signal's number if that ended it
    std::string out;
    std::string err;
};

// Runs a program of this build to its end, in the directory and with `input` on its standard input. With `closed`,
// whoever should read its standard output has gone.
Result Run(const HostDirectory &directory, std::vector<std::string> words, const std::string &input = "",
           bool closed = false);

} // namespace program
