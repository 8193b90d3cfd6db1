// What follows from operations and input reports: events, output reports and states, in order.
#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/ReportTemplate.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyStateMachine.h"
#include "sim/device/wire_bytes.h"
#include "tests/hid/words.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using KX::Bytes;
using Controls = KX::TelephonyControls;
using Event = KX::TelephonyStateMachine::Event;

#define ON_HOOK "03 00 00; 03 00 00; 03 00 00; "

Controls ControlsOf(const std::string& device)
{
    const auto& builtIn = KX::kBuiltInDescriptor;
    KX::Root root;
    root.Parse(device == "built-in" ? Bytes(builtIn.begin(), builtIn.end())
                                    : test::deviceDescriptor(device));
    return Controls::FromDescriptor(root);
}

// Writes down what follows from words, with call and mute state where they change: "@20 mute; ".
class Recorder final : public KX::TelephonyStateMachine::Output {
public:
    explicit Recorder(const Controls& controls) { machine.SetControls(controls); }

    void Notify(Event event) override
    {
        static constexpr const char* kNames[] = {"mute", "unmute", "off-hook", "hang-up"};
        Add(kNames[static_cast<size_t>(event)]);
        if (onEvent)
            onEvent();
    }
    void Send(const Bytes& report) override { Add(sim::toHex(report)); }

    std::string Run(const char* words)
    {
        story_.clear();
        states_.clear();
        perform(machine, words, [&](const Bytes& report) { machine.HandleReport(report); });
        AddStates();
        return story_;
    }

    KX::TelephonyStateMachine machine{*this};
    std::function<void()> onEvent;

private:
    void Add(const std::string& text)
    {
        AddStates();
        story_ += text + "; ";
    }
    void AddStates()
    {
        const std::string states
            = "@" + std::to_string(machine.CallState()) + std::to_string(machine.MuteState()) + " ";
        if (std::exchange(states_, states) != states)
            story_ += states;
    }

    std::string story_;
    std::string states_;
};

struct Row {
    const char* before; // what it leads to is not compared
    const char* step;
    const char* story;
};

struct Kind {
    const char* device;
    bool Controls::*missing; // null: it has all that its descriptor gives it
    std::vector<Row> rows;
};

// clang-format off
const Kind kKinds[] = {
    {"built-in", nullptr, { // all LEDs in one report
        {"", "offhook mute unmute hangup",
            "@20 03 00 00; 03 01 00; @21 03 05 00; @22 03 01 00; @12 " ON_HOOK},
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
    {"047f-c056", nullptr, { // a report for each LED; no line busy
        {"offhook", "mute unmute ring", "@21 09 01; @22 09 00; 18 01; @32 "},
        {"offhook", "hangup", "@10 18 00; 17 00; 20 00; "},
        {"offhook ring", "0802 0806", "@20 off-hook; 18 00; 17 01; "},
    }},
    // A Mute LED, hook switch and mute button, no Off-Hook and no Ring LED.
    {"046d-0944", nullptr, {{"", "offhook mute unmute ring 0801", "@20 mute; "}}},
    {"046d-0ac4", nullptr, {{"", "offhook mute hangup ring 00", "@10 "}}}, // no controls
    {"built-in", &Controls::hasHookSwitch, {
        {"ring", "030100", "@10 hang-up; 03 00 00; 03 00 00; "},
        {"offhook ring", "031300", "@30 "},
    }},
    {"built-in", &Controls::hasFlash,
        {{"offhook ring", "031300", "@20 hang-up; 03 00 00; 03 01 00; "}}},
    {"built-in", &Controls::hasLineBusy, {{"offhook ring", "030300", "@30 "}}},
    {"built-in", &Controls::hasPhoneMute, {{"offhook", "030800", "@20 "}}},
    {"built-in", &Controls::hasOffHookLed, {{"offhook", "ring hangup", "@10 03 00 00; 03 00 00; "}}},
    {"built-in", &Controls::hasHoldLed, {{"ring", "hangup", "@10 03 00 00; 03 00 00; "}}},
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
    Recorder recorder(ControlsOf("built-in"));
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
