// Runs a fuzz target over seeds: replay-NAME DIRECTORY...
// Or writes them to a directory as libFuzzer reads them: replay-NAME --write TO DIRECTORY...
//
// A file *.hex is read as a descriptor file, any other as it is; *.md is left out.
#include "tests/support/device_file.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Bytes = std::vector<uint8_t>;
using Seeds = std::map<std::string, Bytes>; // by file name

Seeds seedsOf(char** directories, char** end)
{
    Seeds seeds;
    for (; directories != end; ++directories)
        for (const std::filesystem::path& path :
            std::filesystem::directory_iterator(*directories)) {
            std::ifstream file(path, std::ios::binary);
            if (path.extension() == ".hex")
                seeds[path.filename()] = test::bytesFromHexFile(path);
            else if (path.extension() != ".md")
                seeds[path.filename()] = {std::istreambuf_iterator<char>(file), {}};
        }
    return seeds;
}

void writeSeeds(const std::filesystem::path& directory, const Seeds& seeds)
{
    std::filesystem::create_directories(directory);
    for (const auto& [name, bytes] : seeds) {
        std::ofstream file(directory / std::filesystem::path(name).stem(), std::ios::binary);
        file.exceptions(std::ios::failbit | std::ios::badbit);
        std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
        file.flush();
    }
}

// Every beginning of the seed is an input too, which is what a cut-off transfer gives, and so is
// each of them with its last byte damaged.
void replay(Bytes seed)
{
    for (; !seed.empty(); seed.pop_back()) {
        LLVMFuzzerTestOneInput(Bytes(seed).data(), seed.size());
        seed.back() ^= 0xFF;
        LLVMFuzzerTestOneInput(Bytes(seed).data(), seed.size());
    }
}

} // namespace

int main(int argc, char** argv)
{
    const bool writes = argc > 2 && std::string(argv[1]) == "--write";
    const Seeds seeds = seedsOf(argv + (writes ? 3 : 1), argv + argc);
    if (writes) {
        writeSeeds(argv[2], seeds);
    } else {
        for (const auto& [name, seed] : seeds)
            replay(seed);
    }
    std::printf("%zu seeds\n", seeds.size());
    return seeds.empty() ? 1 : 0;
}
