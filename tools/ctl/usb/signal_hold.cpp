#include "tools/ctl/usb/signal_hold.h"

#include <initializer_list>

namespace ctl {

SignalHold::SignalHold()
{
    sigset_t held{};
    sigemptyset(&held);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        sigaddset(&held, number);
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

SignalHold::~SignalHold()
{
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

} // namespace ctl
