// Connects a Usbfs to the ioctls of a testbed's node.
#pragma once

#include "sim/bus/usbfs.h"

#include <umockdev.h>

namespace sim {

// Makes `usbfs` handle the ioctls on `node` ("/dev/bus/usb/..."), on umockdev's thread. The testbed
// shares its ownership until it is destroyed itself. Throws std::runtime_error.
void serveIoctls(
    UMockdevTestbed* testbed, const std::string& node, const std::shared_ptr<Usbfs>& usbfs);

} // namespace sim
