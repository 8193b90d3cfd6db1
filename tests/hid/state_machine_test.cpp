// What follows from operations and input reports: events, output reports and states, in order.
#include "hid/model/ReportTemplate.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyStateMachine.h"
#include "sim/device/wire_bytes.h"
#include "sim/profile/profiles.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <map>
#include <sstream>

namespace {

using KX::Bytes;
using Controls = KX::TelephonyControls;
using Machine = KX::TelephonyStateMachine;

#define ON_HOOK "03 00 00; 03 00 00; 03 00 00; "

Controls ControlsOf(const char* profile)
{
    KX::Root root;
    root.Parse(sim::findProfile(profile)->info.controls().reportDescriptor);
    return Controls::FromDescriptor(root);
}

const std::map<std::string, void (Machine::*)()> kOperations
    = {{"ring", &Machine::Ring}, {"offhook", &Machine::OffHook}, {"hangup", &Machine::HangUp},
        {"mute", &Machine::Mute}, {"unmute", &Machine::Unmute}};

// Writes down what follows from words, with call and mute state where they change: "@20 mute; ". A
// word is an operation or an input report.
class Recorder final : public Machine::Output {
public:
    explicit Recorder(const Controls& controls) { machine.SetControls(controls); }

    void Notify(Machine::Event event) override
    {
        static constexpr const char* kNames[] = {"mute; ", "unmute; ", "off-hook; ", "hang-up; "};
        Add(kNames[static_cast<size_t>(event)]);
        if (onEvent)
            onEvent();
    }
    void Send(const Bytes& report) override { Add(sim::toHex(report) + "; "); }

    std::string Run(const char* words)
    {
        story_.clear();
        states_.clear();
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            if (const auto found = kOperations.find(word); found != kOperations.end())
                (machine.*found->second)();
            else
                machine.HandleReport(sim::fromHex(word).value());
            Add("");
        }
        return story_;
    }

    Machine machine{*this};
    std::function<void()> onEvent;

private:
    void Add(const std::string& text)
    {
        const std::string states
            = "@" + std::to_string(machine.CallState()) + std::to_string(machine.MuteState()) + " ";
        story_ += (std::exchange(states_, states) == states ? "" : states) + text;
    }

    std::string story_;
    std::string states_;
};

// A profile; a control that the device is to lack, or null; and rows: words before the step, which
// are not compared, the step, and what follows from it.
using Kind = std::tuple<const char*, bool Controls::*, std::vector<std::array<const char*, 3>>>;

// clang-format off
const Kind kKinds[] = {
    {"speakerphone", nullptr, { // all LEDs in one report
        {"offhook", "mute unmute hangup", "@21 03 05 00; @22 03 01 00; @12 " ON_HOOK},
        {"", "mute unmute ring ring mute unmute", "@10 03 08 00; @30 "},
        {"offhook", "ring", "@20 03 09 00; @30 "},
        // A call comes in.
        {"ring", "030300", "@20 off-hook; 03 00 00; 03 01 00; "},
        {"ring", "0101", "@10 hang-up; 03 00 00; 03 00 00; "},
        {"offhook hangup ring", "030000", "@10 hang-up; 03 00 00; 03 00 00; "},
        // A call comes in during a call.
        {"offhook ring", "030100 030000 031000 030200 03010000 0311", "@30 "},
        {"offhook ring", "031300", "@20 off-hook; 03 00 00; 03 01 00; "},
        {"offhook ring", "030300", "@20 hang-up; 03 00 00; 03 01 00; "},
        {"offhook ring 030300 ring", "030000", "@30 "},
        {"ring 030100 ring", "030000", "@30 "},
        // In a call the mute button alone counts.
        {"offhook", "030900 030100 030900", "@20 mute; @21 03 05 00; unmute; @22 03 01 00; "},
        {"offhook", "030100 030000 0308 08 03080000 010800", "@20 "},
        {"", "030800 030100", "@10 "},
    }},
    {"led-per-report", nullptr, { // a report for each LED; no line busy
        {"offhook", "mute unmute ring", "@21 09 01; @22 09 00; 18 01; @32 "},
        {"offhook ring", "0802 0806", "@30 @20 off-hook; 18 00; 17 01; "},
    }},
    {"webcam", nullptr, {{"", "offhook mute unmute ring 0801", "@20 mute; "}}}, // a Mute LED alone
    {"no-telephony", nullptr, {{"", "offhook mute hangup ring 00", "@20 @10 "}}},
    {"speakerphone", &Controls::hasHookSwitch,
        {{"ring", "030100", "@10 hang-up; 03 00 00; 03 00 00; "},
        {"offhook ring", "031300", "@30 "}}},
    {"speakerphone", &Controls::hasFlash,
        {{"offhook ring", "031300", "@20 hang-up; 03 00 00; 03 01 00; "}}},
    {"speakerphone", &Controls::hasLineBusy, {{"offhook ring", "030300", "@30 "}}},
    {"speakerphone", &Controls::hasPhoneMute, {{"offhook", "030800", "@20 "}}},
    {"speakerphone", &Controls::hasOffHookLed,
        {{"offhook", "ring hangup", "@30 @10 03 00 00; 03 00 00; "}}},
    {"speakerphone", &Controls::hasHoldLed, {{"ring", "hangup", "@10 03 00 00; 03 00 00; "}}},
};
// clang-format on

TEST(TelephonyStateMachine, FollowsOperationsAndReportsOfEachKindOfDevice)
{
    for (const auto& [device, missing, rows] : kKinds) {
        Controls controls = ControlsOf(device);
        if (missing)
            controls.*missing = false;
        for (const auto& [before, step, story] : rows) {
            Recorder recorder(controls);
            (void)recorder.Run("hangup");
            (void)recorder.Run(before);
            EXPECT_EQ(recorder.Run(step), story) << device << ": " << before << " / " << step;
        }
    }
}

TEST(TelephonyStateMachine, LeavesOutTheMutingWhenTheCallEndsMeanwhile)
{
    Recorder recorder(ControlsOf("speakerphone"));
    (void)recorder.Run("offhook");
    recorder.onEvent = [&] { recorder.machine.HangUp(); }; // as the other thread may
    EXPECT_EQ(recorder.Run("030800"), "@20 mute; @10 " ON_HOOK);
}

TEST(ReportTemplate, CombinesReportsOfDifferentSizes)
{
    EXPECT_EQ(KX::Combined({3, 4}, {3, 1, 0x80}), (Bytes{3, 5}));
    EXPECT_EQ(KX::Combined({3, 4, 0}, {3, 1}), (Bytes{3, 5, 0}));
}

} // namespace
