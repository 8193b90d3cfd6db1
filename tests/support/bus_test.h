// For tests in which real libusb and hidapi, in the test's own process, meet
// simulated devices. In a test's CMakeLists.txt:
//
//   kelprobe_test(NAME ... LINK Kelprobe::bus_test ENVIRONMENT ${KELPROBE_BUS_ENVIRONMENT})
//
// By hand such a test is started with that LD_PRELOAD too.
#pragma once

#include "sim/bus/usb_device.h"
#include "sim/device/profiles.h"
#include "tests/support/story.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <list>
#include <memory>

// Waits until the condition holds, asking again every millisecond. False after
// `limit`, which is generous: tests must pass on a busy machine.
[[nodiscard]] bool eventually(const std::function<bool()>& condition,
    std::chrono::milliseconds limit = sim::UsbDevice::kDefaultTimeout);

class BusTest : public testing::Test {
protected:
    using Bytes = sim::Bytes;
    using Reports = std::vector<Bytes>;

    // A bus without devices. hidapi starts afresh and is ended with the test,
    // so the test must have closed what it opened.
    void SetUp() override;
    void TearDown() override;

    // Plugs in another device, on ports 1, 2 and so on. The test owns none.
    sim::UsbDevice& plug(const sim::UsbDeviceInfo& info);
    sim::UsbDevice& plug(std::string_view profile = "speakerphone");

    // Waits for `count` output reports and takes all there are by then, or
    // those that came when the time is over.
    static Reports outputs(sim::UsbDevice& device, size_t count);

    // From now on each output report is an event of story_. Returns the device.
    sim::UsbDevice& record(sim::UsbDevice& device);

    // Takes the story when it has as many events as `expected`, or what there is of it when the
    // time is over.
    std::string storyLike(const std::string& expected);

    Story story_;

private:
    std::unique_ptr<sim::UsbBus> bus_;
    std::list<sim::UsbDevice> devices_;
};
