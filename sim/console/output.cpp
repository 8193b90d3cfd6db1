#include "sim/console/output.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>

namespace sim {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The program and others share the file description of a pipe or terminal, so that it must not be
// made non-blocking. An open file of our own can be. Fails for sockets and the like.
FileDescriptor reopen(int file)
{
    struct stat status = {};
    if (fstat(file, &status) != 0 || !(S_ISFIFO(status.st_mode) || isatty(file)))
        return FileDescriptor(-1);
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    return FileDescriptor(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

} // namespace

Output::Output(int file)
    : reopened_(reopen(file))
    , file_(reopened_.get() >= 0 ? reopened_.get() : file)
{
}

void Output::print(std::string_view line)
{
    if (error_)
        return;
    text_ += line;
    text_ += '\n';
    if (isFull())
        write();
    watch();
}

bool Output::waitForRoom(milliseconds limit) const
{
    pollfd room{file_, POLLOUT, 0};
    return poll(&room, 1, static_cast<int>(limit.count())) > 0;
}

// A pipe that is ready takes PIPE_BUF bytes without blocking.
ssize_t Output::writeSome(std::string_view text)
{
    const ssize_t size = ::write(file_, text.data(), std::min<size_t>(text.size(), PIPE_BUF));
    if (size >= 0)
        return size;
    if (errno != EAGAIN && errno != EINTR)
        error_ = errno;
    return 0;
}

void Output::write()
{
    size_t written = 0;
    while (written < text_.size() && waitForRoom(milliseconds(0))) {
        const ssize_t size = writeSome(std::string_view(text_).substr(written));
        if (size <= 0)
            break;
        written += static_cast<size_t>(size);
    }
    text_.erase(0, error_ ? text_.npos : written);
    watch();
}

void Output::finish(milliseconds limit)
{
    const auto deadline = Clock::now() + limit;
    for (auto left = limit; !text_.empty() && left.count() > 0;
         left = std::chrono::ceil<milliseconds>(deadline - Clock::now())) {
        if (waitForRoom(left))
            write();
    }
    text_.clear();
    watch();
}

void Output::watch()
{
    if (text_.empty()) {
        source_.reset();
    } else if (!source_) {
        const auto onReady = +[](int, GIOCondition, gpointer self) -> gboolean {
            static_cast<Output*>(self)->write();
            return G_SOURCE_CONTINUE;
        };
        source_.emplace(g_unix_fd_add(file_, G_IO_OUT, onReady, this));
    }
}

} // namespace sim
