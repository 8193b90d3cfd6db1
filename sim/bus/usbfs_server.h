// Puts a Usbfs at the end of a testbed node's ioctls.
#pragma once

#include "sim/bus/usbfs.h"

#include <umockdev.h>

namespace sim {

// From now until the testbed is gone, ioctls on `node` ("/dev/bus/usb/...") go
// to `usbfs`, on umockdev's thread; the testbed shares its ownership. Throws
// std::runtime_error.
void serveIoctls(
    UMockdevTestbed* testbed, const std::string& node, const std::shared_ptr<Usbfs>& usbfs);

} // namespace sim
