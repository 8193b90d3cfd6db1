// The smallest program that reads a device: hid_read_timeout in a loop, as Kelprobe's reader does.
#pragma once

#include <hidapi/hidapi.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

namespace bench {

// Calls `onReport` after each report. Ends only with the program. After the device is unplugged
// every read fails at once; the pause after a failed read grows as it does in Kelprobe.
template <typename on_report_t>
[[noreturn]] void readReports(hid_device* device, const on_report_t& onReport)
{
    constexpr int timeoutMs = 100;
    constexpr std::chrono::milliseconds firstPause{1};
    constexpr std::chrono::milliseconds longestPause{100};
    std::array<unsigned char, 64> report;
    auto pause = firstPause;
    for (;;) {
        const int size = hid_read_timeout(device, report.data(), report.size(), timeoutMs);
        if (size < 0) {
            std::this_thread::sleep_for(pause);
            pause = std::min(2 * pause, longestPause);
            continue;
        }
        pause = firstPause;
        if (size > 0)
            onReport();
    }
}

} // namespace bench
