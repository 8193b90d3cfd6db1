// Catches the signals that end a program, so that it can end in its own way.
#pragma once

#include <span>

namespace rkb {

// From now on each of `signals` makes the returned file descriptor readable instead of ending the
// process. It stays readable and open until the process ends; never read from it. Returns -1, with
// the signals unchanged, if no pipe can be created.
//
// A signal that is ignored already stays ignored. A signal that arrives more than 1 s after the
// first ends the process at once, in case a device does not respond. Signals within that second are
// dropped, because timeout(1) and closing terminals send the same signal twice.
//
// To be called at most once per process.
[[nodiscard]] int catch_stop_signals(std::span<const int> signals);

// The descriptor that catch_stop_signals() returned, -1 before.
[[nodiscard]] int stop_signal_fd();

// Whether a caught signal has arrived. Any thread, and in signal handlers.
[[nodiscard]] bool stop_signal_arrived();

} // namespace rkb
