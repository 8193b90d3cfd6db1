// The least that hears a device: hid_read_timeout in a loop, as Kelprobe's reader waits.
#pragma once

#include "bench/program/channel.h"

#include <hidapi/hidapi.h>

#include <array>
#include <chrono>
#include <thread>

namespace bench {

// Ends only with the program. Once the device is gone every read fails at once, and the loop naps
// for a millisecond, the longest that a reader may.
[[noreturn]] inline void readReports(hid_device* device, int channel)
{
    constexpr int timeoutMs = 100;
    std::array<unsigned char, 64> report;
    for (;;) {
        const int size = hid_read_timeout(device, report.data(), report.size(), timeoutMs);
        if (size > 0)
            tell(channel, Moment::Report, now());
        else if (size < 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace bench
