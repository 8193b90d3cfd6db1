#include "bus_test.h"

#include <hidapi/hidapi.h>

#include <thread>

namespace {

using sim::Bytes;

struct HidClose {
    void operator()(hid_device* device) const { hid_close(device); }
};
using Hid = std::unique_ptr<hid_device, HidClose>;

Hid openPath(const sim::UsbDevice& device)
{
    return Hid(hid_open_path(device.hidPath().c_str()));
}

// The report read, or nothing if none came or the device is gone.
Bytes read(const Hid& hid, int limitMs = 10'000)
{
    Bytes report(64);
    const int size = hid_read_timeout(hid.get(), report.data(), report.size(), limitMs);
    report.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return report;
}

bool write(const Hid& hid, const Bytes& report)
{
    return hid_write(hid.get(), report.data(), report.size()) == static_cast<int>(report.size());
}

class HidapiOnBus : public BusTest { };

TEST_F(HidapiOnBus, ReadsAndWritesWithEveryProfile)
{
    for (const sim::Profile& profile : sim::profiles()) {
        SCOPED_TRACE(profile.name);
        sim::UsbDevice& device = plug(profile.name);
        const Hid hid = openPath(device);
        ASSERT_TRUE(hid);
        const bool numbered = profile.name != "no-report-ids";
        const Bytes input = numbered ? Bytes{3, 1, 0} : Bytes{1, 0};
        ASSERT_TRUE(device.inject(input));
        EXPECT_EQ(read(hid), input);
        const Bytes output = {uint8_t(numbered ? 3 : 0), 8, 0};
        EXPECT_TRUE(write(hid, output));
        EXPECT_EQ(device.takeOutputs(), Reports{output}); // already there
    }
}

} // namespace
