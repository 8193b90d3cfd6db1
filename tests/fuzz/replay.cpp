// Runs a fuzz target once over each file of the directories given. A file *.hex is read as
// hexadecimal digits with # lines left out, any other as it is.
#include "tests/support/device_file.h"

#include <cstdio>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

std::vector<uint8_t> contents(const std::filesystem::path& path)
{
    if (path.extension() == ".hex")
        return test::bytesFromHexFile(path);
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

int main(int argc, char** argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::vector<uint8_t> bytes = contents(entry.path());
            // Each beginning of a seed is one too: that is what a device's short answer leaves.
            // With its last byte damaged it is another.
            for (; !bytes.empty(); bytes.pop_back()) {
                LLVMFuzzerTestOneInput(std::vector(bytes).data(), bytes.size());
                bytes.back() ^= 0xFF;
                LLVMFuzzerTestOneInput(std::vector(bytes).data(), bytes.size());
            }
            ++count;
        }
    std::printf("%d seeds\n", count);
    return count > 0 ? 0 : 1;
}
