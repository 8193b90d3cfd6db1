#include "tools/ctl/cli/stop_signals.h"

#include "base/src/util/stop_signals.h"
#include "tools/ctl/cli/failure.h"

#include <array>
#include <csignal>
#include <poll.h>

namespace ctl {
namespace {

constexpr std::array kSignals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};

} // namespace

StopSignals::StopSignals()
    : fd_(rkb::catch_stop_signals(kSignals))
{
    if (fd_ < 0)
        throw Failure(kNoAccess, "no pipe for signals: too many files are open");
}

bool StopSignals::stopped() const
{
    return rkb::stop_signal_arrived();
}

void StopSignals::interruptCalls() const
{
    for (const int number : kSignals) {
        struct sigaction action { };
        sigaction(number, nullptr, &action);
        action.sa_flags &= ~SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}

int StopSignals::fd() const
{
    return fd_;
}

bool StopSignals::wait(int milliseconds) const
{
    pollfd entry{fd_, POLLIN, 0};
    return poll(&entry, 1, milliseconds) > 0 || stopped();
}

} // namespace ctl
