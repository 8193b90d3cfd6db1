// bench-program [PART...]: measures Kelprobe and bare programs that do the same, and prints a
// table. Needs a separate display.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <string_view>

namespace {

struct Part {
    std::string_view name;
    void (*measure)(sim::UsbBus& bus);
};

constexpr std::array kParts{
    Part{"start", bench::measureStartAndMemory},
    Part{"idle", bench::measureIdle},
    Part{"press", bench::measurePress},
    Part{"click", bench::measureClick},
    Part{"log", bench::measureLogList},
    Part{"descriptor", bench::measureDescriptors},
    Part{"commands", bench::measureCommands},
    Part{"trace", bench::measureTrace},
    Part{"monitor", bench::measureMonitor},
};

int run(const std::vector<std::string_view>& wanted)
{
    sim::UsbBus bus;
    bench::printHead();
    for (const Part& part : kParts)
        if (wanted.empty() || std::find(wanted.begin(), wanted.end(), part.name) != wanted.end())
            part.measure(bus);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char* argv[])
{
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench-program: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
