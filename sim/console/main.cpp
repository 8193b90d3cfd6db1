// kelprobe-sim: runs a program with simulated USB HID devices.
#include "sim/console/command_line.h"
#include "sim/console/session.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

constexpr int kUsageError = 2;

void printProfiles()
{
    for (const sim::Profile& profile : sim::profiles())
        printf("%-16s %04x:%04x  %s\n", profile.name.data(), profile.info.vendorId,
            profile.info.productId, profile.description.data());
}

struct Execute {
    int operator()(const sim::RunCommand& run) const
    {
        return sim::runSession(run.profiles, run.program);
    }
    int operator()(sim::ListCommand) const
    {
        printProfiles();
        return EXIT_SUCCESS;
    }
    int operator()(sim::HelpCommand) const
    {
        fputs(sim::helpText().c_str(), stdout);
        return EXIT_SUCCESS;
    }
    int operator()(sim::VersionCommand) const
    {
        puts("kelprobe-sim " KELPROBE_VERSION);
        return EXIT_SUCCESS;
    }
    int operator()(const sim::UsageError& error) const
    {
        fprintf(stderr, "kelprobe-sim: %s\nTry kelprobe-sim --help.\n", error.text.c_str());
        return kUsageError;
    }
};

// Opens /dev/null for each standard stream that is closed. Otherwise the next file that is opened
// would take its number and be read as input or written to as output.
void openStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF && open("/dev/null", O_RDWR) != stream)
            _exit(EXIT_FAILURE); // there is no /dev/null
}

} // namespace

int main(int argc, char** argv)
{
    openStandardStreams();
    try {
        const int status = std::visit(Execute(), sim::parseCommandLine(argv + (argc > 0 ? 1 : 0)));
        if (status == EXIT_SUCCESS && fflush(stdout) != 0) {
            perror("kelprobe-sim: standard output");
            return EXIT_FAILURE;
        }
        return status;
    } catch (const std::exception& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
