// The transfers (URBs) of one plugged-in device: those that wait for input and
// those that are finished and not yet reaped. Not locked.
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
    size_t dataOffset = 0;                // where an IN transfer's data goes in the buffer
    bool input = false;                   // interrupt IN
    int status = 0;                       // 0 or -errno
    size_t transferred = 0;
    Bytes data = {}; // of an IN transfer
};

class UrbQueue {
public:
    static constexpr size_t kMaxInput = 65536; // reports

    // An input report for the oldest waiting transfer, or for the next to come.
    // False if too many are unread already.
    [[nodiscard]] bool addInput(const Bytes& report);
    void waitForInput(Urb urb);
    void forgetInput() { input_.clear(); }

    void finish(Urb urb, int status);
    void finishAllWaiting(int status);
    // Ends a waiting transfer with -ENOENT. False if there is none such.
    [[nodiscard]] bool discard(UMockdevIoctlClient* owner, unsigned long requestAddress);

    [[nodiscard]] std::optional<Urb> reap(UMockdevIoctlClient* owner);
    void dropOwner(UMockdevIoctlClient* owner);

    bool anyFinished() const { return !finished_.empty(); }
    bool allInputReaped() const;

private:
    void deliver();

    std::deque<Bytes> input_; // oldest first, like the others
    std::list<Urb> waiting_;
    std::list<Urb> finished_;
};

} // namespace sim
