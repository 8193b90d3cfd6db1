// Devices of several interfaces, and devices that do more than send a report for each press.
#include "tests/sim/hid_handle.h"
#include "tests/support/bus_test.h"

#include <libusb.h>

namespace {

using sim::Bytes;
using std::chrono::milliseconds;
using Events = sim::DeviceEvent::Kind;
using HidInterfaces = BusTest;

// Audio control, volume keys (report ids 1 and 2), telephony (no report ids).
sim::UsbDeviceInfo headset()
{
    sim::UsbDeviceInfo info = sim::findProfile("headset")->info;
    const std::vector<sim::InterfaceInfo> all = info.interfaces;
    info.interfaces = {all[0], all[1], all[2], all[4], all[3]}; // keys first
    return info;
}

TEST_F(HidInterfaces, AreEachListedClaimedReadAndWrittenIndependently)
{
    sim::UsbDevice& device = plug(headset());
    EXPECT_EQ(device.hidPath(), "1-1:1.3") << "the telephony interface, though it is not the first";
    hid_device_info* const list = hid_enumerate(0, 0);
    std::set<int> numbers;
    for (const hid_device_info* entry = list; entry; entry = entry->next)
        EXPECT_TRUE(numbers.insert(entry->interface_number).second);
    hid_free_enumeration(list);
    EXPECT_EQ(numbers, (std::set{3, 5})) << "not the audio interfaces";

    const Hid keys(hid_open_path(device.hidPath(5).c_str()));
    ASSERT_TRUE(keys);
    EXPECT_TRUE(device.claimed(5) && !device.claimed() && device.driverBound());
    EXPECT_FALSE(device.inject({1, 0})) << "the kernel's driver has the telephony interface";
    const Hid telephony = openHid(device);
    ASSERT_TRUE(telephony);
    ASSERT_TRUE(device.inject(5, {1, 1}) && device.inject({4, 0}) && device.inject(5, {1, 0}));
    EXPECT_EQ(readReport(telephony), (Bytes{4, 0}));
    EXPECT_EQ(readReport(keys), (Bytes{1, 1}));
    EXPECT_EQ(readReport(keys), (Bytes{1, 0}));

    std::vector<std::pair<int, Bytes>> outputs;
    device.setEventCallback([&](const sim::DeviceEvent& event) {
        if (event.kind == Events::kOutput)
            outputs.emplace_back(event.interface, event.report);
    });
    EXPECT_TRUE(writeReport(keys, {2, 7})) << "by a control transfer: it has no OUT endpoint";
    EXPECT_TRUE(writeReport(telephony, {0, 4, 0}));
    EXPECT_EQ(outputs, (decltype(outputs){{5, {2, 7}}, {3, {0, 4, 0}}}));
    EXPECT_EQ(device.takeOutputs(), (Reports{{0, 4, 0}})) << "those to the telephony interface";
}

TEST_F(HidInterfaces, HaveTheirOwnDriverAndDescriptors)
{
    sim::UsbDevice& device = plug(headset());
    libusb_context* context = nullptr;
    libusb_init(&context);
    libusb_device_handle* const handle = libusb_open_device_with_vid_pid(context, 0x1209, 5);
    ASSERT_TRUE(handle);
    for (const auto& [number, driver, detached, attached] : {
             std::tuple<int, int, int, int>{0, 0, LIBUSB_ERROR_NOT_FOUND, LIBUSB_ERROR_NOT_FOUND},
             {3, 1, 0, 0},
             {5, 1, 0, 0},
             {7, 0, LIBUSB_ERROR_INVALID_PARAM, LIBUSB_ERROR_INVALID_PARAM},
         }) {
        EXPECT_EQ(libusb_kernel_driver_active(handle, number), driver) << number;
        EXPECT_EQ(libusb_detach_kernel_driver(handle, number), detached) << number;
        EXPECT_EQ(libusb_attach_kernel_driver(handle, number), attached) << number;
    }
    libusb_detach_kernel_driver(handle, 5);
    EXPECT_TRUE(device.driverBound() && !device.driverBound(5));
    Bytes bytes(200);
    const int size = libusb_control_transfer(handle, 0x81, LIBUSB_REQUEST_GET_DESCRIPTOR, 0x2200, 5,
        bytes.data(), uint16_t(bytes.size()), 5000);
    bytes.resize(size_t(std::max(size, 0)));
    EXPECT_EQ(bytes, device.info().interfaces[3].reportDescriptor);
    libusb_config_descriptor* configuration = nullptr;
    libusb_get_active_config_descriptor(libusb_get_device(handle), &configuration);
    ASSERT_EQ(configuration->bNumInterfaces, 5);
    const auto& audio = configuration->interface[0].altsetting[0];
    EXPECT_EQ(audio.bInterfaceClass, LIBUSB_CLASS_AUDIO);
    EXPECT_EQ(audio.bNumEndpoints, 0);
    EXPECT_EQ(configuration->interface[3].altsetting[0].bNumEndpoints, 1);
    EXPECT_EQ(configuration->interface[4].altsetting[0].bNumEndpoints, 2);
    EXPECT_EQ(configuration->interface[4].altsetting[0].endpoint[0].wMaxPacketSize, 32);
    EXPECT_EQ(libusb_get_device_speed(libusb_get_device(handle)), LIBUSB_SPEED_HIGH);
    libusb_free_config_descriptor(configuration);
    libusb_close(handle);
    libusb_exit(context);
}

// Plays words with the speakerphone: an output report, or a button to push. Returns the input
// reports that the program reads, until there are as many as expected.
class BehavingDevice : public BusTest {
protected:
    std::string play(
        const sim::DeviceBehaviour& behaviour, const std::string& words, size_t reports)
    {
        sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
        info.behaviour = behaviour;
        sim::UsbDevice& device = plug(info);
        const Hid hid = openHid(device);
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            if (const auto report = sim::fromHex(word))
                EXPECT_TRUE(writeReport(hid, *report));
            else
                EXPECT_TRUE(device.push(word)) << word;
        }
        std::string read;
        for (size_t i = 0; i < reports; ++i)
            read += sim::toHex(readReport(hid), "") + ' ';
        EXPECT_TRUE(device.waitUntilRead());
        Bytes more(64);
        EXPECT_EQ(hid_read_timeout(hid.get(), more.data(), more.size(), 0), 0) << read;
        device.unplug();
        return read;
    }
};

TEST_F(BehavingDevice, ReactsAsItsBehaviourSays)
{
    using sim::HookSwitch;
    const struct {
        const char* name;
        sim::DeviceBehaviour behaviour;
        const char* words;
        std::string read; // a blank after each report
    } cases[] = {
        {"the hook switch follows the off-hook LED", {}, "030100 mute 030000 hook",
            "030900 030100 030100 "},
        {"the hook switch stays", {.hookSwitch = HookSwitch::kStays}, "030100 mute hook hook",
            "030800 030000 030100 030000 "},
        {"the hook switch is momentary", {.hookSwitch = HookSwitch::kMomentary}, "hook 030100 hook",
            "030100 030000 030100 030000 "},
        {"acknowledges", {.acknowledges = {"off-hook", "mute"}}, "030800 030100 030500 030500",
            "030100 030100 "},
        {"toggles mute", {.togglesMute = true}, "030100 030500 030100",
            "030900 030100 030900 030100 "},
        {"reacts to LEDs",
            {.reactions = {{"ring", true, {{3, 0, 0}, {9}}}, {"ring", false, {{3, 2, 0}}}}},
            "030800 030000", "030000 09 030200 "},
        {"a start-up burst", {.onOpen = {{3, 1, 0}, {3, 0, 0}}}, "busy",
            "030100 030000 030200 030000 "},
        {"short reports", {.onOpen = {{3, 0, 0}}, .lengthError = -2}, "mute", "030000 03 03 "},
        {"long reports", {.lengthError = 1}, "mute", "03080000 03000000 "},
        {"a delay", {.acknowledges = {"ring"}, .onOpen = {{3, 0, 1}}, .delay = milliseconds(30)},
            "030800 mute", "030001 030000 030800 030000 "},
    };
    for (const auto& test : cases)
        EXPECT_EQ(play(test.behaviour, test.words,
                      size_t(std::count(test.read.begin(), test.read.end(), ' '))),
            test.read)
            << test.name;
}

TEST_F(BehavingDevice, SendsNoDelayedReportAfterItWasUnplugged)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.behaviour.delay = milliseconds(50);
    sim::UsbDevice& device = plug(info);
    Hid hid = openHid(device);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(device.push("busy"));
    device.unplug();
    device.plug();
    ASSERT_TRUE(eventually([&] { return (hid = openHid(device)) != nullptr; }));
    EXPECT_TRUE(device.push("mute"));
    EXPECT_EQ(readReport(hid), (Bytes{3, 8, 0})) << "not that of the busy button";
    EXPECT_GE(std::chrono::steady_clock::now() - begin, info.behaviour.delay);
}

TEST_F(BehavingDevice, ReportsItsEventsInTheirOrder)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.behaviour.acknowledges = {"off-hook"};
    info.behaviour.onOpen = {{3, 0, 0}};
    sim::UsbDevice& device = plug(info);
    device.setEventCallback([&](const sim::DeviceEvent& event) {
        const char* const kinds[] = {"in", "out", "write refused", "opened", "closed",
            "claim refused", "detach refused", "feature"};
        std::string text = kinds[size_t(event.kind)];
        if (event.kind == Events::kInput)
            text += event.delivery == sim::Delivery::kQueued ? "" : " lost";
        for (const std::string& part : {sim::toHex(event.report, ""), event.cause})
            text += part.empty() ? "" : ' ' + part;
        for (const sim::LampChange& change : event.lamps)
            text += ' ' + change.lamp + (change.on ? " on" : " off");
        story_.add(text);
    });
    EXPECT_TRUE(device.push("hook"));
    {
        const Hid hid = openHid(device);
        EXPECT_TRUE(writeReport(hid, {3, 1, 0}));
        device.faults().failWrite.arm(1);
        EXPECT_FALSE(writeReport(hid, {3, 5, 0}));
        EXPECT_FALSE(openHid(device));
    }
    device.faults().refuseDetach.arm(1);
    EXPECT_FALSE(openHid(device));
    const std::string expected = "in lost 030100 hook off; opened; in 030000 start-up; "
                                 "out 030100 off-hook on; "
                                 "in 030100 acknowledges off-hook LED on; write refused 030500; "
                                 "claim refused; closed; detach refused; ";
    EXPECT_EQ(storyLike(expected), expected);
}

} // namespace
