// An emulated USB bus that libusb programs find instead of the machine's.
#pragma once

#include "sim/bus/usbfs.h"

#include <umockdev.h>

#include <deque>
#include <memory>
#include <string>

namespace sim {

// Only one at a time in a process: it sets UMOCKDEV_DIR, by which this process (if umockdev's
// library is preloaded) and processes started later find the bus. Its files are in a directory
// below TMPDIR that only this user may enter, so only programs of the same user, or root, can use
// the bus. The destructor removes the directory. Must outlive its devices. Not thread-safe.
//
// If umockdev cannot write a file there, it ends the process with a GLib error (SIGTRAP).
class UsbBus {
public:
    UsbBus(); // throws std::runtime_error, also if there is too little room
    ~UsbBus();
    UsbBus(const UsbBus&) = delete;
    UsbBus& operator=(const UsbBus&) = delete;

    // Where the emulated /sys and /dev are.
    const std::string& directory() const { return root_; }

    // Returns the next free port, counted from 1.
    int takePort() { return ++lastPort_; }

    struct Place {
        std::string sysfsPath; // below /sys
        std::string node;      // "/dev/bus/usb/001/NNN"
    };

    // Adds a device, with an address that no device had for some time. Throws std::runtime_error.
    Place plug(int port, const UsbDeviceInfo& info, const std::shared_ptr<Usbfs>& usbfs);

    // Fails the device's transfers, then removes it.
    void unplug(const Place& place, Usbfs& usbfs);

private:
    void makeNode(const std::string& node, const Usbfs& usbfs) const;
    void removeOldSockets();
    bool removeOldSocket();
    int takeAddress();

    struct Release {
        void operator()(UMockdevTestbed* testbed) const { g_object_unref(testbed); }
    };
    std::unique_ptr<UMockdevTestbed, Release> testbed_;
    std::string root_;
    int lastPort_ = 0;
    int lastAddress_ = 1;                  // address of the root hub, which is not emulated
    std::deque<std::string> removedNodes_; // that still have a socket, oldest first
};

} // namespace sim
