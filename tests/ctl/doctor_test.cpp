// kelprobectl doctor.
#include "tests/ctl/ctl_bus_test.h"
#include "tools/ctl/doctor/udev_rule.h"

#include <hidapi/hidapi.h>
#include <json/json.h>

#include <array>
#include <list>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

class Doctor : public CtlBusTest {
protected:
    void SetUp() override
    {
        CtlBusTest::SetUp();
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
    }

    // Runs doctor, which has to print these texts.
    int run(const std::string& arguments, std::initializer_list<std::string> texts)
    {
        const int status = CtlBusTest::run("doctor " + arguments);
        for (const std::string& text : texts)
            EXPECT_NE(out_.find(text), std::string::npos) << text << " not in:\n" << out_ << err_;
        return status;
    }

    // "id:level" of each finding about a device.
    std::string findings(const sim::UsbDevice& device)
    {
        (void)run(device.hidPath() + " --json", {});
        Json::Value report;
        std::istringstream(out_) >> report;
        std::string text;
        for (const Json::Value& finding : report["devices"][0]["findings"])
            text += finding["id"].asString() + ':' + finding["level"].asString() + ' ';
        return text;
    }
};

TEST_F(Doctor, SaysWhatToDoAboutEachDevice)
{
    EXPECT_EQ(run("", {"problem  no HID device is present\n", "Kelprobe can use no device.\n"}), 3);
    auto& open = plug();
    EXPECT_EQ(run("",
                  {"\n\n1209:0001 Kelprobe Simulated speakerphone (1-1:1.0)\n"
                   "  ok       this user can open it\n"
                   "  note     while Kelprobe has it open, the kernel's driver is detached",
                      "\n\nKelprobe can use Kelprobe Simulated speakerphone.\n",
                      "note     there is no display", "ok       /dev/bus/usb is there\n"}),
        0);
    EXPECT_EQ(open.counters().claims, 1) << "it really claims";
    EXPECT_TRUE(open.driverBound() && !open.claimed()) << "and gives the driver back";

    plug("led-per-report").setOpenable(false);
    plug("no-telephony");
    // Advice although another one opens.
    EXPECT_EQ(run("",
                  {"problem  no permission to open /dev/bus/usb/001/003\n",
                      "1 HID device without telephony controls"}),
        0);
    EXPECT_EQ(run("047f:c056", {"Kelprobe can use no device."}), 3);
    EXPECT_EQ(run("1209:0004", {"it has no telephony collection"}), 3);
    EXPECT_EQ(run("1209:0001", {}), 0);
    open.faults().refuseClaim.arm();
    EXPECT_EQ(run("", {"problem  another program has the interface\n"}), 3);
    EXPECT_TRUE(open.driverBound()) << "also after a refused claim";
    EXPECT_EQ(run("9", {}), 3);
    EXPECT_EQ(err_, "kelprobectl: there is no device 9; kelprobectl list shows 3\n");
    for (const char* const wrong : {"x", "''", "--json --udev-rule", "1 --udev-rule", "--json=3"})
        EXPECT_EQ(run(wrong, {}), 2) << wrong;
}

TEST_F(Doctor, NamesEachKindOfFinding)
{
    auto& device = plug();
    const std::string hid = sysDirectory(device) + device.hidPath() + "/0003:1209:0001.0001";
    EXPECT_EQ(findings(device), "open:ok driver:note ");
    device.faults().shortLength = 10;
    device.faults().shortenReportDescriptor.arm();
    EXPECT_EQ(findings(device), "open:ok no-descriptor:problem driver:note ");
    device.faults().clear();
    device.faults().stallReportDescriptor.arm();
    EXPECT_EQ(findings(device), "open:ok no-descriptor:problem driver:note ") << "sysfs has one";
    device.faults().clear();
    std::ofstream(hid + "/report_descriptor", std::ios::app) << "x";
    EXPECT_EQ(findings(device), "open:ok other-descriptor:note driver:note ");
    device.faults().refuseDetach.arm();
    EXPECT_EQ(findings(device), "open-fails:problem ");
    device.faults().clear();

    fs::create_directories(hid + "/hidraw/hidraw7");
    std::ofstream(busDirectory() + "/dev/hidraw7") << "";
    device.setOpenable(false);
    EXPECT_EQ(findings(device), "no-permission:problem hidraw:note ");
    device.setOpenable(true);

    hideDescriptor(device);
    EXPECT_EQ(findings(device), "open:ok no-driver:note ");
    device.faults().stallReportDescriptor.arm();
    EXPECT_EQ(findings(device), "open:ok no-descriptor:problem ");

    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.serialNumber.clear();
    auto& nameless = plug(info);
    nameless.faults().stallStrings.arm();
    EXPECT_EQ(findings(nameless), "open:ok driver:note no-name:note no-name:note ");
    EXPECT_EQ(findings(device), "open:ok no-descriptor:problem same-ids:problem ");
    EXPECT_EQ(run(device.hidPath(), {"Kelprobe can use no device."}), 3);
    device.faults().clear();
    EXPECT_EQ(run(device.hidPath(), {"Kelprobe can use no device."}), 3) << "the first is opened";
    info.controls().subclass = sim::InterfaceInfo::kBoot;
    EXPECT_EQ(findings(plug(info)), "not-tried:note ");
}

TEST_F(Doctor, NamesTheProgramThatHasTheInterface)
{
    auto& device = plug();
    hid_device* const opened = hid_open_path(device.hidPath().c_str());
    ASSERT_TRUE(opened);
    EXPECT_EQ(run("",
                  {"close it; these have the device open: test-ctl-usb (" + std::to_string(getpid())
                      + ")"}),
        3);
    EXPECT_TRUE(device.claimed()) << "the other program keeps it";
    hid_close(opened);
    EXPECT_EQ(run("", {}), 0);
}

// libusb may fail to start: umockdev gives programs that start at the same time the same socket.
TEST_F(Doctor, LeavesTheDriverAttachedIfSeveralRunAtOnce)
{
    auto& device = plug();
    for (int i = 0; i < 10; ++i) {
        std::list<CtlProcess> processes;
        for (int k = 0; k < 4; ++k)
            processes.emplace_back("doctor", errorFile());
        for (CtlProcess& process : processes) {
            const std::string text = process.rest();
            EXPECT_TRUE(text.find("Kelprobe can use Kelprobe") != text.npos
                || text.find("USB cannot be used") != text.npos)
                << text;
        }
        ASSERT_TRUE(device.driverBound()) << i;
    }
}

// Signals come at any moment of the program.
TEST_F(Doctor, LeavesTheDriverAttachedWhenASignalEndsIt)
{
    auto& device = plug();
    hideDescriptor(device);
    for (int i = 0; i < 40; ++i) {
        const int claims = device.counters().claims;
        CtlProcess process("doctor", errorFile());
        if (i % 2)
            (void)eventually([&] { return device.counters().claims != claims; });
        std::this_thread::sleep_for(std::chrono::milliseconds(i / 4));
        const int status = process.end(i % 4 < 2 ? SIGINT : SIGTERM);
        EXPECT_TRUE(status == 0 || status > 128) << status;
        EXPECT_TRUE(eventually([&] { return !device.claimed(); }));
        EXPECT_TRUE(device.driverBound()) << i;
    }
}

// The same devices as in tests/tools/rules_test, which asks the rule itself.
TEST_F(Doctor, SaysWhyTheUdevRuleDoesNotCoverADevice)
{
    sim::UsbDeviceInfo info = sim::loadProfiles("speakerphone").front().info;
    const sim::InterfaceInfo telephony = info.controls();
    const sim::InterfaceInfo audio{.number = 1, .interfaceClass = 1, .subclass = 1};
    sim::InterfaceInfo protocol = telephony;
    protocol.protocol = 1;
    const auto other = [](uint8_t interfaceClass, uint8_t subclass) {
        return sim::InterfaceInfo{
            .number = 2, .interfaceClass = interfaceClass, .subclass = subclass};
    };
    const std::string covered = " doctor --udev-rule | ";
    for (const auto& [interfaces, text] :
        std::vector<std::pair<std::vector<sim::InterfaceInfo>, std::string>>{
            {{telephony, audio}, covered},
            {{telephony}, "it has no audio, so Kelprobe's udev rule does not cover it"},
            {{protocol, audio}, "it is also a keyboard, so"},
            {{telephony, audio, other(0x08, 6)}, "it is also a disk, so"},
            {{telephony, audio, other(0x0b, 0)}, "it is also a smart card reader, so"},
            {{telephony, audio, other(0xe0, 1)}, "it is also a Bluetooth radio, so"},
            {{telephony, audio, other(0xe0, 2)}, covered},
        }) {
        info.interfaces = interfaces;
        auto& device = plug(info);
        device.setOpenable(false);
        (void)run("", {text});
        device.unplug();
    }
}

TEST_F(Doctor, PrintsTheUdevRule)
{
    EXPECT_EQ(run("--udev-rule", {}), 0);
    EXPECT_EQ(out_, test::content(KELPROBE_UDEV_RULE_FILE));
}

TEST(UdevRule, IsFoundInTheFirstDirectoryThatHasIt)
{
    const test::TempDirectory first;
    const test::TempDirectory second;
    const std::vector<fs::path> directories = {first.path(), second.path()};
    const auto state = [&] { return ctl::udevRuleState(directories); };
    const std::string rule = test::content(KELPROBE_UDEV_RULE_FILE);
    EXPECT_EQ(state(), ctl::RuleState::kMissing);
    (void)second.file("70-kelprobe.rules", "# changed comment\n\n" + rule);
    EXPECT_EQ(state(), ctl::RuleState::kInstalled);
    (void)first.file("70-kelprobe.rules", ""); // switches the rule off
    EXPECT_EQ(state(), ctl::RuleState::kDiffers);
}

TEST(UdevRule, RemedyDependsOnTheDeviceAndTheRule)
{
    const test::TempDirectory directory;
    ctl::DeviceEntry entry;
    entry.vendorId = 0x47f;
    entry.productId = 0xc056;
    const auto remedy = [&](std::string_view exclusion) {
        return ctl::permissionRemedy(entry, exclusion, std::array{fs::path(directory.path())});
    };
    EXPECT_NE(
        remedy("").find("doctor --udev-rule | sudo tee /etc/udev/rules.d/70-kelprobe.rules\n"),
        std::string::npos);
    (void)directory.file("70-kelprobe.rules", ctl::udevRule());
    EXPECT_TRUE(remedy("").starts_with("the udev rule is installed"));
    EXPECT_NE(remedy("it has no audio")
                  .find(R"(echo 'SUBSYSTEM=="usb", ATTR{idVendor}=="047f", )"
                        R"(ATTR{idProduct}=="c056", TAG+="uaccess"' | sudo tee )"
                        "/etc/udev/rules.d/70-kelprobe-047f-c056.rules\n"),
        std::string::npos);
    (void)directory.file("70-kelprobe-047f-c056.rules", "");
    EXPECT_TRUE(remedy("it has no audio").starts_with("the udev rule is installed"));
}

} // namespace
