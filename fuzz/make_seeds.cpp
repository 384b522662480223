// Makes the fuzzers' first inputs from the daemon's tables: each operation with a reply of the right layout, and each
// request that an operation sends.
#include "promise.h"

#include "host/daemon/daemon.h"
#include "host/daemon/scenario/generator.h"
#include "tests/support/operations.h"

#include <filesystem>
#include <fstream>

namespace {

void Write(const std::filesystem::path &path, const std::string &bytes)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    Must(file.good(), "every seed can be written");
}

} // namespace

int main(int count, char **words)
{
    Must(count == 2, "usage: make_seeds DIRECTORY");
    const std::filesystem::path directory = words[1];
    rsvpsimd::Daemon daemon;
    for (const rsvpsimd::RowKind &kind : rsvpsimd::AllRowKinds())
        rsvpsimd::MakeRows(daemon.GetDevice(), kind.name, 9);

    for (size_t i = 0; i < scripted::Operations().size(); ++i) {
        const scripted::Operation &operation = scripted::Operations()[i];
        const scripted::Bytes request = scripted::Hex(operation.request);
        const auto item = static_cast<uint16_t>(scripted::GetNet16(request, rsvpsimd::kHeaderSize));
        const rsvpsimd::RowKind *kind = rsvpsimd::FindRowKind(item);
        rsvpsimd::Bytes asked(request.begin(), request.end());
        if (operation.answer.size != 0 && kind != nullptr) { // the table's keys match no row: ask for the first
            rsvpsimd::Bytes body;
            rsvpsimd::AppendItem(body, item, rsvpsimd::Bytes(kind->FirstKeySize()));
            asked = rsvpsimd::BuildFrame(rsvpsimd::kShow, rsvpsimd::kGetFirst, rsvpsimd::kOk, body);
        }
        const rsvpsimd::Bytes reply = daemon.Answer(asked).frame;
        const std::string name = std::to_string(i) + "-" + operation.name;
        const std::string front{static_cast<char>(i), 4, 0, 0, 7, 0};
        Write(directory / "fuzz_operation" / name,
              front + std::string(reply.begin() + rsvpsimd::kHeaderSize, reply.end()));
        Write(directory / "fuzz_items" / name,
              std::string(1, '\0') + std::string(reply.begin() + rsvpsimd::kHeaderSize, reply.end()));
        const char length[] = {static_cast<char>(request.size() >> 8), static_cast<char>(request.size())};
        Write(directory / "fuzz_daemon" / name, '\xff' + std::string(length, 2) + request);
    }
    return 0;
}
