// Delays Ctrl-C and the like.
#pragma once

#include <csignal>

namespace ctl {

// While an object exists, the signals that end a program are not delivered to its thread, nor to
// threads that the thread starts meanwhile. Those that arrived are delivered when it is destroyed.
// Keeps a kernel driver from staying detached. The destructor must run on the same thread.
class SignalHold {
public:
    SignalHold();
    ~SignalHold();
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;

private:
    sigset_t before_{};
};

} // namespace ctl
