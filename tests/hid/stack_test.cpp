// The stack against simulated devices: the exact reports, the exact events, in one order.
#include "hid/CKXHostStackStdHid.h"
#include "tests/support/bus_test.h"

#include <atomic>
#include <chrono>
#include <map>
#include <sstream>
#include <thread>

namespace {

using enum KX::StackCallState;
using enum KX::StackMuteState;

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

    // A stack in place of the one before, which ends first as its end is hidapi's.
    int open(const sim::UsbDevice& device)
    {
        stack_.reset();
        stack_ = std::make_unique<KX::CKXHostStackStdHid>();
        return stack_->Open(this, device.info().vendorId, device.info().productId);
    }

    // Does each of the words: an operation, or a report in hexadecimal that the device sends.
    // hidapi queues reports, so that the bus cannot tell when the reader is done with one. What
    // the report causes is waited for by those who expect it.
    void perform(sim::UsbDevice& device, const std::string& words)
    {
        static const std::map<std::string, void (KX::IHostHidStack::*)()> operations = {
            {"ring", &KX::IHostHidStack::Ring},
            {"offhook", &KX::IHostHidStack::OffHook},
            {"hangup", &KX::IHostHidStack::HangUp},
            {"mute", &KX::IHostHidStack::Mute},
            {"unmute", &KX::IHostHidStack::Unmute},
        };
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            if (const auto operation = operations.find(word); operation != operations.end())
                (stack_.get()->*operation->second)();
            else
                EXPECT_TRUE(device.inject(sim::fromHex(word).value()) && device.waitUntilRead());
        }
    }

    std::unique_ptr<KX::CKXHostStackStdHid> stack_;
};

struct Row {
    const char* before; // what it leads to does not count
    const char* step;
    const char* story;
    uint32_t callState;
    uint32_t muteState = kMuteNeverSet;
};

// clang-format off
const std::pair<const char*, std::vector<Row>> kKinds[] = {
    {"speakerphone", {
        {"", "ring", "03 08 00; ", kCallRinging},
        {"", "ring ring", "03 08 00; ", kCallRinging},
        {"", "offhook", "03 00 00; 03 01 00; ", kCallActive},
        {"offhook", "ring", "03 09 00; ", kCallRinging},
        {"offhook", "mute", "03 05 00; ", kCallActive, kMuted},
        {"offhook mute", "unmute", "03 01 00; ", kCallActive, kUnmuted},
        {"offhook mute", "hangup", ON_HOOK, kCallIdle, kMuted},
        {"", "mute unmute", "", kCallIdle},
        {"ring", "mute", "", kCallRinging},
        // From the device.
        {"ring", "030100", "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"ring", "030000", "hang-up; 03 00 00; 03 00 00; ", kCallIdle},
        {"offhook ring", "031100", "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"offhook ring", "030300", "hang-up; 03 00 00; 03 01 00; ", kCallActive},
        {"offhook ring", "030100 030000 031000 030200 03010000 031300", // only the last decides
            "off-hook; 03 00 00; 03 01 00; ", kCallActive},
        {"offhook", "030900 030100 030900", "mute; 03 05 00; unmute; 03 01 00; ",
            kCallActive, kUnmuted},
        {"offhook mute", "030800", "unmute; 03 01 00; ", kCallActive, kUnmuted},
        {"offhook", "030100 030000 0308 08 03080000 030800", "mute; 03 05 00; ",
            kCallActive, kMuted},
        {"hangup", "030800 030100", "", kCallIdle},
    }},
    {"lamp-per-report", {
        {"offhook", "ring", "18 01; ", kCallRinging},
        {"offhook mute", "unmute", "09 00; ", kCallActive, kUnmuted},
        {"offhook", "hangup", "18 00; 17 00; 20 00; ", kCallIdle},
        {"ring", "0802 0801", "off-hook; 18 00; 17 01; mute; 09 01; ", kCallActive, kMuted},
    }},
    {"no-out-endpoint", {
        {"offhook", "ring", "05 05; ", kCallRinging},
        {"offhook", "hangup", "05 00; 05 00; 05 00; ", kCallIdle},
        {"ring", "0501 0502", "off-hook; 05 00; 05 01; mute; 05 03; ", kCallActive, kMuted},
    }},
    {"no-report-ids", {
        {"", "ring", "00 04 00; ", kCallRinging},
        {"offhook mute", "unmute", "00 01 00; ", kCallActive, kUnmuted},
        {"ring", "0100 0400", "off-hook; 00 00 00; 00 01 00; mute; 00 03 00; ",
            kCallActive, kMuted},
    }},
    // A mute lamp alone is not enough to use it.
    {"webcam", {{"", "offhook mute unmute hangup ring", "", kCallIdle}}},
    {"no-telephony", {{"", "ring offhook mute hangup", "", kCallIdle}}},
};
// clang-format on

TEST_F(Stack, EveryOperationAndPressOfEveryKindOfDevice)
{
    for (const auto& [profile, rows] : kKinds) {
        auto& device = record(plug(profile));
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(profile) + ": " + row.before + " / " + row.step);
            ASSERT_EQ(open(device), 1);
            perform(device, row.before);
            (void)story_.take(); // an operation returns when the device has its reports
            perform(device, row.step);
            std::string story = storyLike(row.story);
            stack_->Close(); // a report too many would come before its end
            EXPECT_EQ(story += story_.take(), row.story);
            EXPECT_EQ(stack_->GetCallState(), row.callState);
            EXPECT_EQ(stack_->GetMuteState(), row.muteState);
        }
        device.unplug();
    }
}

TEST_F(Stack, OpensOnHookAndGivesTheDriverBackInTime)
{
    for (const auto& [profile, descriptorReads, story] : {
             std::tuple{"speakerphone", 0, ON_HOOK}, // whose descriptor is built in
             {"lamp-per-report", 1, "18 00; 17 00; 20 00; "},
         }) {
        auto& device = record(plug(profile));
        ASSERT_EQ(open(device), 1);
        EXPECT_EQ(story_.take(), story);
        EXPECT_EQ(device.counters().reportDescriptorReads, descriptorReads);
        EXPECT_FALSE(device.driverBound());
        const auto start = std::chrono::steady_clock::now();
        stack_->Close();
        // Far above a read time-out, so that only a reader that does not stop fails it.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        stack_->Close();
        EXPECT_FALSE(device.claimed());
        EXPECT_TRUE(device.driverBound());
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

TEST_F(Stack, AnUnpluggedDeviceHarmsNoneOfTheStates)
{
    for (const char* state : {"hangup", "ring", "offhook", "offhook mute", "offhook ring"}) {
        SCOPED_TRACE(state);
        auto& device = plug("speakerphone");
        ASSERT_EQ(open(device), 1);
        perform(device, state);
        device.unplug();
        perform(device, "ring offhook mute hangup");
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

TEST_F(Stack, UnplugInTheMidstOfPressesAndOperations)
{
    for (size_t round = 0; round < 10; ++round) {
        auto& device = plug("speakerphone");
        ASSERT_EQ(open(device), 1);
        std::atomic<bool> stop = false;
        std::thread finger([&] {
            while (!stop)
                (void)(device.inject({3, 9, 0}) && device.waitUntilRead());
        });
        std::thread hand([&] {
            (void)device.waitForOutputs(4 + 3 * round);
            device.unplug();
        });
        for (int i = 0; i < 30; ++i)
            perform(device, "offhook ring");
        stop = true;
        finger.join();
        hand.join();
        stack_->Close();
    }
}

TEST_F(Stack, ADeviceThatFailedToOpenOpensLaterWithoutControls)
{
    auto& device = record(plug("lamp-per-report"));
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
    perform(device, "ring offhook mute hangup");
    EXPECT_EQ(story_.take(), "");
}

TEST_F(Stack, LostReportsChangeNoState)
{
    auto& device = record(plug("speakerphone"));
    ASSERT_EQ(open(device), 1);
    (void)story_.take();
    device.faults().failWrite.arm(3);
    perform(device, "offhook mute unmute");
    EXPECT_EQ(story_.take(), "03 01 00; ");
    EXPECT_EQ(stack_->GetMuteState(), kUnmuted);
}

} // namespace
