// What follows from operations and input reports: events, output reports and states, in order.
#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyStateMachine.h"
#include "tests/hid/words.h"
#include "tests/support/story.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using enum KX::StackCallState;
using enum KX::StackMuteState;
using KX::Bytes;
using Event = KX::TelephonyStateMachine::Event;

#define ON_HOOK "03 00 00; 03 00 00; 03 00 00; "

KX::TelephonyControls ControlsOf(const std::string& device)
{
    const auto& builtIn = KX::kBuiltInDescriptor;
    KX::Root root;
    root.Parse(device == "built-in" ? Bytes(builtIn.begin(), builtIn.end())
                                    : test::deviceDescriptor(device));
    return KX::TelephonyControls::FromDescriptor(root);
}

class Recorder final : public KX::TelephonyStateMachine::Output {
public:
    void Notify(Event event) override
    {
        static constexpr const char* kNames[] = {"mute", "unmute", "off-hook", "hang-up"};
        Add(kNames[static_cast<size_t>(event)]);
        if (onEvent)
            onEvent();
    }
    void Send(const Bytes& report) override
    {
        std::string text;
        for (const uint8_t byte : report)
            text += KX::DumpText(text.empty() ? "%02x" : " %02x", byte);
        Add(text);
    }

    KX::TelephonyStateMachine machine{*this};
    Story story;
    bool withStates = false; // adds call and mute state to each entry
    std::function<void()> onEvent;

private:
    void Add(const std::string& text)
    {
        story.add(!withStates ? text
                              : text + " @" + std::to_string(machine.CallState())
                    + std::to_string(machine.MuteState()));
    }
};

struct Row {
    const char* before; // what it leads to is not compared
    const char* step;
    const char* story;
    uint32_t callState;
    uint32_t muteState = kMuteNeverSet;
};

void Check(const KX::TelephonyControls& controls, const Row& row)
{
    SCOPED_TRACE(std::string(row.before) + " / " + row.step);
    Recorder recorder;
    auto& machine = recorder.machine;
    machine.SetControls(controls);
    const auto run = [&](const char* words) {
        perform(machine, words, [&](const Bytes& report) { machine.HandleReport(report); });
    };
    run("hangup");
    run(row.before);
    (void)recorder.story.take();
    run(row.step);
    EXPECT_EQ(recorder.story.take(), row.story);
    EXPECT_EQ(machine.CallState(), row.callState);
    EXPECT_EQ(machine.MuteState(), row.muteState);
}

// clang-format off
const std::pair<const char*, std::vector<Row>> kDevices[] = {
    {"built-in", { // all LEDs in one report
        {"", "ring", "03 08 00; ", kCallRinging},
        {"", "ring ring", "03 08 00; ", kCallRinging},
        {"", "offhook", "03 00 00; 03 01 00; ", kCallActive},
        {"offhook", "ring", "03 09 00; ", kCallRinging},
        {"offhook", "mute", "03 05 00; ", kCallActive, kMuted},
        {"offhook mute", "unmute", "03 01 00; ", kCallActive, kUnmuted},
        {"offhook mute", "hangup", ON_HOOK, kCallIdle, kMuted},
        {"", "mute unmute", "", kCallIdle},
        {"ring", "mute unmute", "", kCallRinging},
        // A call comes in.
        {"ring", "030100", "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"ring", "030300", "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"ring", "030000", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
        {"ring", "031000", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
        {"ring", "0101", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
        {"ring", "", "", kCallRinging},
        {"offhook hangup ring", "030000", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
        {"ring 030000 ring", "030000", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
        // A call comes in during a call.
        {"offhook ring", "030100 030000 031000 030200 03010000 0311", "", kCallRinging},
        {"offhook ring", "031100", "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"offhook ring", "031300", "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"offhook ring", "030300", "hang-up; 03 00 00; 03 01 00; ", kCallActive},
        {"offhook ring 030300 ring", "030000", "", kCallRinging},
        {"ring 030100 ring", "030000", "", kCallRinging},
        // In a call the mute button alone counts.
        {"offhook", "030900 030100 030900", "mute; 03 05 00; unmute; 03 01 00; ", kCallActive,
            kUnmuted},
        {"offhook mute", "030800", "unmute; 03 01 00; ", kCallActive, kUnmuted},
        {"offhook", "030100 030000 0308 08 03080000", "", kCallActive},
        {"hangup", "030800 030100", "", kCallIdle},
    }},
    {"047f-c056", { // a report for each LED; no line busy
        {"offhook", "ring", "18 01; ", kCallRinging},
        {"offhook", "mute unmute", "09 01; 09 00; ", kCallActive, kUnmuted},
        {"offhook", "hangup", "18 00; 17 00; 20 00; ", kCallIdle},
        {"offhook ring", "0806", "off-hook; 18 00; 17 01; ", kCallActive},
        {"offhook ring", "0802", "", kCallRinging},
    }},
    {"046d-0944", { // a Mute LED, hook switch and mute button, no Off-Hook and no Ring LED
        {"", "offhook mute unmute ring", "", kCallActive},
        {"offhook", "0801", "mute; ", kCallActive},
    }},
    {"046d-0ac4", {{"", "offhook mute hangup ring 00", "", kCallIdle}}}, // no controls
};
// clang-format on

TEST(TelephonyStateMachine, FollowsOperationsAndReportsOfEachKindOfDevice)
{
    for (const auto& [device, rows] : kDevices) {
        SCOPED_TRACE(device);
        for (const Row& row : rows)
            Check(ControlsOf(device), row);
    }
}

TEST(TelephonyStateMachine, DoesWithoutTheControlsThatADeviceLacks)
{
    using Controls = KX::TelephonyControls;
    for (const auto& [has, row] : {
             std::pair{&Controls::hasHookSwitch,
                 Row{"ring", "030100", "hang-up; 03 00 00; 03 00 00; ", kCallIdle}},
             {&Controls::hasHookSwitch, {"offhook ring", "031300", "", kCallRinging}},
             {&Controls::hasFlash,
                 {"offhook ring", "031300", "hang-up; 03 00 00; 03 01 00; ", kCallActive}},
             {&Controls::hasLineBusy, {"offhook ring", "030300", "", kCallRinging}},
             {&Controls::hasPhoneMute, {"offhook", "030800", "", kCallActive}},
             {&Controls::hasOffHookLed, {"offhook", "ring", "", kCallRinging}},
             {&Controls::hasOffHookLed, {"ring", "hangup", "03 00 00; 03 00 00; ", kCallIdle}},
             {&Controls::hasHoldLed, {"ring", "hangup", "03 00 00; 03 00 00; ", kCallIdle}},
         }) {
        Controls controls = ControlsOf("built-in");
        controls.*has = false;
        Check(controls, row);
    }
}

TEST(TelephonyStateMachine, ChangesStatesBeforeReportsExceptThatMutingNotifiesAndRingingSendsFirst)
{
    Recorder recorder;
    recorder.withStates = true;
    recorder.machine.SetControls(ControlsOf("built-in"));
    for (const auto& [words, story] : {
             std::pair{"hangup", "03 00 00 @10; 03 00 00 @10; 03 00 00 @10; "},
             {"ring", "03 08 00 @10; "},
             {"030000", "hang-up @10; 03 00 00 @10; 03 00 00 @10; "},
             {"ring 030100", "03 08 00 @10; off-hook @20; 03 00 00 @20; 03 01 00 @20; "},
             {"030800", "mute @20; 03 05 00 @21; "},
             {"030800", "unmute @21; 03 01 00 @22; "},
             {"ring 030300", "03 09 00 @22; hang-up @22; 03 00 00 @22; 03 01 00 @22; "},
         }) {
        auto& machine = recorder.machine;
        perform(machine, words, [&](const Bytes& report) { machine.HandleReport(report); });
        EXPECT_EQ(recorder.story.take(), story) << words;
    }
}

TEST(TelephonyStateMachine, LeavesOutTheMutingWhenTheCallEndsMeanwhile)
{
    Recorder recorder;
    auto& machine = recorder.machine;
    machine.SetControls(ControlsOf("built-in"));
    machine.OffHook();
    (void)recorder.story.take();
    recorder.onEvent = [&] { machine.HangUp(); }; // as the other thread may
    machine.HandleReport(test::bytesFromHex("030800"));
    EXPECT_EQ(recorder.story.take(), "mute; " ON_HOOK);
    EXPECT_EQ(machine.MuteState(), kMuteNeverSet);
}

} // namespace
