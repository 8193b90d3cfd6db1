#include "tests/support/bus_test.h"

#include <hidapi/hidapi.h>
#include <umockdev.h>

#include <algorithm>
#include <thread>

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void BusTest::SetUp()
{
    bus_ = std::make_unique<sim::UsbBus>();
    // umockdev can answer this only while there is a testbed.
    ASSERT_TRUE(umockdev_in_mock_environment()) << "start it with LD_PRELOAD: see bus_test.h";
}

void BusTest::TearDown()
{
    hid_exit(); // libusb keeps the devices of the bus it was started on
    devices_.clear();
    bus_.reset();
}

sim::UsbDevice& BusTest::plug(const sim::UsbDeviceInfo& info)
{
    sim::UsbDevice& device = devices_.emplace_back(*bus_, info);
    device.plug();
    return device;
}

sim::UsbDevice& BusTest::plug(std::string_view profile)
{
    const sim::Profile* const found = sim::findProfile(profile);
    if (!found)
        throw std::invalid_argument("no such profile: " + std::string(profile));
    return plug(found->info);
}

sim::UsbDevice& BusTest::record(sim::UsbDevice& device)
{
    device.setOutputCallback([this](const Bytes& report) { story_.add(sim::toHex(report)); });
    return device;
}

std::string BusTest::storyLike(const std::string& expected)
{
    const auto events = std::count(expected.begin(), expected.end(), ';');
    (void)eventually([&] { return story_.length() >= static_cast<size_t>(events); });
    return story_.take();
}
