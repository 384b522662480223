// Opening of input files. Two names are the same file if device and number agree, pipes and terminals among them.
#include "tools/rsvpctl/command/input_file.h"

#include "tools/rsvpctl/print/usage_error.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <optional>
#include <sys/stat.h>
#include <system_error>

namespace rsvpctl {
namespace {

std::optional<struct stat> reserved;

[[noreturn]] void Refuse(const std::string &option, const std::string &name, const std::string &problem)
{
    throw UsageError(fmt::format("{}: {}: {}", option, name, problem));
}

} // namespace

ReservedInput::ReservedInput(const InputFile &file)
{
    struct stat found {};
    if (fstat(fileno(file.get()), &found) != 0)
        throw std::system_error(errno, std::generic_category(), "fstat");
    reserved = found;
}

ReservedInput::~ReservedInput()
{
    reserved.reset();
}

void InputCloser::operator()(FILE *file) const
{
    if (file != stdin)
        (void)std::fclose(file); // only read from
}

InputFile OpenInput(const std::string &option, const std::string &name)
{
    InputFile file(name == "-" ? stdin : std::fopen(name.c_str(), "rbe"));
    struct stat found {};
    if (file == nullptr || fstat(fileno(file.get()), &found) != 0)
        Refuse(option, name, std::strerror(errno));
    if (reserved && reserved->st_dev == found.st_dev && reserved->st_ino == found.st_ino)
        Refuse(option, name, "this is the batch itself; name another file");
    return file;
}

std::string ReadInput(const std::string &option, const std::string &name, size_t most)
{
    const InputFile file = OpenInput(option, name);
    std::string text(most + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    if (std::ferror(file.get()) != 0)
        Refuse(option, name, std::strerror(errno));
    if (text.size() > most)
        Refuse(option, name, fmt::format("has more than {} bytes", most));
    return text;
}

} // namespace rsvpctl
