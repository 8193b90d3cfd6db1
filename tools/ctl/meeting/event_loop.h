// Waiting in Qt's event loop.
#pragma once

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/meeting/journal.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <chrono>
#include <functional>
#include <optional>

namespace ctl {

// Owns the application object and catches the signals, so a process has at most one. Belongs to the
// thread that creates it.
class EventLoop {
public:
    using Condition = std::function<bool()>;

    // Thrown while waiting when a signal asks the program to end.
    struct Stopped { };

    // Throws Failure.
    EventLoop();

    // Processes events and delivers the journal's entries until the condition is true. Checks it
    // first, then after every event, and every 10 ms if there is a limit. False after the limit.
    // Throws Stopped, and what the condition and the journal's listener threw.
    bool waitUntil(Journal& journal, const Condition& condition,
        std::optional<std::chrono::milliseconds> limit = std::nullopt);

private:
    QCoreApplication application_;
    const StopSignals signals_;
    QSocketNotifier wakeUp_;
};

} // namespace ctl
