// A device node that poll() sees as it would see a usbfs node.
#pragma once

#include "sim/bus/file_descriptor.h"

#include <string>

namespace sim {

// The slave of a pseudo terminal: flow control makes it look writable or not
// ("a transfer can be reaped"), closing the master raises POLLERR ("the device
// is gone"). The state is the node's: all who have it open see the same.
class PtyNode {
public:
    PtyNode(); // throws std::system_error; not ready

    // The path to open instead of the device node.
    const std::string& path() const { return path_; }

    void setReady(bool ready);
    void setOpenable(bool openable); // by this user; if not, opening gives EACCES. At first, yes.
    void hangUp();

private:
    FileDescriptor master_;
    FileDescriptor slave_;
    std::string path_;
    bool ready_ = true;
};

} // namespace sim
