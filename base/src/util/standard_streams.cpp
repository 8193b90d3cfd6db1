#include "base/src/util/standard_streams.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

void rkb::protect_standard_streams()
{
    // open() takes the lowest free number, so the stream that is closed. A program that is started
    // finds it closed again.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF
            && open("/dev/null", O_RDWR | O_CLOEXEC) != stream)
            _exit(1); // there is no /dev/null
    // A program that is started would inherit SIG_IGN, but no handler.
    if (std::signal(SIGPIPE, [](int) {}) == SIG_IGN)
        std::signal(SIGPIPE, SIG_IGN);
}
