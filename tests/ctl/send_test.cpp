// kelprobectl lamp and send as processes, and the reports that switch lamps.
#include "tests/ctl/ctl_bus_test.h"
#include "tools/ctl/trace/hidraw.h"
#include "tools/ctl/traffic/lamp_report.h"

#include <sys/stat.h>

#include <fcntl.h>

#include <thread>

namespace {

using Ids = std::pair<uint16_t, uint16_t>;

class Send : public CtlBusTest {
protected:
    struct Case {
        const char* arguments;
        int status;
        const char* out;
        const char* err;     // its beginning
        const char* outputs; // that the device received
    };

    void check(sim::UsbDevice& device, const Case& expected)
    {
        EXPECT_EQ(run(expected.arguments), expected.status) << expected.arguments << '\n' << err_;
        EXPECT_EQ(out_, expected.out);
        EXPECT_TRUE(err_.starts_with(expected.err) && err_.empty() == !*expected.err) << err_;
        EXPECT_LE(std::count(err_.begin(), err_.end(), '\n'), 2) << err_;
        std::string outputs;
        for (const Bytes& report : device.takeOutputs())
            outputs += sim::toHex(report) + "; ";
        EXPECT_EQ(outputs, expected.outputs) << expected.arguments;
        EXPECT_TRUE(device.driverBound());
    }
};

TEST_F(Send, PrintsAndSendsOnlyWhatTheDeviceHas)
{
    auto& device = plug();
    for (const Case& expected : std::initializer_list<Case>{
             {"send 03 08 00", 0, "output  03 08 00       Ring on\n", "", "03 08 00; "},
             {"send 0x03,0x08,0x00 --json", 0,
                 R"({"kind":"output","meaning":["Ring on"],"report":"030800"})"
                 "\n",
                 "", "03 08 00; "},
             {"send '0309 00' --device 1209:0001", 0,
                 "output  03 09 00       Off-Hook on, Ring on\n", "", "03 09 00; "},
             {"send 03", 0, "output  03             1 byte long instead of 3\n", "", "03; "},
             {"send 03 0", 2, "", "kelprobectl: \"03 0\" is not hexadecimal; ", ""},
             {"send ''", 2, "", "kelprobectl: \"\" is not hexadecimal; ", ""},
             {"send 03 08 00 00", 2, "", "kelprobectl: output report 03 of 1209:0001 is too long",
                 ""},
             {"send 07 00", 2, "",
                 "kelprobectl: 1209:0001 has no output report 07; it has 02, 03, 04", ""},
             {"send 01 --feature", 2, "",
                 "kelprobectl: 1209:0001 has no feature report 01; it has 04", ""},
             {"send 03 00 --feature", 2, "",
                 "kelprobectl: 1209:0001 has no feature report 03; it has it as output report", ""},
             {"send 03 00 --device 2", 3, "", "kelprobectl: there is no device 2; ", ""},
         })
        check(device, expected);
    device.faults().failWrite.arm(1);
    check(device,
        {"send 03 08 00", 1, "output  03 08 00       Ring on\n",
            "kelprobectl: 1209:0001 did not take the report: the device refused it\n", ""});
    device.setOpenable(false);
    check(device, {"send 03 08 00", 3, "", "kelprobectl: 1209:0001 cannot be opened: ", ""});
}

TEST_F(Send, BeginsWithZeroForADeviceWithoutIds)
{
    auto& device = plug("no-report-ids");
    EXPECT_EQ(run("send 01"), 2);
    EXPECT_NE(err_.find("; it uses no ids; begin with 00"), std::string::npos) << err_;
    EXPECT_EQ(run("send 00 01"), 0) << err_;
    EXPECT_EQ(device.takeOutputs(), Reports({{0, 1}}));
}

TEST_F(Send, LampsBelongToTheDevice)
{
    auto& device = plug();
    for (const Case& expected :
        std::initializer_list<Case>{
            {"lamp ring off", 0, "output  03 00 00       nothing on\n", "", "03 00 00; "},
            {"lamp Ring OFF --json", 0,
                R"({"kind":"output","meaning":[],"report":"030000"})"
                "\n",
                "", "03 00 00; "},
            {"lamp ring on --for nan", 2, "", "kelprobectl: --for: \"nan\" is not a number", ""},
            {"lamp ring on --for 1e9", 2, "", "kelprobectl: --for: \"1e9\" is not a number", ""},
            {"lamp hold on --for 0.05", 0,
                "output  03 10 00       Hold on\noutput  03 00 00       nothing on\n", "",
                "03 10 00; 03 00 00; "},
            {"lamp microphone blink --for 0.05", 0,
                "output  03 20 00       Microphone on\noutput  03 00 00       nothing on\n", "",
                "03 20 00; 03 00 00; "},
            {"lamp rinh on", 2, "", "kelprobectl: unknown lamp \"rinh\"; did you mean ring?\n", ""},
            {"lamp ring blik", 2, "", "kelprobectl: unknown action \"blik\"; did you mean blink?\n",
                ""},
            {"lamp message-waiting on", 1, "",
                "kelprobectl: 1209:0001 has no message-waiting lamp; it has off-hook, speaker, ",
                ""},
        })
        check(device, expected);
    device.faults().failWrite.arm(1);
    check(device,
        {"lamp ring on --for 1", 1, "output  03 08 00       Ring on\n",
            "kelprobectl: ", "03 00 00; "});
}

TEST_F(Send, CtrlCSwitchesTheLampOff)
{
    auto& device = plug();
    for (const auto& [action, signal] : {std::pair{"on", SIGQUIT}, std::pair{"blink", SIGINT}}) {
        CtlProcess lamp(std::string("lamp ring ") + action, errorFile());
        ASSERT_TRUE(device.waitForOutputs(1));
        lamp.kill(signal);
        (void)lamp.rest();
        EXPECT_EQ(lamp.end(), 0);
        EXPECT_EQ(device.takeOutputs(), Reports({{3, 8, 0}, {3, 0, 0}}));
        EXPECT_TRUE(device.driverBound());
    }
    CtlProcess lamp("lamp ring on", errorFile());
    ASSERT_TRUE(device.waitForOutputs(1));
    device.unplug();
    EXPECT_EQ(lamp.end(), 3);
    EXPECT_NE(test::content(errorFile()).find("1209:0001 has gone"), std::string::npos);
}

// Standard output is a pipe that nobody reads.
TEST_F(Send, CtrlCEndsACommandThatCannotPrint)
{
    auto& device = plug();
    const test::TempDirectory directory;
    const std::string pipe = directory.path() + "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int end = open(pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    while (write(end, "full", 4) == 4) { }
    for (const auto& [arguments, status] :
        {std::pair{"lamp ring on >", 0}, std::pair{"send 03 08 00 >", 1}}) {
        CtlProcess process(arguments + pipe, errorFile());
        while (!device.claimed())
            std::this_thread::yield();
        process.kill(SIGINT);
        EXPECT_EQ(process.end(), status) << arguments;
        EXPECT_TRUE(device.driverBound());
        const auto outputs = device.takeOutputs();
        EXPECT_TRUE(outputs.empty() || outputs.back() == (Bytes{3, 0, 0}));
    }
    close(end);
}

TEST_F(Send, NamesADeviceWithoutLamps)
{
    plug("no-telephony");
    EXPECT_EQ(run("lamp ring on --device 1"), 1);
    EXPECT_EQ(err_, "kelprobectl: 1209:0004 has no lamps\n");
}

// Output items after "Usage Page (LED), Application collection".
std::string lamps(const std::vector<uint8_t>& items)
{
    std::vector<uint8_t> descriptor{0x05, 0x08, 0x09, 0x01, 0xa1, 0x01};
    descriptor.insert(descriptor.end(), items.begin(), items.end());
    descriptor.push_back(0xc0);
    std::string text;
    for (const ctl::Lamp& lamp : ctl::lampsOf(report::readLayout(descriptor), {}))
        text += lamp.name + ' ' + report::toHex(lamp.on) + " (" + report::toHex(lamp.off) + "); ";
    return text;
}

TEST(LampReport, SwitchesOneLamp)
{
    // Two bits without report ids, in the second of which usb.ids would know the name.
    EXPECT_EQ(lamps({0x15, 0, 0x25, 1, 0x75, 1, 0x95, 2, 0x09, 0x17, 0x09, 0x4d, 0x91, 0x02}),
        "off-hook 00 01 (00 00); 0x004d 00 02 (00 00); ");
    // A brightness of a byte after three bits, in report 5.
    EXPECT_EQ(lamps({0x85, 5, 0x75, 3, 0x95, 1, 0x91, 0x01, 0x15, 0, 0x26, 0xff, 0, 0x75, 8, 0x09,
                  0x09, 0x91, 0x02}),
        "mute 05 f8 07 (05 00 00); ");
    // An array: value 1 is off-hook, 2 ring.
    EXPECT_EQ(lamps({0x15, 1, 0x25, 2, 0x75, 4, 0x95, 2, 0x09, 0x17, 0x09, 0x18, 0x91, 0x00}),
        "off-hook 00 01 (00 00); ring 00 02 (00 00); ");
    // The same from 0: the value 3 is none. Then no value is left for none.
    EXPECT_EQ(lamps({0x15, 0, 0x25, 2, 0x75, 4, 0x95, 2, 0x19, 0x17, 0x29, 0x19, 0x91, 0x00}),
        "off-hook 00 30 (00 33); ring 00 31 (00 33); 0x0019 00 32 (00 33); ");
    EXPECT_EQ(lamps({0x15, 0, 0x25, 3, 0x75, 2, 0x95, 4, 0x19, 0x17, 0x29, 0x1a, 0x91, 0x00}), "");
    EXPECT_EQ(
        lamps({0x15, 0xfe, 0x25, 1, 0x75, 2, 0x95, 4, 0x19, 0x17, 0x29, 0x1a, 0x91, 0x00}), "");
    // No logical range; constant; an input item.
    EXPECT_EQ(lamps({0x75, 1, 0x95, 1, 0x09, 0x20, 0x91, 0x02, 0x09, 0x17, 0x91, 0x03, 0x09, 0x18,
                  0x81, 0x02}),
        "hold 00 01 (00 00); ");
}

TEST(Hidraw, ReadsWhatSysfsHas)
{
    const test::TempDirectory classes;
    std::filesystem::create_directories(classes.path() + "hidraw3/device");
    classes.file("hidraw3/device/report_descriptor", "\x05\x0b");
    classes.file("hidraw3/device/uevent", "DRIVER=x\nHID_ID=0003:00001209:0000ABCD\nHID_NAME=y\n");
    EXPECT_EQ(ctl::hidrawDescriptor("/dev/hidraw3", classes.path()), report::Bytes({5, 0x0b}));
    EXPECT_EQ(ctl::hidrawIds("/dev/hidraw3", classes.path()), Ids(0x1209, 0xabcd));
    for (const char* const path : {"1-1:1.0", "/dev/hidraw4", "/dev/x/../hidraw3", ""}) {
        EXPECT_TRUE(ctl::hidrawDescriptor(path, classes.path()).empty()) << path;
        EXPECT_EQ(ctl::hidrawIds(path, classes.path()), Ids()) << path;
    }
}

} // namespace
