#include "sim/console/end_signals.h"

#include <glib-unix.h>
#include <sys/signalfd.h>

#include <csignal>

namespace sim {
namespace {

// As by nohup.
bool isIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

EndSignals::EndSignals(std::function<void(int signal)> onSignal)
    : onSignal_(std::move(onSignal))
{
    watch<SIGINT>();
    watch<SIGTERM>();
    watch<SIGHUP>();
    watchQuit();
}

template <int signal>
void EndSignals::watch()
{
    if (isIgnored(signal))
        return;
    const auto onSignal = +[](gpointer self) -> gboolean {
        static_cast<EndSignals*>(self)->onSignal_(signal);
        return G_SOURCE_CONTINUE;
    };
    sources_.emplace_back(g_unix_signal_add(signal, onSignal, this));
}

// g_unix_signal_add() does not take SIGQUIT.
void EndSignals::watchQuit()
{
    if (isIgnored(SIGQUIT))
        return;
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGQUIT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    quit_ = FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    const auto onReadable = +[](int file, GIOCondition, gpointer self) -> gboolean {
        signalfd_siginfo info = {};
        if (read(file, &info, sizeof info) == sizeof info)
            static_cast<EndSignals*>(self)->onSignal_(SIGQUIT);
        return G_SOURCE_CONTINUE;
    };
    sources_.emplace_back(g_unix_fd_add(quit_.get(), G_IO_IN, onReadable, this));
}

} // namespace sim
