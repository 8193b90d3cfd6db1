// The transfers (URBs) of one plugged-in device.
#pragma once

#include "sim/bus/ioctl_data.h"
#include "sim/device/wire_bytes.h"

#include <cstdint>
#include <deque>
#include <list>
#include <map>
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
// for each IN endpoint the input that no transfer has requested. Not locked.
class UrbQueue {
public:
    // Of unread input, for each endpoint. The reports that a device sends in eight seconds at the
    // highest rate of USB, 8,000 a second.
    static constexpr size_t kMaxInput = 65536;                // reports
    static constexpr size_t kMaxInputBytes = size_t{8} << 20; // bytes of them together
    // Of a client that submits and never reaps.
    static constexpr size_t kMaxUrbs = 4096;

    // Gives an input report to the oldest waiting transfer of the endpoint, or keeps it for the
    // next ones. A report that is longer than a transfer takes several. False, and the report is
    // not taken, if too much is unread.
    [[nodiscard]] bool addInput(uint8_t endpoint, const Bytes& report);
    void waitForInput(uint8_t endpoint, Urb urb);
    void dropInput(uint8_t endpoint) { endpoints_[endpoint].clear(); }

    void finish(Urb urb, int status);
    void finishAllWaiting(int status);
    // Finishes a waiting transfer with -ENOENT. False if it does not wait.
    [[nodiscard]] bool discard(UMockdevIoctlClient* owner, unsigned long requestAddress);

    [[nodiscard]] std::optional<Urb> reap(UMockdevIoctlClient* owner);
    void removeClient(UMockdevIoctlClient* client); // with its transfers

    bool anyFinished() const { return !finished_.empty(); }
    bool allInputReaped() const; // of all endpoints
    bool isFull() const { return waitingCount() + finished_.size() >= kMaxUrbs; }

private:
    struct Endpoint {
        std::deque<Bytes> input;
        size_t inputBytes = 0; // of `input`
        std::list<Urb> waiting;

        void clear();
    };

    void deliver(Endpoint& endpoint);
    size_t waitingCount() const;

    // In each list the oldest is first.
    std::map<uint8_t, Endpoint> endpoints_;
    std::list<Urb> finished_;
};

} // namespace sim
