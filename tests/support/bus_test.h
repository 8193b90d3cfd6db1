// For tests in which the real libusb and hidapi, in the test's process, use simulated devices. In a
// test's CMakeLists.txt:
//
//   kelprobe_test(NAME ... LINK Kelprobe::bus_test ENVIRONMENT ${KELPROBE_BUS_ENVIRONMENT})
//
// To start such a test by hand, set that LD_PRELOAD.
#pragma once

#include "sim/bus/usb_device.h"
#include "sim/profile/profiles.h"
#include "tests/support/story.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <list>
#include <memory>

// Waits until the condition is true, checking every millisecond. False after `limit`, which is
// generous: tests must pass on a busy machine.
[[nodiscard]] bool eventually(const std::function<bool()>& condition,
    std::chrono::milliseconds limit = sim::UsbDevice::kDefaultTimeout);

class BusTest : public testing::Test {
protected:
    using Bytes = sim::Bytes;
    using Reports = std::vector<Bytes>;

    // A bus without devices. hidapi is ended after each test, so the test must have closed what it
    // opened.
    void SetUp() override;
    void TearDown() override;

    // Plugs in another device, on ports 1, 2 and so on. The fixture owns the devices.
    sim::UsbDevice& plug(const sim::UsbDeviceInfo& info);
    sim::UsbDevice& plug(std::string_view profile = "speakerphone");

    // From now on each output report is an event of story_. Returns the device.
    sim::UsbDevice& record(sim::UsbDevice& device);

    // Waits until the story has as many events as `expected`, then takes it. On a time-out takes
    // the events that there are.
    std::string storyLike(const std::string& expected);

    Story story_;

private:
    std::unique_ptr<sim::UsbBus> bus_;
    std::list<sim::UsbDevice> devices_;
};
