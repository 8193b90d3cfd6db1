#include "base/src/util/stop_signals.h"

#include <array>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace rkb {

namespace {

constexpr int64_t nanoseconds = 1'000'000'000; // per second
constexpr int64_t repeat_time = nanoseconds;

// Used by the handler. Never closed, because a signal may arrive until the process ends.
std::array<int, 2> pipe_ends{-1, -1};  // read, write
std::atomic<int64_t> first_signal = 0; // when it arrived, 0 before
static_assert(std::atomic<int64_t>::is_always_lock_free);

int64_t now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return int64_t{time.tv_sec} * nanoseconds + time.tv_nsec;
}

// Calls only async-signal-safe functions.
extern "C" void handle_stop_signal(int number)
{
    const int error = errno;
    const int64_t time = now();
    int64_t first = 0;
    if (first_signal.compare_exchange_strong(first, time)) {
        const char byte = 0;
        // The pipe is empty, so there is room.
        [[maybe_unused]] const ssize_t written = write(pipe_ends[1], &byte, 1);
    } else if (time - first > repeat_time) {
        std::signal(number, SIG_DFL);
        static_cast<void>(raise(number)); // delivered when this handler returns
    }
    errno = error;
}

void catch_signal(int number)
{
    struct sigaction action { };
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = handle_stop_signal;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

} // namespace

int catch_stop_signals(std::span<const int> signals)
{
    assert(pipe_ends[0] < 0);
    if (pipe2(pipe_ends.data(), O_CLOEXEC) != 0)
        return -1;
    for (const int number : signals)
        catch_signal(number);
    return pipe_ends[0];
}

int stop_signal_fd()
{
    return pipe_ends[0];
}

bool stop_signal_arrived()
{
    return first_signal != 0;
}

} // namespace rkb
