// Ends a command on Ctrl-C and the like, so that it can leave the device as it found it.
#pragma once

namespace ctl {

// From the creation of the object, SIGINT, SIGQUIT, SIGTERM and SIGHUP set a flag instead of ending
// the process. A signal that was ignored when the program started stays ignored. A second signal
// more than a second after the first ends the process at once, in case a device does not respond.
// The handlers stay when the object is destroyed. A process has at most one object.
class StopSignals {
public:
    // Throws Failure.
    StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // Whether a signal has arrived. Any thread.
    [[nodiscard]] bool stopped() const;

    // From now on a signal makes a blocking call fail with EINTR, also one that reads a file.
    // Otherwise such calls continue.
    void interruptCalls() const;

    // Becomes and stays readable when a signal arrives, for poll(). Never read from it.
    [[nodiscard]] int fd() const;

    // Waits until a signal arrives, for at most that long. Returns stopped(). Any thread.
    [[nodiscard]] bool wait(int milliseconds) const;

private:
    const int fd_;
};

} // namespace ctl
