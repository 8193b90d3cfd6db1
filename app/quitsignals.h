// Ends the program on SIGINT, SIGTERM and SIGHUP as closing the window does, so that the device is
// left on-hook and its kernel driver attached again.
#pragma once

#include <QSocketNotifier>

#include <memory>

// Create one on the GUI thread, after the application object; destroy it before the application.
// A process has at most one.
//
// The first signal quits the event loop, which returns 0. A signal that the program was started to
// ignore, as nohup does, stays ignored. The handlers stay until the process ends, because the
// device is closed last: a signal more than a second after the first ends the process at once, in
// case the device does not respond. Earlier ones are ignored, because timeout(1) and closing
// terminals send the same signal twice.
class QuitSignals {
public:
    // If there is no pipe to be had, the signals keep their default action.
    QuitSignals();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
