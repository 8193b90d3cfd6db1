#include "tests/sim/hid_handle.h"
#include "tests/support/bus_test.h"

#include <libusb.h>

#include <set>
#include <string>
#include <thread>

namespace {

using sim::Bytes;
using Reports = std::vector<Bytes>;
using Lines = std::set<std::wstring>;

class HidapiOnBus : public BusTest {
protected:
    // "PATH VVVV:PPPP PRODUCT, SERIAL" of each device, with ? for a string that is not there.
    static Lines listed()
    {
        Lines lines;
        hid_device_info* const all = hid_enumerate(0, 0);
        for (const hid_device_info* i = all; i; i = i->next) {
            const auto text
                = [](const wchar_t* string) { return string && *string ? string : L"?"; };
            wchar_t line[200];
            swprintf(line, std::size(line), L"%s %04x:%04x %ls, %ls", i->path, i->vendor_id,
                i->product_id, text(i->product_string), text(i->serial_number));
            lines.emplace(line);
        }
        hid_free_enumeration(all);
        return lines;
    }
};

TEST_F(HidapiOnBus, ListsWhatIsPluggedIn)
{
    sim::UsbDevice& first = plug("speakerphone");
    sim::UsbDeviceInfo info = sim::findProfile("no-telephony")->info;
    info.product = u"Téléphone";
    info.interfaceNumber = 3;
    plug(info);
    info.interfaceClass = 0xff; // not HID
    plug(info);
    const std::wstring firstLine = L"1-1:1.0 1209:0001 Simulated speakerphone, S0001";
    const std::wstring secondLine = L"1-2:1.3 1209:0004 Téléphone, ?";
    EXPECT_EQ(listed(), (Lines{firstLine, secondLine}));
    first.unplug();
    EXPECT_EQ(listed(), Lines{secondLine});
    first.plug();
    EXPECT_EQ(listed(), (Lines{firstLine, secondLine}));
}

TEST_F(HidapiOnBus, ReadsAndWritesWithEveryProfileAtOnce)
{
    std::list<std::tuple<sim::UsbDevice&, Hid, uint8_t, Bytes>> all;
    for (const sim::Profile& profile : sim::profiles()) {
        sim::UsbDevice& device = plug(profile.name);
        const bool hasReportIds = profile.name != "no-report-ids";
        const auto number = static_cast<uint8_t>(all.size());
        const Bytes input = hasReportIds ? Bytes{3, number} : Bytes{number, 0};
        EXPECT_FALSE(device.inject(input)) << "the kernel's driver has it";
        all.emplace_back(device, openHid(device), hasReportIds ? 3 : 0, input);
        ASSERT_TRUE(device.inject(input));
    }
    for (const auto& [device, hid, id, input] : all) {
        EXPECT_EQ(readReport(hid), input);
        const Bytes output = {id, input[0], input[1]};
        device.faults().failWrite.arm(2);
        for (const bool arrives : {false, false, true})
            EXPECT_EQ(writeReport(hid, output), arrives);
        EXPECT_EQ(device.takeOutputs(), Reports{output}) << "there before hid_write() returned";
        EXPECT_EQ(hid_get_input_report(hid.get(), Bytes(3).data(), 3), -1) << "stalls";
    }
}

TEST_F(HidapiOnBus, ReportsArriveInOrder)
{
    constexpr size_t kReports = 2000;
    constexpr size_t kUnread = 20; // hidapi keeps 30 unread reports
    sim::UsbDevice& device = plug();
    const Hid hid = openHid(device);
    const auto report = [](size_t i) { return Bytes{3, sim::highByte(i), sim::lowByte(i)}; };
    for (size_t begin = 0; begin < kReports; begin += kUnread) {
        for (size_t i = begin; i < begin + kUnread; ++i)
            ASSERT_TRUE(device.inject(report(i)));
        ASSERT_TRUE(device.waitUntilRead());
        for (size_t i = begin; i < begin + kUnread; ++i)
            ASSERT_EQ(readReport(hid), report(i));
    }
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

TEST_F(HidapiOnBus, OneClientAtATimeOpensTheDeviceUnlessRefused)
{
    sim::UsbDevice& device = plug();
    for (int i = 1; i <= 2; ++i) {
        const Hid hid = openHid(device);
        EXPECT_FALSE(device.driverBound());
        EXPECT_FALSE(openHid(device)) << "a second client is refused";
        EXPECT_EQ(device.counters().claims, i);
    }
    EXPECT_TRUE(device.driverBound());
    EXPECT_FALSE(device.claimed());
    EXPECT_EQ(device.counters().releases, 2);

    for (sim::Fault* fault : {&device.faults().refuseClaim, &device.faults().refuseDetach}) {
        fault->arm();
        EXPECT_FALSE(openHid(device));
        device.faults().clear();
        EXPECT_TRUE(openHid(device));
    }
    device.setOpenable(false);
    EXPECT_FALSE(openHid(device));
    EXPECT_EQ(listed(), Lines{L"1-1:1.0 1209:0001 ?, ?"}) << "listed, but cannot be asked";
    device.unplug();
    device.plug();
    EXPECT_FALSE(openHid(device)) << "that outlasts unplugging";
    device.setOpenable(true);
    EXPECT_TRUE(openHid(device));
}

TEST_F(HidapiOnBus, TheReportDescriptorIsThatOfTheClaimedInterface)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.interfaceNumber = 3;
    sim::UsbDevice& device = plug(info);
    libusb_context* context = nullptr;
    libusb_init(&context);
    const auto open = [&] { return libusb_open_device_with_vid_pid(context, 0x1209, 1); };
    const auto read = [](libusb_device_handle* handle, uint16_t interface, uint16_t length) {
        Bytes bytes(length);
        const int size = libusb_control_transfer(handle, 0x81, LIBUSB_REQUEST_GET_DESCRIPTOR,
            0x2200, interface, bytes.data(), length, 5000);
        bytes.resize(size < 0 ? 0 : static_cast<size_t>(size));
        return bytes;
    };
    libusb_device_handle* const handle = open();
    libusb_detach_kernel_driver(handle, 3);
    EXPECT_EQ(read(handle, 3, 4096), info.reportDescriptor);
    EXPECT_EQ(read(handle, 3, 100).size(), 100U);
    EXPECT_EQ(read(handle, 0, 100), Bytes{}) << "there is no such interface";
    libusb_device_handle* const other = open();
    EXPECT_EQ(read(other, 3, 100), Bytes{}) << "the first client has the interface";
    EXPECT_EQ(device.counters().reportDescriptorReads, 2);
    libusb_close(other);
    libusb_close(handle);
    libusb_exit(context);
}

} // namespace
