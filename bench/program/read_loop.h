// The least that hears a device: hid_read_timeout in a loop, as Kelprobe's reader waits.
#pragma once

#include "channel.h"

#include <hidapi/hidapi.h>

#include <array>

namespace bench {

// Ends only with the program.
[[noreturn]] inline void readReports(hid_device* device, int channel)
{
    constexpr int timeoutMs = 100;
    std::array<unsigned char, 64> report;
    for (;;)
        if (hid_read_timeout(device, report.data(), report.size(), timeoutMs) > 0)
            tell(channel, Moment::Report, now());
}

} // namespace bench
