// The transfers (URBs) of one plugged-in device.
#pragma once

#include "sim/bus/ioctl_data.h"
#include "sim/device/wire_bytes.h"

#include <deque>
#include <list>
#include <optional>

namespace sim {

struct Urb {
    UMockdevIoctlClient* owner = nullptr; // only compared
    IoctlDataRef request;                 // the client's struct usbdevfs_urb
    UMockdevIoctlData* buffer = nullptr;  // owned by `request`; null when empty
    size_t dataOffset = 0;                // position of an IN transfer's data in the buffer
    bool input = false;                   // interrupt IN
    int status = 0;                       // 0 or -errno
    size_t transferred = 0;
    Bytes data = {}; // of an IN transfer
};

// Holds the transfers that wait for input, the transfers that are finished and not yet reaped, and
// input that no transfer has requested. Not locked.
class UrbQueue {
public:
    static constexpr size_t kMaxInput = 65536; // unread input reports

    // Completes the oldest waiting transfer with an input report, or keeps the report for the next
    // transfer. False if there are kMaxInput unread reports.
    [[nodiscard]] bool addInput(const Bytes& report);
    void waitForInput(Urb urb);
    void dropInput() { input_.clear(); }

    void finish(Urb urb, int status);
    void finishAllWaiting(int status);
    // Finishes a waiting transfer with -ENOENT. False if it does not wait.
    [[nodiscard]] bool discard(UMockdevIoctlClient* owner, unsigned long requestAddress);

    [[nodiscard]] std::optional<Urb> reap(UMockdevIoctlClient* owner);
    void removeClient(UMockdevIoctlClient* client); // with its transfers

    bool anyFinished() const { return !finished_.empty(); }
    bool allInputReaped() const;

private:
    void deliver();

    std::deque<Bytes> input_; // all three: oldest first
    std::list<Urb> waiting_;
    std::list<Urb> finished_;
};

} // namespace sim
