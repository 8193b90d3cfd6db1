#include "tests/sim/hid_handle.h"
#include "tests/support/bus_test.h"

#include <libusb.h>

#include <thread>

namespace {

using sim::Bytes;
using Reports = std::vector<Bytes>;
using HidapiOnBus = BusTest;

TEST_F(HidapiOnBus, ReadsAndWritesWithEveryProfileAtOnce)
{
    constexpr uint8_t kReports = 20; // hidapi keeps 30 unread reports
    std::list<std::tuple<sim::UsbDevice&, Hid, Bytes>> all;
    for (const sim::Profile& profile : sim::profiles()) {
        sim::UsbDevice& device = plug(profile.name);
        EXPECT_FALSE(device.inject({3})) << "the kernel's driver has it";
        const auto& descriptor = device.info().controls().reportDescriptor;
        const uint8_t id = report::readLayout(descriptor).usesReportIds ? 3 : 0;
        all.emplace_back(device, openHid(device), Bytes{id, uint8_t(all.size())});
        for (uint8_t i = 0; i < kReports; ++i)
            ASSERT_TRUE(device.inject({i, uint8_t(all.size())}));
        EXPECT_TRUE(device.waitUntilRead());
    }
    uint8_t number = 0;
    for (const auto& [device, hid, output] : all) {
        ++number;
        for (uint8_t i = 0; i < kReports; ++i)
            EXPECT_EQ(readReport(hid), (Bytes{i, number}));
        device.faults().failWrite.arm(2);
        for (const bool arrives : {false, false, true})
            EXPECT_EQ(writeReport(hid, output), arrives);
        EXPECT_EQ(device.takeOutputs(), Reports{output}) << "there before hid_write() returned";
    }
}

// Returns a report as the function gives it, which begins with its id; empty if it fails.
Bytes got(int (*get)(hid_device*, unsigned char*, size_t), const Hid& hid, uint8_t id)
{
    Bytes report(64);
    report[0] = id;
    const int length = get(hid.get(), report.data(), report.size());
    report.resize(length < 0 ? 0 : static_cast<size_t>(length));
    return report;
}

TEST_F(HidapiOnBus, ReportsCanBeReadByRequests)
{
    sim::UsbDevice& device = plug();
    const Hid hid = openHid(device);
    EXPECT_TRUE(device.press("mute"));
    EXPECT_EQ(got(hid_get_input_report, hid, 3), (Bytes{3, 8, 0}));
    EXPECT_EQ(got(hid_get_input_report, hid, 9), Bytes{}) << "there is none";
    EXPECT_EQ(got(hid_get_feature_report, hid, 4), (Bytes{4, 0}));
    EXPECT_EQ(hid_send_feature_report(hid.get(), Bytes{4, 7}.data(), 2), 2);
    EXPECT_EQ(got(hid_get_feature_report, hid, 4), (Bytes{4, 7}));
    EXPECT_EQ(got(hid_get_feature_report, hid, 3), Bytes{});

    sim::UsbDevice& withoutIds = plug("no-report-ids");
    const Hid other = openHid(withoutIds);
    EXPECT_TRUE(withoutIds.press("mute"));
    EXPECT_EQ(got(hid_get_input_report, other, 0), (Bytes{0, 4, 0}));
}

TEST_F(HidapiOnBus, AFullBusTakesADeviceBack)
{
    constexpr int kDevices = 126;
    for (int i = 1; i < kDevices; ++i)
        plug();
    sim::UsbDevice& last = plug();
    for (int i = 0; i < 6; ++i) {
        last.unplug();
        last.plug();
    }
    EXPECT_TRUE(last.isPlugged());
}

TEST_F(HidapiOnBus, AnOutputCallbackMayInjectAndUnplug)
{
    sim::UsbDevice& device = plug();
    Hid hid = openHid(device);
    device.setOutputCallback([&](const Bytes& report) {
        if (report[1] == 1)
            device.inject(report);
        else
            device.unplug();
    });
    EXPECT_TRUE(writeReport(hid, {3, 1, 0}));
    EXPECT_EQ(readReport(hid), (Bytes{3, 1, 0}));
    std::thread reader([&] { EXPECT_EQ(readReport(hid), Bytes{}) << "unplugged while it waits"; });
    writeReport(hid, {3, 2, 0}); // arrives, but what it returns is a race with the unplugging
    reader.join();
    EXPECT_EQ(device.takeOutputs(), (Reports{{3, 1, 0}, {3, 2, 0}}));
    EXPECT_EQ(hid_read_timeout(hid.get(), Bytes(64).data(), 64, 0), -1);
    EXPECT_FALSE(writeReport(hid, {3, 8, 0}));
    EXPECT_FALSE(device.inject({3, 1, 0}));
    EXPECT_FALSE(device.waitUntilRead());

    device.plug();
    ASSERT_TRUE(eventually([&] { return (hid = openHid(device)) != nullptr; }));
    ASSERT_TRUE(device.inject({3, 1, 0}));
    EXPECT_EQ(readReport(hid), (Bytes{3, 1, 0}));
}

TEST_F(HidapiOnBus, OneClientAtATimeHasTheDevice)
{
    sim::UsbDevice& device = plug();
    libusb_context* context = nullptr;
    libusb_init(&context);
    libusb_device_handle* const other = libusb_open_device_with_vid_pid(context, 0x1209, 1);
    const auto readDescriptor = [other](uint16_t interface) {
        return libusb_control_transfer(other, 0x81, LIBUSB_REQUEST_GET_DESCRIPTOR, 0x2200,
            interface, Bytes(20).data(), 20, 5000);
    };
    for (int i = 1; i <= 2; ++i) {
        const Hid hid = openHid(device);
        EXPECT_FALSE(device.driverBound());
        EXPECT_FALSE(openHid(device)) << "a second client is refused";
        EXPECT_EQ(readDescriptor(0), LIBUSB_ERROR_IO);
        EXPECT_EQ(device.counters().claims, i);
    }
    EXPECT_TRUE(device.driverBound());
    EXPECT_FALSE(device.claimed());
    EXPECT_EQ(device.counters().releases, 2);
    libusb_detach_kernel_driver(other, 0);
    EXPECT_EQ(readDescriptor(0), 20);
    EXPECT_EQ(readDescriptor(1), LIBUSB_ERROR_IO) << "there is no such interface";
    libusb_attach_kernel_driver(other, 0);
    libusb_close(other);
    libusb_exit(context);

    device.setOpenable(false);
    device.unplug();
    device.plug();
    EXPECT_FALSE(openHid(device)) << "that outlasts unplugging";
    device.setOpenable(true);
    EXPECT_TRUE(openHid(device));
}

} // namespace
