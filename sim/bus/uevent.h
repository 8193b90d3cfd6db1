// The kernel's messages about devices that appear and disappear.
#pragma once

#include <string>

namespace sim {

struct Uevent {
    std::string action;     // "add" or "remove"
    std::string devicePath; // below /sys
    std::string node;       // "/dev/bus/usb/..."
};

// Sends to every process that listens in the testbed at `root`; there may be none, and no testbed.
// Works with and without umockdev's library preloaded.
void broadcast(const std::string& root, const Uevent& event);

// Waits until each process that listens has room for a message, at most five seconds for each.
void waitForListeners(const std::string& root);

} // namespace sim
