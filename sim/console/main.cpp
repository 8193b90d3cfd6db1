// kelprobe-sim: runs a program with simulated USB HID devices.
#include "sim/console/console.h"
#include "sim/console/session.h"

#include <cstdio>
#include <exception>
#include <string_view>

namespace {

constexpr int kUsageError = 2;

void printHelp(FILE* file)
{
    fputs("usage: kelprobe-sim run [PROFILE...] -- PROGRAM [ARGUMENT...]\n"
          "       kelprobe-sim list\n"
          "       kelprobe-sim help\n"
          "\n"
          "run plugs in a device per PROFILE (speakerphone unless told otherwise), runs\n"
          "PROGRAM with them and ends with its exit status. Standard output tells what the\n"
          "devices receive and send; PROGRAM's output goes to standard error. Commands are\n"
          "read from standard input, the end of which does not end PROGRAM.\n"
          "\n",
        file);
    fputs(sim::commandHelp().data(), file);
}

int list()
{
    for (const sim::Profile& profile : sim::profiles())
        printf("%-16s %04x:%04x  %s\n", profile.name.data(), profile.info.vendorId,
            profile.info.productId, profile.description.data());
    return 0;
}

int misuse()
{
    printHelp(stderr);
    return kUsageError;
}

int run(char** arguments)
{
    std::vector<const sim::Profile*> profiles;
    for (; *arguments && std::string_view(*arguments) != "--"; ++arguments) {
        profiles.push_back(sim::findProfile(*arguments));
        if (!profiles.back()) {
            fprintf(
                stderr, "kelprobe-sim: no profile %s; kelprobe-sim list shows them\n", *arguments);
            return kUsageError;
        }
    }
    if (!arguments[0] || !arguments[1])
        return misuse();
    if (profiles.empty())
        profiles.push_back(&sim::profiles().front());
    return sim::runSession(profiles, arguments + 1);
}

} // namespace

int main(int, char** argv)
{
    try {
        const std::string_view command = argv[0] && argv[1] ? argv[1] : "";
        if (command == "run")
            return run(argv + 2);
        if (command == "list")
            return list();
        if (command != "help")
            return misuse();
        printHelp(stdout);
        return 0;
    } catch (const std::exception& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return 1;
    }
}
