// The commands of a bench on real devices, without a program around it: what each command answers,
// and the lines that it adds to the transcript.
#include "sim/bench/conversation.h"
#include "sim/profile/profile_text.h"
#include "sim/profile/profiles.h"
#include "tests/sim/hid_handle.h"

#include <gtest/gtest.h>
#include <json/value.h>
#include <libusb.h>
#include <poll.h>

namespace {

class Commands : public testing::Test, public sim::Answers, public sim::BenchListener {
protected:
    void TearDown() override
    {
        conversation_.reset();
        hid_exit();
        bench_.reset();
    }

    void start(const std::vector<sim::Profile>& profiles)
    {
        bench_.emplace(bus_, queue_, profiles);
        bench_->add(*this);
        conversation_.emplace(*bench_, *this);
    }
    void startBuiltIn(const std::string& name) { start(sim::loadProfiles(name)); }
    void startText(const std::string& text)
    {
        start(std::vector{sim::parseProfile(text, "p.json", [](const std::string& name) {
            return report::readDescriptorFile(KELPROBE_TEST_PROFILES "/" + name);
        })});
    }

    // Gives a command and returns its status, and the error if there is one: "1 ring is off".
    std::string give(const std::string& command)
    {
        answer_.clear();
        conversation_->add(command);
        while (answer_.empty()) {
            pollfd wake{bench_->fd(), POLLIN, 0};
            poll(&wake, 1, 5);
            bench_->tick();
        }
        return answer_;
    }

    // The lines of the transcript since the last call, without their times.
    std::string lines()
    {
        bench_->tick();
        return std::exchange(lines_, "");
    }

    std::string lampOf(const std::string& name)
    {
        return nameOf(bench_->device(1).lamps().state(name).value());
    }

    std::vector<std::string> lampEvents_; // "ring on"

private:
    void send(const Json::Value& object) override
    {
        if (object.isMember("status"))
            answer_ = object["status"].asString()
                + (object.isMember("error") ? ' ' + object["error"].asString() : "");
    }
    void onEvent(const sim::BenchEvent& event) override
    {
        constexpr size_t kTime = 13;
        const std::string text = toText(event, sim::Numbered::kNo);
        lines_ += text.empty() ? "" : text.substr(kTime) + '\n';
        if (event.kind == sim::BenchEvent::Kind::kLamp)
            lampEvents_.push_back(event.name + ' ' + event.state);
    }

    sim::UsbBus bus_;
    sim::EventQueue queue_;
    std::optional<sim::Bench> bench_;
    std::optional<sim::Conversation> conversation_;
    std::string answer_;
    std::string lines_;
};

TEST_F(Commands, FailOnADeviceThatCannotDoThem)
{
    startText(R"({"vendorId": "1209", "productId": "0001", "interfaces": [{"class": "audio"}]})");
    for (const auto& [command, answer] : {
             std::pair{"raw 01", "1 the device has no HID interface"},
             {"fault flood 1", "1 the device has no HID interface"},
             {"press mute", "2 the device has no button mute"},
             {"expect ring off", "2 the device has no lamp ring"},
             {"unplug", "0"},
         })
        EXPECT_EQ(give(command), answer) << command;
}

TEST_F(Commands, NeedADeviceThatIsPluggedIn)
{
    startBuiltIn("speakerphone");
    EXPECT_EQ(give("unplug"), "0");
    for (const char* const command : {"press mute", "press mute --hold", "release mute", "mute",
             "hook", "hook off", "raw 01", "fault flood 1"})
        EXPECT_EQ(give(command), "1 the device is unplugged") << command;
    EXPECT_EQ(give("press mutt"), "2 the device has no button mutt; did you mean mute?");
    EXPECT_EQ(give("fault write 1"), "0");
    EXPECT_EQ(lines(), "--   unplugged\n--   fault write on\n");
}

TEST_F(Commands, AFloodSaysHowManyReportsAreLost)
{
    startBuiltIn("speakerphone");
    EXPECT_EQ(give("fault flood 2"), "1 no program listens");
    EXPECT_EQ(lines(), "in   03 00 00     flood, 2 times  (no program listens)\n");
    libusb_context* context = nullptr;
    ASSERT_EQ(libusb_init(&context), 0);
    libusb_device_handle* const handle = libusb_open_device_with_vid_pid(context, 0x1209, 1);
    ASSERT_TRUE(handle);
    ASSERT_EQ(libusb_detach_kernel_driver(handle, 0), 0);
    ASSERT_EQ(libusb_claim_interface(handle, 0), 0);
    EXPECT_EQ(give("fault flood 65536"), "0");
    EXPECT_EQ(give("fault flood 3"), "1 the program reads too slowly: 3 of the reports are lost");
    libusb_close(handle);
    libusb_exit(context);
}

TEST_F(Commands, TellAFaultWithTheNumberZeroFromOneThatIsOff)
{
    startBuiltIn("speakerphone");
    for (const auto& [command, answer, lines] : {
             std::tuple{"fault short 0", "0", "--   fault short on\n"},
             {"fault short off", "0", "--   fault short off\n"},
             {"fault short", "2 fault short takes a length in bytes, or off", ""},
             {"fault open 0", "2 fault open takes no number", ""},
             {"fault open", "0", "--   fault open on\n"},
             {"fault none 3", "2 fault none takes no number", ""},
             {"fault none off", "2 fault none takes no number", ""},
             {"fault none", "0", "--   fault open off\n"},
             {"fault open off", "0", ""},
             {"fault write 0", "2 fault write takes a number from 1, or off", ""},
             {"fault flood off", "2 fault flood takes a number of reports from 1 to 65536", ""},
         }) {
        EXPECT_EQ(give(command), answer) << command;
        EXPECT_EQ(this->lines(), lines) << command;
    }
}

TEST_F(Commands, ReadTheirWords)
{
    startBuiltIn("speakerphone");
    for (const auto& [line, answer] : {
             std::pair{"raw 03:01:00", "2 raw takes bytes in hexadecimal, such as 03 01 00"},
             {" 1 : expect ring off", "0"},
             {"2: mute", "2 no such device; there are 1"},
             {"9999999999: mute", "2 no such device; there are 1"},
             {"a: mute", "2 unknown command a:; try help"},
             {"expect ring off --within=1s", "0"},
             {"expect ring on --within=1x", "2 --within takes a time such as 500ms or 2s"},
             {"expect ring on --within=", "2 --within takes a time such as 500ms or 2s"},
             {"expect ring on --within", "2 --within takes a time such as 500ms or 2s"},
             {"lamps --json=1", "2 --json takes no value"},
             {"lamps --jsn=1", "2 unknown option --jsn; did you mean --json?"},
             {"press \x1b[31mx", "2 the device has no button \\x1b[31mx"},
         })
        EXPECT_EQ(give(line), answer) << line;
}

TEST_F(Commands, TheTranscriptHasEachChangeOfTheHookSwitchOnce)
{
    startBuiltIn("speakerphone");
    const Hid hid(hid_open(0x1209, 1, nullptr));
    EXPECT_TRUE(writeReport(hid, {3, 1, 0})); // the LED moves the hook switch
    EXPECT_EQ(lines(), "--   opened\nout  03 01 00     off-hook on\n--   hook off\n");
    EXPECT_EQ(give("hook on"), "0");
    EXPECT_NE(lines().find("in   03 00 00     hook on\n"), std::string::npos);
    EXPECT_TRUE(writeReport(hid, {3, 0, 0}));
    EXPECT_EQ(lines(), "out  03 00 00     off-hook off\n");
}

TEST_F(Commands, AnUnpluggedDeviceComesBackDarkAndWithNoButtonHeld)
{
    startBuiltIn("speakerphone");
    {
        const Hid hid(hid_open(0x1209, 1, nullptr));
        EXPECT_EQ(give("press mute --hold"), "0");
        EXPECT_TRUE(writeReport(hid, {3, 13, 0})); // the off-hook LED moves the hook switch
        EXPECT_EQ(give("expect ring on"), "0");
        lines();
        EXPECT_EQ(give("unplug"), "0");
    }
    EXPECT_EQ(lines(), "--   closed\n--   unplugged\n--   hook on\n");
    EXPECT_EQ(lampOf("ring") + lampOf("mute") + lampOf("off-hook"), "offoffoff");
    const std::vector<std::string> lastEvents(lampEvents_.end() - 3, lampEvents_.end());
    EXPECT_EQ(lastEvents, (std::vector<std::string>{"off-hook off", "mute off", "ring off"}));
    EXPECT_EQ(give("replug"), "0");
    EXPECT_EQ(give("press flash"), "0");
    EXPECT_NE(lines().find("in   03 10 00     flash pressed"), std::string::npos);
    hid_exit();
    const Hid hid(hid_open(0x1209, 1, nullptr));
    lines();
    EXPECT_TRUE(writeReport(hid, {3, 8, 0}));
    EXPECT_EQ(lines(), "out  03 08 00     ring on\n");
}

// The phases of the lamp are as long as a command that fails takes. On a busy machine they may be
// irregular for some time.
TEST_F(Commands, ALampThatBlinksIsExpectedToUntilItStops)
{
    startBuiltIn("speakerphone");
    const Hid hid(hid_open(0x1209, 1, nullptr));
    int changes = 0;
    while (lampOf("ring") != "blink" && changes < 100) {
        EXPECT_TRUE(writeReport(hid, {3, uint8_t(++changes % 2 ? 8 : 0), 0}));
        EXPECT_EQ(give("expect mute on --within 100ms"), "1 mute is off, not on");
    }
    EXPECT_GE(changes, 4);
    EXPECT_EQ(lampEvents_.back(), "ring blink");
    const std::string state = changes % 2 ? "on" : "off";
    EXPECT_EQ(give("expect ring " + state + " --within 20s"), "0");
    EXPECT_EQ(lampEvents_.back(), "ring " + state);
}

TEST_F(Commands, TheHookSwitchMovesAtOnceAndADelayedReportIsLostAtAnUnplug)
{
    startText(R"({"vendorId": "1209", "productId": "0001",
                  "behaviour": {"delayMs": 60000, "hookSwitch": "stays"},
                  "interfaces": [{"reportDescriptor": {"file": "speakerphone.hex"}}]})");
    EXPECT_EQ(give("hook off"), "0");
    EXPECT_EQ(lines(), "--   hook off\n");
    EXPECT_EQ(give("unplug"), "0");
    EXPECT_EQ(lines(), "in   03 01 00     hook off  (no program listens)\n--   unplugged\n");
}

TEST_F(Commands, AFaultThatEndsByItselfIsAnEventAtOnce)
{
    startBuiltIn("speakerphone");
    EXPECT_EQ(give("fault strings 1"), "0");
    EXPECT_EQ(lines(), "--   fault strings on\n");
    hid_free_enumeration(hid_enumerate(0, 0)); // reads them
    EXPECT_EQ(lines(), "--   fault strings off\n");
}

TEST_F(Commands, ADeviceWithReportsToSendIsNotIdle)
{
    startText(R"({"vendorId": "1209", "productId": "0001", "behaviour": {"delayMs": 400},
                  "interfaces": [{"reportDescriptor": {"file": "speakerphone.hex"}}]})");
    const Hid hid(hid_open(0x1209, 1, nullptr));
    EXPECT_EQ(give("wait idle"), "0");
    EXPECT_EQ(give("press busy"), "0");
    EXPECT_EQ(give("wait idle --within 0s"), "1 the device has reports to send");
    EXPECT_EQ(give("wait idle"), "0");
    EXPECT_NE(lines().find("busy released"), std::string::npos);
}

} // namespace
