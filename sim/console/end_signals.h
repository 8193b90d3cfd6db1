// The signals that end a run.
#pragma once

#include "sim/bus/file_descriptor.h"
#include "sim/control/event_source.h"

#include <functional>
#include <list>

namespace sim {

// From its creation, SIGINT, SIGTERM, SIGHUP and SIGQUIT no longer end the process, but call a
// function in GLib's default main context. A signal that was ignored before stays ignored. To be
// made before the process has other threads.
class EndSignals {
public:
    explicit EndSignals(std::function<void(int signal)> onSignal);
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

private:
    template <int signal>
    void watch();
    void watchQuit();

    const std::function<void(int signal)> onSignal_;
    FileDescriptor quit_;
    std::list<EventSource> sources_;
};

} // namespace sim
