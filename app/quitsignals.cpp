#include "app/quitsignals.h"

#include <QCoreApplication>

#include <array>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array kSignals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};
constexpr int64_t kNanoseconds = 1'000'000'000; // per second
constexpr int64_t kRepeatTime = kNanoseconds;

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
extern "C" void quitOnSignal(int number)
{
    const int error = errno;
    const int64_t time = now();
    int64_t first = 0;
    if (firstSignal.compare_exchange_strong(first, time)) {
        const char byte = 0;
        // The pipe is empty, so there is room.
        [[maybe_unused]] const ssize_t written = write(ends[1], &byte, 1);
    } else if (time - first > kRepeatTime) {
        std::signal(number, SIG_DFL);
        static_cast<void>(raise(number)); // delivered when this handler returns
    }
    errno = error;
}

void handle(int number)
{
    struct sigaction action { };
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = quitOnSignal;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

} // namespace

QuitSignals::QuitSignals()
{
    assert(ends[0] < 0);
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    // The byte stays in the pipe, so the notifier also fires in an event loop that starts later.
    m_notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &QCoreApplication::quit);
    for (const int number : kSignals)
        handle(number);
}
