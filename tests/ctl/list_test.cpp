// kelprobectl list, and the choice of a device.
#include "tests/ctl/ctl_bus_test.h"
#include "tools/ctl/cli/failure.h"
#include "tools/ctl/usb/device_list.h"

#include <hidapi/hidapi.h>
#include <json/json.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

Json::Value parse(const std::string& text)
{
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

const std::string how = "; choose by ids (vvvv:pppp), path or number, see kelprobectl list";

// The path of the chosen device, or exit status and message.
std::string choose(const std::optional<std::string>& choice)
{
    try {
        return ctl::chooseDevice(choice).path;
    } catch (const ctl::Failure& failure) {
        return std::to_string(failure.status) + ' ' + failure.what();
    }
}

class List : public CtlBusTest {
protected:
    // The devices of list --json by their paths.
    std::map<std::string, Json::Value> devices()
    {
        EXPECT_EQ(run("list --json"), 0) << err_;
        std::map<std::string, Json::Value> found;
        for (const Json::Value& device : parse(out_))
            found[device["path"].asString()] = device;
        return found;
    }

    sim::UsbDevice& plugKeyboard()
    {
        sim::UsbDeviceInfo info = sim::findProfile("no-telephony")->info;
        info.controls().subclass = sim::InterfaceInfo::kBoot;
        return plug(info);
    }
};

TEST_F(List, SaysThatThereIsNoDevice)
{
    EXPECT_EQ(run("list"), 3);
    EXPECT_EQ(out_ + err_, "kelprobectl: no HID device is present; plug one in\n");
    EXPECT_EQ(run("list --json"), 3);
    EXPECT_EQ(out_, "[]\n");
    plug("no-telephony");
    EXPECT_EQ(run("list --telephony"), 3);
    EXPECT_EQ(out_ + err_,
        "kelprobectl: no telephony device is present; kelprobectl list shows the others\n");
}

TEST_F(List, AlignsDevicesAndGivesAdviceBelow)
{
    sim::UsbDeviceInfo hostile = sim::findProfile("no-telephony")->info;
    hostile.manufacturer = u"\x1b[31mRed\nnext";
    hostile.product = u"\u202ever\u00e9 long";
    hostile.serialNumber = u"\xd800";
    plug(hostile);
    plug().setOpenable(false);
    hid_device* const claimed = hid_open_path(plug("webcam").hidPath().c_str());
    hideDescriptor(plug());
    EXPECT_EQ(run("list"), 0);
    hid_close(claimed);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(out_,
        R"(No  Ids        Path     Name                                      Telephony  Access         Usage pages
1   1209:0001  1-4:1.0  Kelprobe Simulated speakerphone           ?          can be opened  unknown
2   1209:0003  1-3:1.0  Kelprobe Simulated webcam                 ?          in use         unknown
3   1209:0001  1-2:1.0  Kelprobe Simulated speakerphone           yes        no permission  Consumer, Page 0xff00, Telephony
4   1209:0004  1-1:1.0  \x1b[31mRed\x0anext \xe2\x80\xaeveré ...  no         can be opened  Consumer, Page 0xff00

1: no driver has it, so its usage pages are not known; kelprobectl describe 1 reads them
2: another program has the interface; close that program
3: no permission to open /dev/bus/usb/001/003; install the udev rule: kelprobectl doctor explains how
3: an earlier line has the same ids; the window opens that one
A command takes a device by number, ids or path: kelprobectl describe 1
)");
}

TEST_F(List, FindsTheAccessWithoutClaiming)
{
    struct Case {
        sim::UsbDevice& device;
        std::string access;
        Json::Value telephony;
    };
    const std::vector<Case> cases = {
        {plug(), "open", true},
        {plug("no-telephony"), "open", false},
        {plugKeyboard(), "not-tried", false},
        {plug("no-report-ids"), "no-permission", true},
        {plug("webcam"), "busy", {}},
        {plug("led-per-report"), "open", {}},
    };
    cases[3].device.setOpenable(false);
    hid_device* const claimed = hid_open_path(cases[4].device.hidPath().c_str());
    hideDescriptor(cases[5].device);
    const auto list = devices();
    for (const auto& [device, access, telephony] : cases) {
        const Json::Value& entry = list.at(device.hidPath());
        EXPECT_EQ(entry["access"].asString(), access) << device.hidPath();
        EXPECT_EQ(entry["telephony"], telephony) << device.hidPath();
        EXPECT_EQ(entry["accessText"].asString().empty(), access == "open");
        EXPECT_EQ(entry["descriptor"].isNull(), telephony.isNull()) << device.hidPath();
        EXPECT_EQ(device.counters().claims, access == "busy" ? 1 : 0) << device.hidPath();
        EXPECT_EQ(device.driverBound(), access != "busy") << device.hidPath();
    }
    hid_close(claimed);
    EXPECT_EQ(devices().at(cases[4].device.hidPath())["access"].asString(), "open");
}

TEST_F(List, ChoiceReadsTheDescriptorFromTheDeviceIfSysfsHasNone)
{
    auto& telephony = plug();
    auto& other = plug("no-telephony");
    auto& keyboard = plugKeyboard();
    auto& stalling = plug("webcam");
    auto& cut = plug("led-per-report");
    for (sim::UsbDevice* const device : {&telephony, &other, &keyboard, &stalling, &cut})
        hideDescriptor(*device);
    stalling.faults().stallReportDescriptor.arm();
    cut.faults().shortLength = 6;
    cut.faults().shortenReportDescriptor.arm();
    for (const auto& [device, descriptor, reads, isTelephony] :
        {std::tuple{&telephony, "050c0901", 1, true}, {&other, "050c0901", 1, false},
            {&keyboard, "", 0, false}, {&stalling, "", 4, false}, {&cut, "050b0905", 4, true}}) {
        const ctl::DeviceEntry entry = ctl::chooseDevice(device->hidPath());
        EXPECT_EQ(report::toHex(entry.descriptor, "").substr(0, 8), descriptor);
        EXPECT_EQ(entry.telephony, isTelephony) << device->hidPath();
        EXPECT_EQ(device->counters().reportDescriptorReads, reads) << device->hidPath();
        EXPECT_TRUE(device->driverBound() && !device->claimed()) << device->hidPath();
    }
}

TEST_F(List, NumbersPathsAndNamesAreThoseOfHidapi)
{
    plug();
    sim::UsbDeviceInfo info = sim::findProfile("webcam")->info;
    info.controls().number = 3;
    info.serialNumber = u"";
    plug(info);
    plug();
    const auto entries = ctl::listDevices();
    const auto text = [](const wchar_t* wide) {
        const std::wstring characters(wide ? wide : L"");
        return std::string(characters.begin(), characters.end()); // they are ASCII here
    };
    size_t number = 0;
    hid_device_info* const list = hid_enumerate(0, 0);
    for (const hid_device_info* found = list; found && number < entries.size();
         found = found->next) {
        const ctl::DeviceEntry& entry = entries[number];
        EXPECT_EQ(entry.number, ++number);
        EXPECT_EQ(entry.path, found->path);
        EXPECT_EQ(entry.interface, found->interface_number);
        EXPECT_EQ(entry.vendorId, found->vendor_id);
        EXPECT_EQ(entry.productId, found->product_id);
        EXPECT_EQ(entry.manufacturer, text(found->manufacturer_string));
        EXPECT_EQ(entry.product, text(found->product_string));
        EXPECT_EQ(entry.serialNumber, text(found->serial_number));
    }
    hid_free_enumeration(list);
    EXPECT_EQ(number, 3);
}

TEST_F(List, PrintsValidJsonForNamesThatAreNotUtf8)
{
    const auto& device = plug();
    std::ofstream(sysDirectory(device) + "product") << "a\xff\xc3\n";
    EXPECT_EQ(devices()[device.hidPath()]["product"].asString(), "a\ufffd\ufffd");
}

TEST_F(List, ExplainsMistakesOnTheCommandLine)
{
    for (const auto& [arguments, message] : std::map<std::string, std::string>{
             {"lits", "unknown command lits; did you mean list?"},
             {"list extra --jsn=3", "unknown option --jsn; did you mean --json?"},
             {"list -- --json", "unexpected argument --json"},
             {"list ''", "unexpected argument \"\""},
             {"list --json=no", "--json takes no value"},
             {"help list extra", "unexpected argument extra"},
             {"hlep", "unknown command hlep; did you mean help?"},
             {"list $(printf '\\033[2J')", "unexpected argument \\x1b[2J"},
         }) {
        EXPECT_EQ(run(arguments), 2) << arguments;
        EXPECT_EQ(err_.substr(0, err_.find('\n')), "kelprobectl: " + message);
    }
    for (const char* const arguments : {"help help", "help", "list --version", "help list"})
        EXPECT_EQ(run(arguments), 0) << arguments;
}

TEST_F(List, SaysWhenASandboxHidesTheNode)
{
    const std::string path = plug().hidPath();
    fs::remove(busDirectory() + "/dev/bus/usb/001/002");
    EXPECT_EQ(devices()[path]["accessText"].asString(),
        "/dev/bus/usb/001/002 is not there; give this container or sandbox access to /dev/bus/usb");
}

// The devices are plugged in again when the program has ended: umockdev aborts the test's process
// if a listener ends while it announces a device.
TEST_F(List, SurvivesUnplugsAtAnyMoment)
{
    constexpr int runs = 20;
    std::array devices = {&plug("no-report-ids"), &plug("led-per-report"), &plug()};
    auto& stays = plug("webcam");
    const auto start = std::chrono::steady_clock::now();
    (void)run("list --json");
    const auto duration = std::chrono::steady_clock::now() - start; // sanitizers make it long
    for (int i = 0; i < runs; ++i) {
        CtlProcess process("list --json", errorFile());
        std::this_thread::sleep_for(duration * i / runs);
        for (sim::UsbDevice* const device : devices)
            device->unplug();
        const Json::Value list = parse(process.rest());
        EXPECT_EQ(process.end(), 0);
        EXPECT_TRUE(std::any_of(list.begin(), list.end(), [&](const Json::Value& entry) {
            return entry["path"] == stays.hidPath() && entry["access"] == "open";
        })) << list;
        for (sim::UsbDevice* const device : devices)
            device->plug();
    }
    EXPECT_TRUE(stays.driverBound() && !stays.claimed());
}

TEST_F(List, FollowsPlugAndUnplug)
{
    auto& first = plug();
    CtlProcess watch("list --watch", errorFile());
    const std::string speakerphone = "1209:0001  1-1:1.0  Kelprobe Simulated speakerphone";
    const std::string pages = "  [Consumer, Page 0xff00, Telephony]  ";
    EXPECT_EQ(watch.line(), "present  " + speakerphone + pages + "can be opened");
    first.unplug();
    EXPECT_EQ(watch.line(), "removed  " + speakerphone);

    // udev sets permissions some time after the device is there.
    first.setOpenable(false);
    first.plug();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    first.setOpenable(true);
    EXPECT_EQ(watch.line(), "added    " + speakerphone + pages + "can be opened");
    EXPECT_TRUE(first.driverBound());
    first.unplug();
    EXPECT_EQ(watch.line(), "removed  " + speakerphone);
    first.setOpenable(false);
    first.plug();
    EXPECT_TRUE(watch.line().starts_with(
        "added    " + speakerphone + pages + "no permission to open /dev/bus/usb"));
    EXPECT_EQ(watch.end(SIGINT), 0);
}

TEST_F(List, ReportsAStormOfPlugsCompletely)
{
    auto& device = plug();
    auto& stays = plug("webcam");
    CtlProcess watch("list --watch --json --telephony", errorFile());
    std::map<std::string, std::string> last; // event by path
    const auto readEvent = [&] {
        const Json::Value event = parse(watch.line());
        const std::string path = event["device"]["path"].asString();
        const std::string name = event["event"].asString();
        EXPECT_NE(name, last[path]) << "plug and unplug alternate";
        EXPECT_TRUE(name == "removed" || event["device"]["number"].isNull() == (name == "added"));
        last[path] = name;
    };
    readEvent();
    readEvent();
    for (int i = 0; i < 100; ++i) {
        device.unplug();
        std::this_thread::sleep_for(std::chrono::milliseconds(i % 4));
        device.plug();
        std::this_thread::sleep_for(std::chrono::milliseconds(i % 7));
    }
    device.unplug();
    stays.unplug();
    while (last[device.hidPath()] != "removed" || last[stays.hidPath()] != "removed")
        readEvent();
    device.plug();
    while (last[device.hidPath()] != "added")
        readEvent();
    EXPECT_EQ(watch.end(SIGTERM), 0);
}

TEST_F(List, WatchEndsWhenItsReaderHasGone)
{
    plug();
    const test::TempDirectory directory;
    const std::string script = "(" KELPROBECTL " list --watch 2>/dev/null; echo $? >"
        + directory.path() + "status) | head -1 >/dev/null";
    EXPECT_EQ(std::system(script.c_str()), 0);
    EXPECT_TRUE(eventually([&] { return test::content(directory.path() + "status") == "3\n"; }));
}

TEST_F(List, ChoosesTheDeviceThatIsMeant)
{
    EXPECT_EQ(choose({}), "3 no HID device is present; plug one in, or try a simulated one");
    plug("no-telephony");
    EXPECT_EQ(choose({}), "3 no device has telephony controls" + how);
    plug();
    EXPECT_EQ(choose({}), "1-2:1.0");
    auto& second = plug();
    for (const auto& [choice, expected] : std::map<std::string, std::string>{
             {"1209:0004", "1-1:1.0"},
             {"1209:0001", "1-3:1.0"}, // the first in hidapi's order, as the window does
             {"1-2:1.0", "1-2:1.0"},
             {"2", "1-2:1.0"},
             {"0", "3 there is no device 0; kelprobectl list shows 3"},
             {"4", "3 there is no device 4; kelprobectl list shows 3"},
             {"1290:0001", "3 device 1290:0001 is not present; did you mean 1209:0001?"},
             {"abcd:ef99",
                 "3 device abcd:ef99 is not present; kelprobectl list shows those that are"},
             {"1-4:1.0", "3 device 1-4:1.0 is not present; did you mean 1-3:1.0?"},
             {"", "2 \"\" does not name a device" + how},
             {"1209:1", "2 \"1209:1\" does not name a device" + how},
             {"\n", "2 \"\\x0a\" does not name a device" + how},
         })
        EXPECT_EQ(choose(choice), expected);
    EXPECT_EQ(choose({}),
        "2 several telephony devices are present (1 = 1209:0001 Kelprobe Simulated speakerphone "
        "at 1-3:1.0, 2 = 1209:0001 Kelprobe Simulated speakerphone at 1-2:1.0)"
            + how);
    EXPECT_EQ(second.counters().claims, 1) << "only the chosen device is claimed";
}

TEST_F(List, DoesNotChooseWhileADeviceIsUnknown)
{
    auto& busy = plug();
    plug("no-telephony");
    hid_device* const claimed = hid_open_path(busy.hidPath().c_str());
    EXPECT_EQ(choose({}),
        "3 1209:0001 cannot be opened: another program has the interface; close that program");
    EXPECT_EQ(choose("1209:0001"), busy.hidPath());
    plug("webcam");
    // In either order: libusb may get the message of a new device before or while it lists the
    // others.
    const std::string several = choose({});
    for (const char* const part : {"2 several devices are or may be telephony devices (",
             " = 1209:0003 Kelprobe Simulated webcam at 1-3:1.0",
             " = 1209:0001 Kelprobe Simulated speakerphone at 1-1:1.0 [another program has the "
             "interface]"})
        EXPECT_NE(several.find(part), std::string::npos) << several;
    EXPECT_TRUE(several.ends_with(how));
    hid_close(claimed);
    busy.unplug();
    EXPECT_EQ(choose({}), "1-3:1.0");
}

TEST(DeviceChoice, HasThreeForms)
{
    for (const auto& [text, expected] : std::map<std::string, bool>{{"1209:0001", true},
             {"0B0E:0410", true}, {"12", true}, {"1-2.3.4:1.0", true}, {"0001:0002:00", true},
             {"", false}, {"1209:000", false}, {"/1209:0001", false}, {"12345", false},
             {"1-2", false}, {"0x12", false}, {"device.hex", false}, {"-1", false}})
        EXPECT_EQ(ctl::isDeviceChoice(text), expected) << text;
}

} // namespace
