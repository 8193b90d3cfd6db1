// The stack with simulated devices: which reports and events come, and in which order.
#include "hid/CKXHostStackStdHid.h"
#include "hid/model/ReadPause.h"
#include "tests/hid/library_calls.h"
#include "tests/support/bus_test.h"

#include <chrono>

namespace {

using namespace std::chrono;

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

    // Call and mute.
    std::string states()
    {
        return "@" + std::to_string(stack_->GetCallState())
            + std::to_string(stack_->GetMuteState());
    }

    static void expectClosed(const sim::UsbDevice& device, int exits)
    {
        EXPECT_TRUE(!device.claimed() && device.driverBound());
        EXPECT_EQ(calls::hidExits, exits);
    }

    KX::DescriptorCache cache_;
    std::unique_ptr<KX::CKXHostStackStdHid> stack_;
};

struct Row {
    const char* profile;
    int descriptorReads;
    std::vector<sim::Bytes> presses; // after the stack was opened and rings
    const char* story;
};

const Row kRows[] = {
    {"speakerphone", 1, {{3, 1, 0}, {3, 8, 0}, {3, 8}, {3, 8, 0}},
        ON_HOOK "03 08 00; off-hook; 03 00 00; 03 01 00; mute; 03 05 00; unmute; 03 01 00; @22"},
    {"built-in", 0, {{3, 0, 0}}, ON_HOOK "03 08 00; hang-up; 03 00 00; 03 00 00; @10"},
    {"led-per-report", 1, {{8, 2}, {8, 1}},
        "18 00; 17 00; 20 00; 18 01; off-hook; 18 00; 17 01; mute; 09 01; @21"},
    {"no-out-endpoint", 1, {{5, 1}, {5, 2}},
        "05 00; 05 00; 05 00; 05 04; off-hook; 05 00; 05 01; mute; 05 03; @21"},
    {"no-report-ids", 1, {{1, 0}},
        "00 00 00; 00 00 00; 00 00 00; 00 04 00; off-hook; 00 00 00; 00 01 00; @20"},
    {"webcam", 1, {{8, 1}}, "@10"},
};

TEST_F(Stack, DrivesEachKindOfDeviceFromOpenToClose)
{
    for (const Row& row : kRows) {
        auto& device = record(plug(row.profile));
        for (int time = 0; time < 2; ++time) {
            ASSERT_EQ(open(device), 1);
            EXPECT_EQ(device.counters().reportDescriptorReads, row.descriptorReads);
            EXPECT_FALSE(device.driverBound());
            stack_->Ring();
            for (const Bytes& report : row.presses)
                EXPECT_TRUE(device.inject(report) && device.waitUntilRead());
            std::string story = storyLike(row.story);
            const int exits = calls::hidExits;
            stack_->Close(); // a report too many would come before it returns
            story += story_.take() + states();
            EXPECT_EQ(story, row.story) << row.profile;
            expectClosed(device, exits + 1);
        }
        device.unplug();
    }
}

TEST_F(Stack, ClosesTheDeviceWhenItHasNoDescriptorOrNoThreadStarts)
{
    sim::UsbDeviceInfo info = sim::findProfile("led-per-report")->info;
    info.controls().classDescriptors.emplace();
    auto& device = record(plug(info));
    const int exits = calls::hidExits;
    EXPECT_EQ(open(device), 0);
    expectClosed(device, exits + 1);
    EXPECT_EQ(open(device), 1) << "it is known to have no controls";
    stack_->Ring();
    stack_->OffHook();
    EXPECT_EQ(story_.take(), "");
    calls::refuseThreads = true;
    EXPECT_EQ(open(device), 0);
    calls::refuseThreads = false;
    expectClosed(device, exits + 4); // each stack before was closed, too
    device.setOpenable(false);
    EXPECT_EQ(open(device), 0);
}

TEST_F(Stack, PausesLongerAfterEachReadOfAnUnpluggedDeviceAndClosesDuringAPause)
{
    EXPECT_EQ(KX::NextReadPause(KX::kMaxReadPauseMs), KX::kMaxReadPauseMs);
    auto& device = plug();
    // A busy machine may be slow to wake the reader, but not each time.
    EXPECT_TRUE(eventually([&] {
        device.plug();
        EXPECT_EQ(open(device), 1);
        stack_->Ring();
        const auto failed = [failures = calls::failedHidReads.load()](int count) {
            return eventually([&] { return calls::failedHidReads >= failures + count; });
        };
        const auto unplugged = steady_clock::now();
        device.unplug();
        EXPECT_TRUE(failed(8));
        EXPECT_GE(steady_clock::now() - unplugged, milliseconds(1 + 2 + 4 + 8 + 16 + 32 + 64));
        EXPECT_EQ(states(), "@30");
        stack_->OffHook();
        stack_->Mute();
        EXPECT_EQ(states(), "@21");
        EXPECT_TRUE(failed(9)); // the longest pause begins
        const auto closing = steady_clock::now();
        stack_->Close();
        return steady_clock::now() - closing < milliseconds(KX::kMaxReadPauseMs / 2);
    }));
    EXPECT_EQ(story_.take(), "");
}

TEST_F(Stack, AnswersPressesWithoutASink)
{
    auto& device = record(plug("speakerphone"));
    stack_ = std::make_unique<KX::CKXHostStackStdHid>(cache_);
    ASSERT_EQ(stack_->Open(nullptr, device.info().vendorId, device.info().productId), 1);
    stack_->Ring();
    (void)story_.take();
    ASSERT_TRUE(device.inject({3, 1, 0}));
    const std::string answer = "03 00 00; 03 01 00; ";
    EXPECT_EQ(storyLike(answer), answer);
}

TEST_F(Stack, SurvivesAnUnplugDuringPressesAndOperations)
{
    for (size_t round = 0; round < 10; ++round) {
        auto& device = plug();
        device.setOutputCallback([&, left = 4 + 3 * round](const Bytes&) mutable {
            (void)device.inject({3, 9, 0});
            if (--left == 0)
                device.unplug();
        });
        ASSERT_EQ(open(device), 1);
        for (int i = 0; i < 30; ++i) {
            stack_->OffHook();
            stack_->Ring();
        }
        stack_->Close();
    }
}

} // namespace
