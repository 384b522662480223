// Runs programs as a user does, on a device of their own: a private host directory, which is removed afterwards
// together with the daemon that was started in it. If the build is for another processor, they run under its
// emulator.
#ifndef TESTS_SUPPORT_PROGRAM_H
#define TESTS_SUPPORT_PROGRAM_H

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

    // Makes it the device of this process and of the programs that it starts from now on.
    void Use() const;

    std::string PathOf(std::string_view name) const { return path_ + "/" + std::string(name); }
    void Write(std::string_view name, const std::string &text) const;
    std::string Read(std::string_view name) const; // empty if there is no such file
    std::string Log() const;                       // what the daemon said

private:
    std::string path_;
};

struct Result {
    int exit = -1; // the exit status, or 128 plus the number of the signal that ended it
    std::string out;
    std::string err;
};

// What a program's standard output is: a file, a pipe that nobody reads, or closed.
enum class Output { Kept, ReaderGone, Closed };

// Runs a program of this build to its end, in the directory and with `input` on its standard input.
Result Run(const HostDirectory &directory, std::vector<std::string> words, const std::string &input = "",
           Output output = Output::Kept);

} // namespace program

#endif
