#include "tools/ctl/cli/write_all.h"

#include "base/src/util/stop_signals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>

namespace ctl {
namespace {

// False if a stop signal arrives and the file still cannot be written.
bool waitForRoom(int fd)
{
    std::array<pollfd, 2> files{{{fd, POLLOUT, 0}, {rkb::stop_signal_fd(), POLLIN, 0}}};
    while (poll(files.data(), files.size(), -1) < 0 && errno == EINTR) { }
    return files[0].revents != 0;
}

} // namespace

int writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty() && waitForRoom(fd)) {
        // So many do not block in a pipe that has room.
        const size_t part = std::min<size_t>(bytes.size(), PIPE_BUF);
        const ssize_t size = ::write(fd, bytes.data(), part);
        if (size >= 0)
            bytes.remove_prefix(static_cast<size_t>(size));
        else if (errno != EINTR && errno != EAGAIN)
            return errno;
    }
    return 0;
}

} // namespace ctl
