// Faults that a test or a user switches on and off while the device is in use.
#pragma once

#include <atomic>
#include <cstddef>
#include <initializer_list>

namespace sim {

// Makes an operation of the device fail a number of times, or always. Any thread.
class Fault {
public:
    static constexpr int kAlways = -1;

    // The next `times` operations fail. 0 ends the fault.
    void arm(int times = kAlways) { left_ = times; }

    [[nodiscard]] bool armed() const { return left_ != 0; }

    // Called by each operation. True if the operation has to fail; this counts as one of the times.
    [[nodiscard]] bool consume()
    {
        int left = left_;
        while (left > 0 && !left_.compare_exchange_weak(left, left - 1)) { }
        return left != 0;
    }

private:
    std::atomic<int> left_ = 0;
};

struct DeviceFaults {
    Fault refuseClaim;             // claiming the interface gives EBUSY
    Fault refuseDetach;            // detaching the kernel driver gives EBUSY
    Fault stallReportDescriptor;   // GET_DESCRIPTOR(report) stalls
    Fault shortenReportDescriptor; // GET_DESCRIPTOR(report) ends after shortLength bytes
    std::atomic<size_t> shortLength = 0;
    Fault stallStrings; // string descriptors stall
    Fault failWrite;    // an output report stalls and is not received

    void clear()
    {
        for (Fault* fault : {&refuseClaim, &refuseDetach, &stallReportDescriptor,
                 &shortenReportDescriptor, &stallStrings, &failWrite})
            fault->arm(0);
    }
};

} // namespace sim
