#include "tools/ctl/cli/stop_signals.h"

#include "tools/ctl/cli/command.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace ctl {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
constexpr int64_t kNanoseconds = 1'000'000'000; // per second

// Used by the handler. Never closed, because a signal may arrive until the process ends.
std::array<int, 2> ends{-1, -1};      // of the pipe: read, write
std::atomic<int64_t> firstSignal = 0; // when it arrived, 0 before
static_assert(std::atomic<int64_t>::is_always_lock_free);

int64_t now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return int64_t{time.tv_sec} * kNanoseconds + time.tv_nsec;
}

// Calls only async-signal-safe functions.
extern "C" void stopOnSignal(int number)
{
    const int error = errno;
    const int64_t time = now();
    int64_t first = 0;
    if (firstSignal.compare_exchange_strong(first, time)) {
        const char byte = 0;
        // The pipe is empty, so there is room.
        [[maybe_unused]] const ssize_t written = write(ends[1], &byte, 1);
    } else if (time - first > kNanoseconds) {
        std::signal(number, SIG_DFL);
        static_cast<void>(raise(number)); // delivered when this handler returns
    }
    errno = error;
}

} // namespace

StopSignals::StopSignals()
{
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw Failure(kNoAccess, "no pipe for signals: too many files are open");
    for (const int number : kSignals) {
        struct sigaction action { };
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = stopOnSignal;
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}

bool StopSignals::stopped() const
{
    return firstSignal != 0;
}

int StopSignals::fd() const
{
    return ends[0];
}

bool StopSignals::wait(int milliseconds) const
{
    pollfd entry{ends[0], POLLIN, 0};
    return poll(&entry, 1, milliseconds) > 0 || stopped();
}

} // namespace ctl
