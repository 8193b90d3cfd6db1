// Ends the program on SIGINT, SIGQUIT, SIGTERM and SIGHUP as closing the window does, so that the
// device is left on-hook and its kernel driver attached again.
#pragma once

#include <QSocketNotifier>

#include <memory>

// Create one on the GUI thread, after the application object; destroy it before the application. A
// process has at most one.
//
// The first signal quits the event loop, which returns 0. A signal that was ignored when the
// program started stays ignored; nohup relies on this. The handlers stay until the process ends,
// because the device is closed last: a signal more than 1 s after the first ends the process at
// once, in case the device does not respond. Signals within that second are ignored, because
// timeout(1) and closing terminals send the same signal twice.
class QuitSignals {
public:
    // If no pipe can be created, the signals keep their default action.
    QuitSignals();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
