// kelprobectl check as a process, on the simulated bus of this one: a right device passes, and of
// each wrong device the fault is named.
#include "report/format/recording.h"
#include "tests/ctl/ctl_bus_test.h"
#include "tests/ctl/pressed_device.h"

#include <pty.h>

#include <atomic>

namespace {

using Reports = PressedDevice::Reports;
using sim::Bytes;

// Times for silence in milliseconds. A press is waited for longer than that.
constexpr int kForPresses = 20;
constexpr int kForAnswers = 50; // of a device that sends at once what nobody asked for
constexpr int kForLate = 150;   // of one that does so late
constexpr std::chrono::milliseconds kLate{60};

class Check : public CtlBusTest {
protected:
    int check(
        const PressedDevice& device, const std::string& options = "", int silence = kForPresses)
    {
        return run("check --silence " + std::to_string(silence) + " --press-command '"
            + device.command() + "' " + options);
    }
};

TEST_F(Check, PassesARightDevice)
{
    const struct {
        const char *profile, *summary;
    } cases[] = {
        {"speakerphone", "24 passed, 0 failed, 5 skipped"}, // nobody looks at the LEDs
        {"no-report-ids", "24 passed, 0 failed, 5 skipped"},
        {"led-per-report", "23 passed, 0 failed, 6 skipped"}, // has no Line Busy Tone
    };
    for (const auto& [profile, summary] : cases) {
        auto& usb = plug(profile);
        const PressedDevice device(usb);
        const std::string junit = device.file("junit.xml");
        EXPECT_EQ(check(device, "--replug-command '" + device.command() + "' --junit " + junit), 0)
            << out_ << err_;
        EXPECT_TRUE(out_.starts_with("TAP version 14\n1..29\n")) << out_;
        EXPECT_NE(err_.find(summary), std::string::npos) << err_;
        EXPECT_EQ(out_.find("Bail out"), std::string::npos);
        EXPECT_NE(test::content(junit).find("tests=\"29\""), std::string::npos);
        EXPECT_TRUE(usb.driverBound());
        usb.unplug();
    }
}

// Its buttons send nothing unless there is a call, and its hook switch reports late that it follows
// the LED.
TEST_F(Check, PassesADeviceThatSendsLittleAndLate)
{
    std::atomic<bool> rings = false;
    std::atomic<bool> offHook = false;
    PressedDevice device(plug("led-per-report"), [&](const auto& word, const Reports& right) {
        return offHook || (rings && word == "hook") ? right : Reports{};
    });
    device.react([&](const Bytes& output) {
        if (output[0] == 0x18)
            rings = output[1];
        if (output[0] == 0x17 && offHook.exchange(output[1]) != bool(output[1]))
            device.send(device.position(), kLate);
    });
    EXPECT_EQ(check(device, "", kForLate), 0) << out_;
    for (const char* const sentence : {"The device sends nothing for a press while nothing rings.",
             "no button that rejects a call; its flash button sends nothing while a call rings"})
        EXPECT_NE(err_.find(sentence), std::string::npos) << err_;
}

// What is wrong, as the device's maker would see it.
struct WrongDevice {
    const char* name;
    PressedDevice::Wrong press;                         // null: as a right device
    std::function<Reports(const Bytes& output)> answer; // reports after an output report, at once
                                                        // or, with kForLate, late
    const char* test;                                   // that fails
    const char* sentence;
    int silence = kForAnswers;

    friend void PrintTo(const WrongDevice& device, std::ostream* stream) { *stream << device.name; }
};

Reports repeatFirst(const std::string& word, Reports right)
{
    if (word == "mute")
        right.insert(right.begin(), right.front());
    return right;
}

Reports cutMute(const std::string& word, Reports right)
{
    if (word == "mute")
        for (Bytes& report : right)
            report.pop_back();
    return right;
}

Reports clearHookInFlash(const std::string& word, Reports right)
{
    if (word == "flash")
        for (Bytes& report : right)
            report[1] = static_cast<uint8_t>(report[1] & ~1);
    return right;
}

Reports slowFlash(const std::string& word, Reports right)
{
    if (word == "flash")
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    return right;
}

const WrongDevice kWrongDevices[] = {
    {"SendsNothing",
        [](const auto& word, const Reports& right) { return word == "flash" ? Reports{} : right; },
        {}, "flash answers a second call",
        "The device sent no report when the flash button was pressed. Send 03 11 00 (Hook Switch "
        "on, Flash on)."},
    {"SendsShortReports", cutMute, {}, "the mute button mutes",
        "The device sent a report of 2 bytes when the mute button was pressed; Kelprobe expects 3 "
        "bytes, report id included, and takes no other length."},
    {"SendsAnotherReportBefore",
        [](const auto& word, const Reports& right) {
            return word == "hook" ? Reports{{3, 0, 0}, {3, 1, 0}} : right;
        },
        {}, "the hook switch answers a call",
        "Kelprobe took the press as reject. Before the report of the hook switch the device sent "
        "another"},
    {"SendsAnotherBit",
        [](const auto& word, const Reports& right) {
            return word == "hook" ? Reports{{3, 8, 0}} : right;
        },
        {}, "the hook switch answers a call",
        "Kelprobe took the press as reject. The hook switch was pressed, but the report has Phone "
        "Mute on and not Hook Switch."},
    {"SendsNoBit",
        [](const auto& word, const Reports& right) {
            return word == "mute" ? Reports{{3, 1, 0}} : right;
        },
        {}, "the mute button mutes", "the bit of the usage Phone Mute is not set in it."},
    {"RejectsWithTheHookSwitch",
        [](const auto& word, const Reports& right) {
            return word == "busy" ? Reports{{3, 3, 0}, {3, 0, 0}} : right;
        },
        {}, "a button rejects a call",
        "Kelprobe took the press as accept. The report of the reject button has Hook Switch on as "
        "well, which answers a ringing call."},
    {"KeepsTheHookSwitchOn",
        [](const auto& word, const Reports& right) {
            return word == "busy" ? Reports{{3, 3, 0}, {3, 1, 0}} : right;
        },
        {}, "a button rejects a call",
        "Hook Switch stayed on after the Off-Hook LED was switched off"},
    {"SetsAnotherBitAsWell",
        [](const auto& word, const Reports& right) {
            return word == "busy" ? Reports{{3, 10, 0}, {3, 0, 0}} : right;
        },
        {}, "a button rejects a call", "The report of the reject button also has Phone Mute on."},
    {"RepeatsAPress", repeatFirst, {}, "the mute button mutes",
        "One press of the mute button became the events mute, unmute. The device repeated the "
        "report of the mute button without a release between"},
    {"RepeatsAPressOfNoEffect",
        [](const auto& word, const Reports& right) {
            return word == "busy" ? Reports{right[0], {1, 0}, right[0], right[1]} : right;
        },
        {}, "one press is reported once",
        "The device repeated the report of the reject button without a release between"},
    {"Bounces",
        [](const auto& word, const Reports& right) {
            return word == "busy" ? Reports{right[0], right[1], right[0], right[1]} : right;
        },
        {}, "one press is reported once",
        "The device reported 2 presses of the reject button for one."},
    {"SendsFlashAlone", clearHookInFlash, {}, "flash answers a second call",
        "Flash came without Hook Switch."},
    {"SendsAnUnknownReport",
        [](const auto&, Reports right) {
            right.push_back({9, 0});
            return right;
        },
        {}, "input reports have the length that the descriptor gives",
        "with the id 9, which its descriptor does not have"},
    {"PressesByItself", {},
        [](const Bytes&) {
            return Reports{{3, 1, 0}, {3, 0, 0}};
        },
        "sends nothing by itself while idle",
        "The device sent Hook Switch while the meeting was idle, although nothing was pressed."},
    {"RejectsByItself", {},
        [](const Bytes& output) {
            return output[1] == 8 ? Reports{{3, 0, 0}} : Reports{};
        },
        "sends nothing by itself while a call rings",
        "The device sent a report by itself while a call was ringing."},
    {"TogglesMuteByItself", {},
        [](const Bytes& output) {
            return output[1] == 1 ? Reports{{3, 9, 0}, {3, 1, 0}} : Reports{};
        },
        "sends nothing by itself during a call",
        "by itself during a call, and Kelprobe took it as mute."},
    {"EchoesTheMuteLed", {},
        [](const Bytes& output) {
            return output[1] == 5 ? Reports{{3, 9, 0}, {3, 1, 0}} : Reports{};
        },
        "takes the report that switches the mute LED on, and sends no event back",
        "by itself after its LEDs were set, and Kelprobe took it as unmute"},
    {"TogglesMuteLongAfterTheLed", {},
        [isFirst = true](const Bytes& output) mutable {
            return output[1] == 5 && std::exchange(isFirst, false) ? Reports{{3, 9, 0}, {3, 1, 0}}
                                                                   : Reports{};
        },
        "takes the report that switches the mute LED on, and sends no event back",
        "by itself after its LEDs were set, and Kelprobe took it as unmute", kForLate},
    {"IsSlow", slowFlash, {}, "a press becomes an event within 1 s", " ms to become an event."},
};

class WrongDevices : public Check, public testing::WithParamInterface<WrongDevice> { };

TEST_P(WrongDevices, AreNamed)
{
    const WrongDevice& wrong = GetParam();
    auto& usb = plug();
    PressedDevice device(usb, wrong.press);
    if (wrong.answer)
        device.react([&, answer = wrong.answer](const Bytes& output) {
            for (const Bytes& report : answer(output))
                device.send(
                    report, wrong.silence == kForLate ? kLate : std::chrono::milliseconds(0));
        });
    const std::string unpressed
        = "check --silence " + std::to_string(wrong.silence) + " </dev/null";
    EXPECT_EQ(wrong.answer ? run(unpressed) : check(device), 1);
    EXPECT_NE(out_.find(std::string(" - ") + wrong.test + "\n  ---\n"), std::string::npos) << out_;
    EXPECT_NE(err_.find(wrong.sentence), std::string::npos) << err_;
    EXPECT_TRUE(usb.driverBound());
}

INSTANTIATE_TEST_SUITE_P(Check, WrongDevices, testing::ValuesIn(kWrongDevices),
    [](const auto& wrong) { return std::string(wrong.param.name); });

TEST_F(Check, NamesADeviceThatTakesNoReports)
{
    plug().faults().failWrite.arm();
    EXPECT_EQ(run("check --silence 20 </dev/null"), 1);
    EXPECT_NE(err_.find("The device did not take the output report 03 00 00 (nothing on): the "
                        "device refused it."),
        std::string::npos)
        << err_;
}

TEST_F(Check, NamesADeviceThatDoesNotWorkAfterReplug)
{
    const PressedDevice device(plug(), [hooks = 0](const auto& word, const Reports& right) mutable {
        return word == "hook" && ++hooks == 3 ? Reports{{3, 2, 0}} : right;
    });
    EXPECT_EQ(check(device, "--replug-command '" + device.command() + "'"), 1);
    EXPECT_NE(out_.find("not ok 29 - works again after"), std::string::npos) << out_;
    EXPECT_NE(err_.find("1 failed"), std::string::npos) << err_;
}

TEST_F(Check, NamesWhatAWebcamLacks)
{
    const PressedDevice device(plug("webcam"));
    EXPECT_EQ(check(device), 1);
    EXPECT_NE(err_.find("The mute button mutes again instead of unmuting"), std::string::npos);
    EXPECT_NE(err_.find("Off-Hook LED"), std::string::npos);
    EXPECT_NE(out_.find(" - the hook switch answers a call # SKIP Kelprobe finds no Ring LED."),
        std::string::npos)
        << out_;
}

TEST_F(Check, SkipsPressesThatNobodyCanDo)
{
    plug();
    EXPECT_EQ(run("check --silence 20 </dev/null"), 0);
    for (const char* const reason : {"Nobody can press anything: standard input is no terminal",
             "Nobody looked at the LEDs: only a person"})
        EXPECT_NE(out_.find(std::string("# SKIP ") + reason), std::string::npos);
    EXPECT_NE(err_.find("0 failed"), std::string::npos) << err_;
}

TEST_F(Check, NamesAPressCommandThatFails)
{
    plug("webcam"); // has few presses
    EXPECT_EQ(run("check --silence 20 --press-command 'false #'"), 1);
    EXPECT_NE(err_.find("failed with exit status 1"), std::string::npos) << err_;
    EXPECT_EQ(
        run("check --silence 20 --time-limit 1 --press-command 'echo to_stdout | tr _ -; sleep "
            "100 #'"),
        1);
    EXPECT_NE(err_.find("took longer than 1 s"), std::string::npos) << err_;
    EXPECT_NE(err_.find("to-stdout"), std::string::npos) << err_;
    EXPECT_EQ(out_.find("to-stdout"), std::string::npos) << "only results";
    EXPECT_EQ(run("check --silence 20 --press-command /none"), 3);
    EXPECT_NE(out_.find("Bail out! the command \"/none\" could not be run"), std::string::npos);
    EXPECT_EQ(run("check --press-command ''"), 2);
}

TEST_F(Check, TakesPressesFromARecording)
{
    const test::TempDirectory directory;
    const Bytes descriptor = sim::findProfile("speakerphone")->info.controls().reportDescriptor;
    // Hook, line busy, mute twice, flash and line busy during a call, hook.
    const Reports right{{3, 1, 0}, {3, 0, 0}, {3, 2, 0}, {3, 0, 0}, {3, 9, 0}, {3, 1, 0}, {3, 9, 0},
        {3, 1, 0}, {3, 17, 0}, {3, 1, 0}, {3, 3, 0}, {3, 1, 0}, {3, 0, 0}, {3, 1, 0}};
    Reports wrong = right;
    wrong[8] = {3, 16, 0};
    wrong[2].pop_back();
    const struct {
        Bytes descriptor;
        Reports reports;
        int status;
        std::vector<const char*> sentences;
    } cases[] = {
        {{}, {}, 2, {"no report descriptor"}},
        {descriptor, right, 0,
            {"10 passed, 0 failed, 19 skipped", "A recording cannot be unplugged."}},
        {descriptor, wrong, 1,
            {"Flash came without Hook Switch.", "sent an input report of 2 bytes"}},
        {descriptor, {{3, 1, 0}}, 0, {"The recording has no further press of the mute button."}},
        {descriptor, {{3, 1, 0}, {3, 0, 0}, {3, 1, 0}, {3, 3, 0}, {3, 1, 0}}, 0, // in a call only
            {"The recording has no further press of the reject button."}},
        {descriptor, {}, 0, {"has no press of a button; record a meeting"}},
        {descriptor, {{5, 1, 0}, {3, 0}}, 1, {"an input report with the id 5"}}, // before a press
        {descriptor, {{3, 0}, {3, 1, 0}}, 1, {"an input report of 2 bytes"}},
        {descriptor, {{3, 1, 0}, {3, 17, 0}, {1, 0}, {3, 17, 0}}, 1, {"repeated the report"}},
    };
    for (const auto& test : cases) {
        report::RecordedDevice device;
        device.descriptor = test.descriptor;
        std::string text = report::recordingHeader(device);
        std::chrono::microseconds time{};
        for (const Bytes& input : test.reports)
            text
                += report::recordingLine({.time = time += std::chrono::seconds(1), .bytes = input});
        EXPECT_EQ(run("check --silence 20 --recording " + directory.file("recording", text)),
            test.status);
        for (const char* const sentence : test.sentences)
            EXPECT_NE(err_.find(sentence), std::string::npos) << out_ << err_;
    }
    EXPECT_EQ(run("check --recording " + directory.file("recording", "E: x\n")), 2);
    EXPECT_EQ(run("check --recording " + directory.path() + "none"), 2);
}

// Presses what is asked for, except flash, answers that the ring LED is off and does not say
// whether the mute LED is on. Another control of the device sends a report while the person is
// about to mute.
TEST_F(Check, AsksThePersonAtTheTerminal)
{
    auto& usb = plug();
    PressedDevice device(usb);
    int terminal = -1;
    int other = -1;
    ASSERT_EQ(openpty(&terminal, &other, nullptr, nullptr, nullptr), 0);
    CtlProcess process("check --silence " + std::to_string(kForPresses) + " --time-limit 30 <"
            + std::string(ptsname(terminal)),
        errorFile());
    std::atomic<bool> ended = false;
    std::thread person([&] {
        for (size_t seen = 0; !ended; std::this_thread::sleep_for(std::chrono::milliseconds(5))) {
            const std::string text = test::content(errorFile());
            const size_t end = text.find('\n', seen);
            if (end == std::string::npos)
                continue;
            const std::string line = text.substr(seen, end - seen);
            seen = end + 1;
            const bool declines = line.find("flash") != std::string::npos;
            if (line.find('?') != std::string::npos || declines) {
                const bool no = declines || line.starts_with("Is the ring LED");
                const char* const answer = no          ? "n\n"
                    : line.starts_with("Are the mute") ? "s\n"
                                                       : "\n";
                EXPECT_GT(write(terminal, answer, strlen(answer)), 0);
            } else if (line.starts_with("Press the ")) {
                const size_t word = strlen("Press the ");
                const std::string button = line.substr(word, line.find(' ', word) - word);
                if (button == "mute") {
                    usb.inject({1, 0});
                    std::this_thread::sleep_for(std::chrono::milliseconds(300));
                }
                device.press(button == "reject" ? "busy" : button);
            }
        }
    });
    out_ = process.rest();
    EXPECT_EQ(process.end(), 1);
    ended = true;
    person.join();
    close(terminal);
    close(other);
    err_ = test::content(errorFile());
    EXPECT_NE(err_.find("answered no to: Is the ring LED on, and no other?"), std::string::npos);
    EXPECT_NE(
        err_.find("The person at the terminal says that it cannot be done."), std::string::npos);
    EXPECT_NE(
        err_.find("Nobody answered: Are the mute and the off-hook LED on?"), std::string::npos);
    EXPECT_NE(err_.find("24 passed, 1 failed, 4 skipped"), std::string::npos) << out_ << err_;
}

TEST_F(Check, IsCompleteWhenItIsStopped)
{
    auto& usb = plug();
    PressedDevice device(usb);
    const std::string junit = device.file("junit.xml");
    CtlProcess process(
        "check --silence 40 --junit " + junit + " --press-command 'sleep 100 #'", errorFile());
    std::string line;
    while (line.find("ok 13 ") == line.npos && line != "end")
        line = process.line();
    process.kill(SIGINT);
    EXPECT_NE(process.rest().find("Bail out! stopped by a signal\n"), std::string::npos);
    EXPECT_EQ(process.end(), 3);
    EXPECT_EQ(usb.takeOutputs().back(), (Bytes{3, 0, 0}));
    EXPECT_TRUE(usb.driverBound());
    EXPECT_NE(test::content(junit).find("</testsuites>"), std::string::npos);

    EXPECT_EQ(run("check --silence 20 --junit " + junit + " >/dev/full"), 3);
    EXPECT_NE(test::content(junit).find("No space left"), std::string::npos);

    CtlProcess unplugged("check --silence 300", errorFile());
    while (line.find("ok 2 ") == line.npos && line != "end")
        line = unplugged.line();
    usb.unplug();
    EXPECT_NE(unplugged.rest().find("Bail out! the device has gone\n"), std::string::npos);
    EXPECT_EQ(unplugged.end(), 3);
}

} // namespace
