// A device node for which poll() has the same results as for a usbfs node.
#pragma once

#include "sim/bus/file_descriptor.h"

#include <string>

namespace sim {

// The slave of a pseudo terminal. Flow control makes it writable or not ("a transfer can be
// reaped"); closing the master raises POLLERR ("the device is gone"). All clients that have the
// node open share this state. Not locked.
class PtyNode {
public:
    PtyNode(); // throws std::system_error; not ready

    // The path to open instead of the device node.
    const std::string& path() const { return path_; }

    void setReady(bool ready);
    // Whether this user may open the node; at first, yes. If not, opening fails with EACCES, even
    // for root if the client has our preload library. Clients that have the node open keep it open.
    // Throws std::system_error.
    void setOpenable(bool openable);
    // The last call: the others must not follow.
    void hangUp();

private:
    FileDescriptor master_;
    FileDescriptor slave_;
    std::string path_;
    bool ready_ = true;
};

} // namespace sim
