// The nodes of the device are a text file that a developer edits. A file with a mistake is refused as a whole, so
// that no call ever acts on half of it.
#include "platform/device.h"
#include "host/platform/checked_directory.h"
#include "host/platform/files.h"
#include "host/platform/nodes.h"
#include "host/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>

namespace rsvp_host {

namespace {

constexpr std::string_view kDefaultNodes = R"(# The nodes of the device.
#
#   master N       exactly once: the node that is the system master
#   standby N ...  any number of lines and nodes, none too: the nodes that stand by (64 at most)
#
# A node is a number from 1 to 65535 and stands here once. '#' begins a comment. Changes count at once.
master 1
standby 2 3
)";

bool Named(const Nodes &nodes, uint16_t node)
{
    const auto *end = nodes.standby + nodes.standbyCount;
    return node == nodes.master || std::find(nodes.standby, end, node) != end;
}

const char *AddNode(std::string_view keyword, std::string_view word, Nodes &nodes)
{
    const auto node = static_cast<uint16_t>(ReadDecimal(word, 65535).value_or(0));
    if (node == 0)
        return "has a node that is not a number from 1 to 65535";
    if (Named(nodes, node))
        return "names a node twice";
    if (keyword == "master") {
        if (nodes.master != 0)
            return "names a second master";
        nodes.master = node;
        return nullptr;
    }
    if (nodes.standbyCount == std::size(nodes.standby))
        return "has more than 64 standby nodes";
    nodes.standby[nodes.standbyCount++] = node;
    return nullptr;
}

const char *ParseLine(std::string_view line, Nodes &nodes)
{
    line = line.substr(0, line.find('#'));
    const std::string_view keyword = NextWord(line);
    if (!keyword.empty() && keyword != "master" && keyword != "standby")
        return "has a line that begins with neither \"master\" nor \"standby\"";
    for (std::string_view word = NextWord(line); !word.empty(); word = NextWord(line))
        if (const char *problem = AddNode(keyword, word, nodes); problem != nullptr)
            return problem;
    return nullptr;
}

// Creates the directory and the file if they are missing, as on the first question about a device. Returns an empty
// string, or a sentence that says what is wrong.
std::string PrepareNodes(Nodes &nodes)
{
    const std::string directory = DirectoryPath();
    if (std::string problem = PrepareDirectory(directory); !problem.empty())
        return problem;
    const std::string file = PathOf(directory, kNodesFile);
    if (access(file.c_str(), F_OK) != 0 && errno == ENOENT) {
        if (const int error = ReplaceFile(file.c_str(), kDefaultNodes); error != 0)
            return file + " cannot be created: " + std::strerror(error);
    }
    const Problem problem = ReadNodes(directory.c_str(), nodes);
    return problem ? problem.Sentence(directory.c_str()) : "";
}

// The fast path of every later question: no heap, and nothing is created.
bool NodesAtHand(Nodes &nodes)
{
    char directory[kDirectoryRoom];
    if (FindDirectory(directory) != 0)
        return false;
    return access(FilePath(directory, kNodesFile).Get(), F_OK) == 0 && !ReadNodes(directory, nodes);
}

// Whether the nodes are known. If not, the callers get a code that says nothing, so the reason is printed.
bool FindNodes(Nodes &nodes)
{
    if (NodesAtHand(nodes))
        return true;
    const std::string problem = PrepareNodes(nodes);
    if (!problem.empty())
        TellOnce(problem);
    return problem.empty();
}

} // namespace

Problem ReadNodes(const char *directory, Nodes &nodes)
{
    nodes = {};
    char content[4096];
    const int length = ReadFile(FilePath(directory, kNodesFile).Get(), content, sizeof(content));
    if (length < 0 && length != -ENOENT)
        return {kNodesFile, "cannot be read", -length};
    if (length == sizeof(content))
        return {kNodesFile, "has 4096 bytes or more"};
    std::string_view text = length < 0 ? kDefaultNodes : std::string_view(content, static_cast<size_t>(length));
    while (!text.empty())
        if (const char *problem = ParseLine(CutOff(text, "\n"), nodes); problem != nullptr)
            return {kNodesFile, problem};
    return nodes.master != 0 ? Problem() : Problem(kNodesFile, "names no master");
}

} // namespace rsvp_host

extern "C" {

// If the device cannot be read, the master is 0, which is not a node, so everything asked of it fails.
uint32_t DEV_GetSystemMaster(void)
{
    return rsvp_host::WithoutExceptions(0U, [] {
        rsvp_host::Nodes nodes;
        return rsvp_host::FindNodes(nodes) ? uint32_t{nodes.master} : 0U;
    });
}

uint16_t *DEV_GetAllStandbyNodes(uint32_t *count)
{
    rsvp_host::Nodes nodes;
    if (count == nullptr || !rsvp_host::WithoutExceptions(false, [&] { return rsvp_host::FindNodes(nodes); }))
        return nullptr;
    // A device without standby nodes has an empty list, not a null one.
    auto *list = static_cast<uint16_t *>(std::malloc(sizeof(nodes.standby)));
    if (list == nullptr)
        return nullptr;
    std::copy_n(nodes.standby, nodes.standbyCount, list);
    *count = nodes.standbyCount;
    return list;
}

} // extern "C"
