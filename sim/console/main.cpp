// kelprobe-sim: runs a program with simulated USB HID devices.
#include "sim/console/command_line.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace {

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
    const int status = sim::runCommandLine(argc, argv);
    if (status == EXIT_SUCCESS && (fflush(stdout) != 0 || ferror(stdout))) {
        perror("kelprobe-sim: standard output");
        return EXIT_FAILURE;
    }
    return status;
}
