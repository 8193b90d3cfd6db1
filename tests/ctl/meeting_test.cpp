// kelprobectl meeting as a process, on the simulated bus of this one.
#include "report/format/recording.h"
#include "tests/ctl/ctl_bus_test.h"
#include "tests/ctl/pressed_device.h"

#include <json/json.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace {

#define ONHOOK                                                                                     \
    "output  03 00 00\n"                                                                           \
    "output  03 00 00\n"                                                                           \
    "output  03 00 00\n"
#define LOG "log     0x1209-HID-0x0001# "

class Meeting : public CtlBusTest {
protected:
    void SetUp() override
    {
        CtlBusTest::SetUp();
        mkfifo(input().c_str(), 0600);
        input_ = open(input().c_str(), O_RDWR | O_CLOEXEC); // so that its end comes with close()
    }
    void TearDown() override
    {
        closeInput();
        CtlBusTest::TearDown();
    }

    // Starts the meeting with `options` and waits until the device is open.
    std::unique_ptr<CtlProcess> start(const std::string& options = "")
    {
        auto process
            = std::make_unique<CtlProcess>("meeting " + options + " <" + input(), errorFile());
        if (options.empty()) {
            EXPECT_EQ(lines(*process, 5), "open\n" ONHOOK LOG "KXHost Created\n");
        }
        return process;
    }

    void say(const std::string& text) { ASSERT_GT(write(input_, text.data(), text.size()), 0); }

    void closeInput()
    {
        if (input_ >= 0)
            close(std::exchange(input_, -1));
    }

    // The next lines without times and meanings.
    static std::string lines(CtlProcess& process, size_t count)
    {
        std::string text;
        for (size_t i = 0; i < count; ++i)
            text += plain(process.line()) + '\n';
        return text;
    }

    // The same, sorted, where two threads print.
    static std::multiset<std::string> sorted(CtlProcess& process, size_t count)
    {
        std::multiset<std::string> all;
        for (size_t i = 0; i < count; ++i)
            all.insert(plain(process.line()));
        return all;
    }

    // Standard output until it ends, as lines().
    static std::string rest(CtlProcess& process)
    {
        std::string text;
        for (std::string line; (line = process.line()) != "end";)
            text += plain(line) + '\n';
        return text;
    }

    std::string input() const { return directory_.path() + "input"; }
    int input_ = -1;
    const test::TempDirectory directory_;

private:
    static std::string plain(const std::string& line)
    {
        constexpr size_t timeWidth = 11;
        std::string text = line.size() < timeWidth ? line : line.substr(timeWidth);
        const size_t bytes = 8; // after "output  "
        if (text.starts_with("output") || text.starts_with("input"))
            text.resize(std::min(text.size(), text.find("  ", bytes)));
        return text;
    }
};

TEST_F(Meeting, PrintsEverythingInItsOrder)
{
    auto& usb = plug();
    PressedDevice device(usb);
    auto process = start();
    say("ring\n");
    EXPECT_EQ(lines(*process, 2), "output  03 08 00\n" LOG "Incoming Meeting\n");
    say("pickup\n");
    EXPECT_EQ(
        lines(*process, 3), "output  03 00 00\noutput  03 01 00\n" LOG "Accept Meeting from UI\n");
    say("mute\n");
    EXPECT_EQ(lines(*process, 2), "output  03 05 00\n" LOG "Muted from UI\n");
    device.press("mute");
    EXPECT_EQ(lines(*process, 2), "input   03 09 00\nunmute  from the device\n");
    // The reader thread sends while the main thread logs.
    EXPECT_EQ(sorted(*process, 3),
        (std::multiset<std::string>{
            "input   03 01 00", LOG "Unmuted from device", "output  03 01 00"}));
    say("ring\n");
    EXPECT_EQ(
        lines(*process, 2), "output  03 09 00\n" LOG "In Meeting and Incoming a New Meeting\n");
    say("hangup\n quit \n");
    EXPECT_EQ(rest(*process),
        ONHOOK "output  03 00 00\noutput  03 01 00\n" LOG
               "In Meeting and Reject a New Meeting from UI\n" ONHOOK "close\n");
    EXPECT_EQ(process->end(), 0) << test::content(errorFile());
    EXPECT_EQ(test::content(errorFile()), "");
    EXPECT_TRUE(usb.driverBound());
}

TEST_F(Meeting, AnswersFromTheDevice)
{
    PressedDevice device(plug());
    auto process = start();
    say("ring\n");
    EXPECT_EQ(lines(*process, 2), "output  03 08 00\n" LOG "Incoming Meeting\n");
    device.press("hook");
    EXPECT_EQ(lines(*process, 2), "input   03 01 00\naccept  from the device\n");
    EXPECT_EQ(sorted(*process, 5),
        (std::multiset<std::string>{"output  03 00 00", "output  03 00 00", "output  03 01 00",
            "output  03 01 00", (LOG "Accept Meeting from device")}));
    closeInput();
    EXPECT_EQ(rest(*process), ONHOOK "close\n");
    EXPECT_EQ(process->end(), 0) << test::content(errorFile());
}

TEST_F(Meeting, TakesItsCommandsFromAnyInput)
{
    plug();
    const std::string longLine(100'000, 'x');
    const struct {
        std::string input, expectedOutput, expectedError;
    } cases[] = {
        {"", "", ""},
        {"ring\nquit\nring\n", "Incoming Meeting", ""},
        {"\n  \nring\r\n mute", "Incoming Meeting",
            "kelprobectl: mute has no effect: there is no call\n"},
        {"pickup\nhangup", "",
            "kelprobectl: pickup has no effect: nothing rings\n"
            "kelprobectl: hangup has no effect: nothing rings\n"},
        {"rinng\nx\033[2J\nring x\nring", "Incoming Meeting",
            "kelprobectl: unknown command rinng; did you mean ring?\n"
            "kelprobectl: unknown command x\\x1b[2J; type help\n"
            "kelprobectl: unknown command ring x; type help\n"},
        {longLine + "\nhelp", "",
            "kelprobectl: commands: ring, pickup, hangup, mute, quit, help\n"},
    };
    for (const auto& test : cases) {
        const std::string file = directory_.file("script", test.input);
        EXPECT_EQ(run("meeting <" + file), 0) << test.input;
        EXPECT_NE(out_.find(test.expectedOutput), std::string::npos) << out_;
        EXPECT_TRUE(err_.ends_with(test.expectedError)) << err_;
        EXPECT_NE(out_.find("close"), std::string::npos) << "the device is closed";
        EXPECT_LT(err_.size(), 10'000U);
    }
    EXPECT_EQ(run("meeting </dev/null"), 0);
    EXPECT_EQ(run("meeting <&-"), 0) << "no input at all";
}

TEST_F(Meeting, LeavesTheDeviceOnHookHoweverItEnds)
{
    auto& usb = plug();
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        auto process = start();
        say("ring\npickup\n");
        EXPECT_NE(lines(*process, 5).find("03 01 00"), std::string::npos);
        process->kill(signal);
        EXPECT_EQ(rest(*process), ONHOOK "close\n");
        EXPECT_EQ(process->end(), 0) << test::content(errorFile());
        EXPECT_TRUE(usb.driverBound());
    }
    auto process = start();
    say("ring\npickup\n");
    EXPECT_NE(lines(*process, 5).find("03 01 00"), std::string::npos);
    process->closeOutput();
    say("mute\n");
    EXPECT_EQ(process->end(), 3);
    EXPECT_TRUE(test::content(errorFile()).starts_with("kelprobectl: standard output: "));
    EXPECT_EQ(usb.takeOutputs().back(), (Bytes{3, 0, 0}));
    EXPECT_TRUE(usb.driverBound());
}

TEST_F(Meeting, SaysWhyTheDeviceCannotBeUsed)
{
    EXPECT_EQ(run("meeting </dev/null"), 3) << "no device";
    auto& usb = plug();
    usb.setOpenable(false);
    EXPECT_EQ(run("meeting </dev/null"), 3);
    EXPECT_NE(err_.find("1209:0001 cannot be opened: no permission"), std::string::npos) << err_;
    usb.setOpenable(true);
    plug();
    EXPECT_EQ(run("meeting 2 </dev/null"), 3);
    EXPECT_NE(err_.find("opens only the first"), std::string::npos) << err_;
}

TEST_F(Meeting, SaysThatTheDeviceDoesNotTakeReports)
{
    plug().faults().failWrite.arm();
    EXPECT_EQ(run("meeting </dev/null"), 1);
    EXPECT_NE(out_.find("failed: the device refused it"), std::string::npos) << out_;
    EXPECT_NE(err_.find("kelprobectl: the device does not take reports: the device refused it; "),
        std::string::npos)
        << err_;
}

TEST_F(Meeting, SaysThatTheDeviceGetsNoReports)
{
    plug().faults().stallReportDescriptor.arm();
    EXPECT_EQ(run("meeting </dev/null"), 1);
    EXPECT_NE(err_.find("kelprobectl: this device gets no reports: "), std::string::npos) << err_;
}

TEST_F(Meeting, SwitchesAMuteLedInItsOwnReportOff)
{
    auto& usb = plug("led-per-report");
    for (const char* const script : {"ring\npickup\nmute\n", "ring\npickup\nmute\nring\n"}) {
        EXPECT_EQ(run("meeting <" + directory_.file("script", script)), 0) << err_;
        const auto outputs = usb.takeOutputs();
        std::map<uint8_t, Bytes> last;
        for (const Bytes& report : outputs)
            last[report.front()] = report;
        EXPECT_EQ(std::count(outputs.begin(), outputs.end(), Bytes{9, 1}), 1);
        for (const auto& [id, report] : last)
            EXPECT_EQ(report, (Bytes{id, 0})) << script;
    }
}

TEST_F(Meeting, EndsWhenTheDeviceHasGone)
{
    auto& usb = plug();
    const std::string recording = directory_.path() + "recording";
    auto process = start("--record " + recording);
    EXPECT_TRUE(lines(*process, 5).ends_with("KXHost Created\n"));
    usb.unplug();
    EXPECT_EQ(lines(*process, 1), "gone\n");
    (void)process->rest();
    EXPECT_EQ(process->end(), 3);
    EXPECT_NE(test::content(errorFile()).find("the device has gone"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(recording)) << "it is complete until then";
}

TEST_F(Meeting, WritesJsonAndARecording)
{
    auto& usb = plug();
    PressedDevice device(usb);
    const std::string recording = directory_.path() + "recording";
    auto process = start("--json --record " + recording);
    say("ring\n");
    std::vector<Json::Value> objects;
    const auto next = [&] {
        std::istringstream(process->line()) >> objects.emplace_back();
        return objects.back()["kind"].asString();
    };
    while (objects.size() < 7)
        (void)next();
    device.press("busy");
    EXPECT_EQ(next(), "input");
    EXPECT_EQ(next(), "reject");
    EXPECT_EQ(objects[5]["report"], "030800");
    EXPECT_EQ(objects[5]["meaning"][0], "Ring on");
    EXPECT_TRUE(objects[5]["error"].isNull());
    EXPECT_EQ(objects[6]["text"], "0x1209-HID-0x0001# Incoming Meeting");
    EXPECT_EQ(objects[7]["report"], "030200");
    for (const Json::Value& object : objects)
        EXPECT_TRUE(object["time"].isInt64());
    process->kill(SIGTERM);
    (void)process->rest();
    EXPECT_EQ(process->end(), 0) << test::content(errorFile());

    const auto result = report::readRecordingFile(recording);
    ASSERT_TRUE(std::holds_alternative<report::Recording>(result));
    const auto& content = std::get<report::Recording>(result);
    EXPECT_EQ(content.devices.at(0).descriptor, usb.info().controls().reportDescriptor);
    EXPECT_TRUE(std::any_of(content.reports.begin(), content.reports.end(), [](const auto& report) {
        return report.direction == report::RecordedReport::Direction::kInput
            && report.bytes == Bytes{3, 2, 0};
    }));
}

} // namespace
