// Runs a fuzz harness over the files of some folders, so that the inputs are a test in every build and with any
// compiler.
#include "promise.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

int main(int count, char **words)
{
    int inputs = 0;
    for (int i = 1; i < count; ++i)
        for (const auto &entry : std::filesystem::directory_iterator(words[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
            ++inputs;
        }
    std::printf("%d inputs\n", inputs);
    return inputs == 0 ? 1 : 0;
}
