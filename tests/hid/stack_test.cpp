// The stack with simulated devices: which reports and events come, and in which order.
#include "hid/CKXHostStackStdHid.h"
#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/ReadPause.h"
#include "tests/hid/library_calls.h"
#include "tests/hid/words.h"
#include "tests/support/bus_test.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using enum KX::StackCallState;
using enum KX::StackMuteState;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

#define ON_HOOK "03 00 00; 03 00 00; 03 00 00; "

class Stack : public BusTest, protected KX::IHostStackSink {
protected:
    void OnDeviceMute() override { story_.add("mute"); }
    void OnDeviceUnmute() override { story_.add("unmute"); }
    void OnDeviceOffHook() override { story_.add("off-hook"); }
    void OnDeviceHangUp() override { story_.add("hang-up"); }

    void TearDown() override
    {
        stack_.reset();
        BusTest::TearDown();
    }

    // Opens a new stack after closing the one before: only one may be open.
    int open(const sim::UsbDevice& device)
    {
        stack_.reset();
        stack_ = std::make_unique<KX::CKXHostStackStdHid>(cache_);
        return stack_->Open(this, device.info().vendorId, device.info().productId);
    }

    // Reports are injected on the bus. The bus cannot tell when the stack is done with one, as
    // hidapi queues them: wait for what a report causes.
    void run(sim::UsbDevice& device, const std::string& words)
    {
        perform(*stack_, words, [&](const Bytes& report) {
            EXPECT_TRUE(device.inject(report) && device.waitUntilRead());
        });
    }

    static bool isClosed(const sim::UsbDevice& device)
    {
        return !device.claimed() && device.driverBound();
    }

    KX::DescriptorCache cache_;
    std::unique_ptr<KX::CKXHostStackStdHid> stack_;
};

struct Row {
    const char* before; // what it leads to is not compared
    const char* step;
    const char* story;
    uint32_t callState;
    uint32_t muteState = kMuteNeverSet;
};

const std::pair<const char*, std::vector<Row>> kKinds[] = {
    {"speakerphone",
        {
            {"ring", "030100 030800 0308 030800",
                "off-hook; 03 00 00; 03 01 00; mute; 03 05 00; unmute; 03 01 00; ", kCallActive,
                kUnmuted},
            {"ring", "030000", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
            {"offhook mute ring", "030100 030300", "hang-up; 03 00 00; 03 01 00; ", kCallActive,
                kMuted},
        }},
    {"led-per-report",
        {
            {"ring", "0802 0801", "off-hook; 18 00; 17 01; mute; 09 01; ", kCallActive, kMuted},
            {"offhook", "hangup", "18 00; 17 00; 20 00; ", kCallIdle},
        }},
    {"no-out-endpoint",
        {{"ring", "0501 0502", "off-hook; 05 00; 05 01; mute; 05 03; ", kCallActive, kMuted}}},
    {"no-report-ids",
        {{"ring", "0100 0400", "off-hook; 00 00 00; 00 01 00; mute; 00 03 00; ", kCallActive,
            kMuted}}},
    {"webcam", {{"", "offhook mute unmute hangup ring", "", kCallIdle}}},
    {"no-telephony", {{"", "ring offhook mute hangup", "", kCallIdle}}},
};

TEST_F(Stack, DrivesEachKindOfDevice)
{
    for (const auto& [profile, rows] : kKinds) {
        auto& device = record(plug(profile));
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(profile) + ": " + row.before + " / " + row.step);
            ASSERT_EQ(open(device), 1);
            run(device, row.before);
            (void)story_.take(); // an operation returns when the device has its reports
            run(device, row.step);
            std::string story = storyLike(row.story);
            stack_->Close(); // a report too many would come before it returns
            EXPECT_EQ(story += story_.take(), row.story);
            EXPECT_EQ(stack_->GetCallState(), row.callState);
            EXPECT_EQ(stack_->GetMuteState(), row.muteState);
        }
        device.unplug();
    }
}

TEST_F(Stack, OpensOnHookAndClosesCompletely)
{
    for (const auto& [profile, descriptorReads, story] : {
             std::tuple{"built-in", 0, ON_HOOK}, // whose descriptor is built in
             {"led-per-report", 1, "18 00; 17 00; 20 00; "},
         }) {
        auto& device = record(plug(profile));
        for (int time = 0; time < 2; ++time) {
            ASSERT_EQ(open(device), 1);
            EXPECT_EQ(story_.take(), story);
            EXPECT_EQ(device.counters().reportDescriptorReads, descriptorReads);
            EXPECT_FALSE(device.driverBound());
            const int exits = calls::hidExits;
            const auto start = steady_clock::now();
            stack_->Close();
            // Far above a read time-out: fails only with a reader that does not stop.
            EXPECT_LT(steady_clock::now() - start, seconds(5));
            EXPECT_TRUE(isClosed(device));
            EXPECT_EQ(calls::hidExits, exits + 1);
            stack_->Close();
            EXPECT_TRUE(isClosed(device));
        }
    }
}

TEST_F(Stack, ClosesTheDeviceWhenOpenFails)
{
    sim::UsbDeviceInfo info = sim::findProfile("led-per-report")->info;
    info.classDescriptors.emplace();
    const auto& withoutDescriptor = plug(info);
    int exits = calls::hidExits;
    EXPECT_EQ(open(withoutDescriptor), 0);
    EXPECT_TRUE(isClosed(withoutDescriptor));
    EXPECT_EQ(withoutDescriptor.counters().claims, withoutDescriptor.counters().releases);
    EXPECT_GT(withoutDescriptor.counters().claims, 0) << "it was open";
    EXPECT_EQ(calls::hidExits, exits + 1);

    auto& device = plug("no-out-endpoint");
    exits = calls::hidExits;
    calls::refuseThreads = true;
    EXPECT_EQ(open(device), 0);
    calls::refuseThreads = false;
    EXPECT_TRUE(isClosed(device));
    EXPECT_EQ(calls::hidExits, exits + 2) << "one from the stack before";
    EXPECT_TRUE(device.takeOutputs().empty());
    EXPECT_EQ(open(device), 1);
}

TEST_F(Stack, PausesLongerAfterEachFailedReadAndClosesDuringAPause)
{
    // A busy machine may be slow to wake the reader, but not each time.
    milliseconds closed = seconds(5);
    for (int round = 0; round < 10 && closed >= milliseconds(KX::kMaxReadPauseMs / 2); ++round) {
        auto& device = plug();
        ASSERT_EQ(open(device), 1);
        const int failures = calls::failedHidReads;
        const auto failed = [&](int count) {
            return eventually([&] { return calls::failedHidReads >= failures + count; });
        };
        const auto unplugged = steady_clock::now();
        device.unplug();
        ASSERT_TRUE(failed(8));
        EXPECT_GE(steady_clock::now() - unplugged, milliseconds(1 + 2 + 4 + 8 + 16 + 32 + 64));
        ASSERT_TRUE(failed(9)); // the longest pause begins
        const auto closing = steady_clock::now();
        stack_->Close();
        closed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - closing);
    }
    EXPECT_LT(closed, milliseconds(KX::kMaxReadPauseMs / 2));
}

TEST(ReadPause, DoublesUpToItsMaximum)
{
    uint32_t pause = 0;
    for (const uint32_t expected : {1u, 2u, 4u, 8u, 16u, 32u, 64u, 100u, 100u}) {
        pause = KX::NextReadPause(pause);
        EXPECT_EQ(pause, expected);
    }
}

TEST_F(Stack, LosesNoPressInAFlood)
{
    auto& device = plug("speakerphone");
    ASSERT_EQ(open(device), 1);
    stack_->OffHook();
    constexpr size_t presses = 400;
    for (size_t i = 0; i < presses; ++i) {
        ASSERT_TRUE(device.inject({3, 8, 0}));
        if (i % 10 == 9) { // well below what hidapi keeps
            ASSERT_TRUE(device.waitForOutputs(5 + i + 1));
        }
    }
    EXPECT_TRUE(eventually([&] { return stack_->GetMuteState() == kUnmuted; }));
    EXPECT_EQ(story_.length(), presses);
}

TEST_F(Stack, KeepsItsStatesWhileTheDeviceIsUnplugged)
{
    for (const char* state : {"hangup", "ring", "offhook", "offhook mute", "offhook ring"}) {
        SCOPED_TRACE(state);
        auto& device = plug("speakerphone");
        ASSERT_EQ(open(device), 1);
        run(device, state);
        device.unplug();
        run(device, "ring offhook mute hangup");
        EXPECT_EQ(stack_->GetMuteState(), kMuted);
        EXPECT_EQ(stack_->GetCallState(), kCallIdle);
        stack_->Close();
        device.plug();
        EXPECT_EQ(open(device), 1) << "it can be used again";
        stack_->Close();
        device.unplug();
    }
    EXPECT_EQ(story_.take(), "");
}

TEST_F(Stack, SurvivesAnUnplugDuringPressesAndOperations)
{
    for (size_t round = 0; round < 10; ++round) {
        auto& device = plug("speakerphone");
        ASSERT_EQ(open(device), 1);
        std::atomic<bool> stop = false;
        std::thread presses([&] {
            while (!stop)
                (void)(device.inject({3, 9, 0}) && device.waitUntilRead());
        });
        std::thread unplug([&] {
            (void)device.waitForOutputs(4 + 3 * round);
            device.unplug();
        });
        for (int i = 0; i < 30; ++i)
            run(device, "offhook ring");
        stop = true;
        presses.join();
        unplug.join();
        stack_->Close();
    }
}

TEST_F(Stack, ReopensWithoutControlsADeviceThatFailedToOpen)
{
    auto& device = record(plug("led-per-report"));
    device.setOpenable(false);
    EXPECT_EQ(open(device), 0);
    stack_->Ring();
    EXPECT_EQ(stack_->GetCallState(), kCallNeverSet);
    device.setOpenable(true);
    device.faults().refuseClaim.arm();
    EXPECT_EQ(open(device), 0);
    EXPECT_FALSE(device.claimed());
    device.faults().clear();
    ASSERT_EQ(open(device), 1);
    EXPECT_EQ(device.counters().reportDescriptorReads, 0);
    run(device, "ring offhook mute hangup");
    EXPECT_EQ(story_.take(), "");
}

} // namespace
