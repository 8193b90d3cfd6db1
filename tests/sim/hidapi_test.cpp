#include "tests/sim/hid_handle.h"
#include "tests/support/bus_test.h"

#include <algorithm>
#include <string>
#include <thread>

namespace {

using sim::Bytes;
using Reports = std::vector<Bytes>;

class HidapiOnBus : public BusTest {
protected:
    // "PATH VVVV:PPPP PRODUCT, SERIAL" in order of the paths, with ? for a
    // string that is not there.
    static std::vector<std::wstring> listed()
    {
        std::vector<std::wstring> lines;
        hid_device_info* const all = hid_enumerate(0, 0);
        for (const hid_device_info* i = all; i; i = i->next) {
            const auto text
                = [](const wchar_t* string) { return string && *string ? string : L"?"; };
            wchar_t line[200];
            swprintf(line, std::size(line), L"%s %04x:%04x %ls, %ls", i->path, i->vendor_id,
                i->product_id, text(i->product_string), text(i->serial_number));
            lines.emplace_back(line);
        }
        hid_free_enumeration(all);
        std::sort(lines.begin(), lines.end()); // libusb lists what was plugged in last first
        return lines;
    }
    using Lines = std::vector<std::wstring>;

    static Hid opened(const sim::UsbDevice& device)
    {
        Hid hid = openHid(device);
        EXPECT_TRUE(hid);
        return hid;
    }
};

TEST_F(HidapiOnBus, ListsWhatIsPluggedIn)
{
    EXPECT_EQ(listed(), Lines{});
    sim::UsbDevice& first = plug("speakerphone");
    const std::wstring firstLine = L"1-1:1.0 1209:0001 Simulated speakerphone, S0001";
    EXPECT_EQ(listed(), Lines{firstLine});

    sim::UsbDeviceInfo info = sim::findProfile("no-telephony")->info;
    info.product = u"Téléphone";
    info.interfaceNumber = 3;
    plug(info);
    const std::wstring secondLine = L"1-2:1.3 1209:0004 Téléphone, ?";
    EXPECT_EQ(listed(), (Lines{firstLine, secondLine}));

    first.unplug();
    EXPECT_EQ(listed(), Lines{secondLine});
    first.plug();
    EXPECT_EQ(listed(), (Lines{firstLine, secondLine}));

    info.interfaceClass = 0xff;
    plug(info);
    EXPECT_EQ(listed().size(), 2U) << "not a HID interface";
}

TEST_F(HidapiOnBus, ReadsAndWritesWithEveryProfile)
{
    for (const sim::Profile& profile : sim::profiles()) {
        SCOPED_TRACE(profile.name);
        sim::UsbDevice& device = plug(profile.name);
        EXPECT_FALSE(device.inject({3, 1, 0})) << "the kernel's driver has it";
        const Hid hid = opened(device);
        EXPECT_FALSE(device.driverBound());

        const bool hasReportIds = profile.name != "no-report-ids";
        const Bytes input = hasReportIds ? Bytes{3, 1, 0} : Bytes{1, 0};
        ASSERT_TRUE(device.inject(input));
        EXPECT_EQ(readReport(hid), input);
        const Bytes output = {uint8_t(hasReportIds ? 3 : 0), 8, 0};
        EXPECT_TRUE(writeReport(hid, output));
        EXPECT_EQ(device.takeOutputs(), Reports{output}) << "there before hid_write() returned";
        EXPECT_EQ(hid_get_input_report(hid.get(), Bytes(3).data(), 3), -1) << "stalls";
        device.faults().failWrite.arm(2);
        for (const bool arrives : {false, false, true})
            EXPECT_EQ(writeReport(hid, output), arrives);
        EXPECT_EQ(device.takeOutputs(), Reports{output});
    }
}

TEST_F(HidapiOnBus, ClosingGivesTheDeviceBack)
{
    sim::UsbDevice& device = plug();
    for (int i = 1; i <= 3; ++i) {
        const Hid hid = opened(device);
        EXPECT_FALSE(openHid(device)) << "a second client is refused";
        EXPECT_EQ(device.counters().claims, i);
    }
    EXPECT_TRUE(device.driverBound());
    EXPECT_FALSE(device.claimed());
    EXPECT_EQ(device.counters().releases, 3);
}

TEST_F(HidapiOnBus, KeepsTwoDevicesApart)
{
    sim::UsbDevice& one = plug("speakerphone");
    sim::UsbDevice& two = plug("speakerphone");
    const Hid hidOne = opened(one);
    const Hid hidTwo = opened(two);
    ASSERT_TRUE(one.inject({3, 1, 0}) && two.inject({3, 2, 0}));
    EXPECT_EQ(readReport(hidTwo), (Bytes{3, 2, 0}));
    EXPECT_EQ(readReport(hidOne), (Bytes{3, 1, 0}));
    EXPECT_TRUE(writeReport(hidTwo, {3, 8, 0}));
    EXPECT_EQ(one.takeOutputs(), Reports{});
    EXPECT_EQ(two.takeOutputs(), (Reports{{3, 8, 0}}));
}

TEST_F(HidapiOnBus, FloodsArriveInOrder)
{
    constexpr size_t kReports = 2000;
    constexpr size_t kUnread = 20; // hidapi keeps 30 unread reports
    sim::UsbDevice& device = plug();
    const Hid hid = opened(device);
    const auto report = [](size_t i) { return Bytes{3, sim::highByte(i), sim::lowByte(i)}; };
    for (size_t begin = 0; begin < kReports; begin += kUnread) {
        for (size_t i = begin; i < begin + kUnread; ++i)
            ASSERT_TRUE(device.inject(report(i)));
        ASSERT_TRUE(device.waitUntilRead());
        for (size_t i = begin; i < begin + kUnread; ++i)
            ASSERT_EQ(readReport(hid), report(i));
    }
    // One that overruns hidapi leaves the newest.
    for (size_t i = 0; i <= kReports; ++i)
        ASSERT_TRUE(device.inject(report(i)));
    ASSERT_TRUE(device.waitUntilRead());
    int reports = 1;
    while (readReport(hid) != report(kReports))
        ASSERT_LE(++reports, 40);
}

TEST_F(HidapiOnBus, UnplugEndsABlockedReadAndAllLaterCalls)
{
    sim::UsbDevice& device = plug();
    Hid hid = opened(device);
    std::thread reader([&] { EXPECT_EQ(readReport(hid), Bytes{}); });
    device.unplug();
    reader.join();
    EXPECT_EQ(hid_read_timeout(hid.get(), Bytes(64).data(), 64, 0), -1);
    EXPECT_FALSE(writeReport(hid, {3, 8, 0}));
    EXPECT_FALSE(device.inject({3, 1, 0}));
    EXPECT_FALSE(device.waitUntilRead());
    hid.reset();

    device.plug();
    ASSERT_TRUE(eventually([&] { return (hid = openHid(device)) != nullptr; }));
    ASSERT_TRUE(device.inject({3, 1, 0}));
    EXPECT_EQ(readReport(hid), (Bytes{3, 1, 0}));
}

TEST_F(HidapiOnBus, AnOutputCallbackMayInjectAndUnplug)
{
    sim::UsbDevice& device = plug();
    const Hid hid = opened(device);
    device.setOutputCallback([&](const Bytes& report) {
        if (report[1] == 1)
            device.inject(report);
        else
            device.unplug();
    });
    EXPECT_TRUE(writeReport(hid, {3, 1, 0}));
    EXPECT_EQ(readReport(hid), (Bytes{3, 1, 0}));
    writeReport(hid, {3, 2, 0}); // arrived, but what it returns is a race with the unplugging
    EXPECT_EQ(device.takeOutputs(), (Reports{{3, 1, 0}, {3, 2, 0}}));
    EXPECT_EQ(hid_read_timeout(hid.get(), Bytes(64).data(), 64, 10'000), -1);
}

TEST_F(HidapiOnBus, RefusalsFailTheOpenUntilTheyEnd)
{
    sim::UsbDevice& device = plug();
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

} // namespace
