// The calls of this process to hidapi, some of them from a static library, are observed.
#include "hid/usb/HidDevice.h"
#include "report/bytes.h"
#include "tests/support/bus_test.h"
#include "tools/ctl/calls/hid_calls.h"

#include <array>
#include <cerrno>
#include <hidapi/hidapi.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

// For the observer, which is a plain function.
Story* story = nullptr;
uint32_t before = 0; // numbers that earlier tests have used
pid_t tester = 0;

std::string opened(const hid_call& call)
{
    if (before == 0)
        before = call.device;
    const std::array<uint8_t, 4> ids{static_cast<uint8_t>(call.vendor_id >> 8),
        static_cast<uint8_t>(call.vendor_id), static_cast<uint8_t>(call.product_id >> 8),
        static_cast<uint8_t>(call.product_id)};
    return ' ' + std::string(call.path ? call.path : "?") + ' ' + report::toHex(ids, "");
}

void observe(const hid_call* call)
{
    constexpr std::array kWords{
        "open", "descriptor", "close", "write", "read", "send feature", "get feature", "get input"};
    std::string event = kWords.at(call->kind);
    if (call->kind == HID_CALL_OPEN)
        event += opened(*call);
    else if (call->kind == HID_CALL_DESCRIPTOR)
        event += ' ' + std::to_string(call->size);
    else if (call->size > 0)
        event += ' ' + report::toHex({call->data, call->size});
    if (call->result < 0)
        event += " failed " + std::to_string(call->usb_error);
    if (call->device > before)
        event += " #" + std::to_string(call->device - before + 1);
    EXPECT_EQ(call->opener, call->device > 0 ? tester : 0);
    EXPECT_GE(call->duration, 0);
    story->add(event);
    errno = EDOM; // must not reach the program
}

class HidCalls : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        story = &story_;
        before = 0;
        tester = getpid();
        hid_calls_observe(observe);
    }
    void TearDown() override
    {
        hid_calls_observe(nullptr);
        BusTest::TearDown();
    }
};

constexpr int kLimitMs = 10'000;
constexpr std::array<uint8_t, 3> kRing{3, 8, 0};

int write(hid_device* hid)
{
    return hid_write(hid, kRing.data(), kRing.size());
}

TEST_F(HidCalls, AreReportedWithTheirResults)
{
    auto& device = plug();
    hid_device* const hid = hid_open(0x1209, 0x0001, nullptr);
    ASSERT_TRUE(hid);
    EXPECT_EQ(story_.take(), "open 1-1:1.0 12090001; descriptor 273; ");
    EXPECT_EQ(device.counters().reportDescriptorReads, 1);

    errno = 0;
    EXPECT_EQ(write(hid), 3);
    EXPECT_EQ(errno, 0);
    device.faults().failWrite.arm(1);
    EXPECT_EQ(write(hid), -1);
    std::array<uint8_t, 64> bytes{};
    EXPECT_EQ(hid_read_timeout(hid, bytes.data(), bytes.size(), 0), 0) << "is not reported";
    EXPECT_TRUE(device.inject({3, 1, 0}));
    EXPECT_EQ(hid_read(hid, bytes.data(), 2), 2);
    device.unplug();
    EXPECT_EQ(hid_read_timeout(hid, bytes.data(), bytes.size(), kLimitMs), -1);
    EXPECT_EQ(write(hid), -1);
    hid_close(hid);
    EXPECT_EQ(story_.take(),
        "write 03 08 00; write 03 08 00 failed -9; read 03 01; "
        "read failed -4; write 03 08 00 failed -4; close; ");
}

TEST_F(HidCalls, GiveTheReasonOfAFailedOpen)
{
    EXPECT_FALSE(hid_open(0x1209, 0x0001, nullptr));
    EXPECT_EQ(story_.take(), "open ? 12090001 failed 0; ");
    auto& device = plug();
    device.faults().refuseClaim.arm(1);
    EXPECT_FALSE(hid_open(0x1209, 0x0001, nullptr));
    EXPECT_EQ(story_.take(), "open 1-1:1.0 12090001 failed -6; ");
    device.faults().refuseDetach.arm(1);
    EXPECT_FALSE(hid_open_path("1-1:1.0"));
    EXPECT_EQ(story_.take(), "open 1-1:1.0 12090001 failed -99; ");
    device.setOpenable(false);
    EXPECT_FALSE(hid_open_path("1-1:1.0"));
    EXPECT_FALSE(hid_open_path("1-2:1.0"));
    EXPECT_EQ(story_.take(), "open 1-1:1.0 12090001 failed -3; open 1-2:1.0 00000000 failed 0; ");
}

TEST_F(HidCalls, TakeTheDescriptorThatTheStackHasRead)
{
    auto& first = plug();
    auto& second = plug("webcam");
    auto hid = KX::hid_open(0x1209, 0x0001, nullptr, KX::DescriptorFetch::On);
    ASSERT_TRUE(hid);
    EXPECT_EQ(story_.take(), "open 1-1:1.0 12090001; descriptor 273; ");
    EXPECT_EQ(first.counters().reportDescriptorReads, 1) << "read by the stack only";
    const auto other = KX::hid_open_path("1-2:1.0", KX::DescriptorFetch::Off);
    ASSERT_TRUE(other);
    EXPECT_EQ(second.counters().reportDescriptorReads, 1) << "another interface";
    EXPECT_TRUE(hid->Write(kRing));
    hid.reset();
    EXPECT_NE(story_.take().find(" #2; write 03 08 00; close; "), std::string::npos);
    second.unplug();
    second.faults().stallReportDescriptor.arm();
    second.plug();
    EXPECT_TRUE(KX::hid_open_path("1-2:1.0", KX::DescriptorFetch::Off));
    EXPECT_NE(story_.take().find("; descriptor 0 #3; "), std::string::npos);
}

TEST_F(HidCalls, KeepTheNumberOfADeviceInAForkedProcess)
{
    plug();
    hid_device* const hid = hid_open_path("1-1:1.0");
    story_.take();
    const pid_t child = fork();
    if (child == 0) { // has no threads of hidapi's, so it cannot transfer or close anything
        const bool fails = hid_write(hid, nullptr, 0) == -1;
        _exit(fails && story_.take() == "write failed 0; " ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    hid_close(hid);
}

TEST_F(HidCalls, AreObservedInTheOrderInWhichReportsAreSent)
{
    auto& device = plug();
    hid_device* const hid = hid_open_path("1-1:1.0");
    story_.take();
    const auto writeAll = [hid](uint8_t lamp) {
        for (int i = 0; i < 200; ++i) {
            const std::array<uint8_t, 3> report{3, lamp, static_cast<uint8_t>(i)};
            EXPECT_EQ(hid_write(hid, report.data(), report.size()), 3);
        }
    };
    std::thread one(writeAll, uint8_t{1});
    std::thread two(writeAll, uint8_t{8});
    one.join();
    two.join();
    EXPECT_TRUE(device.waitForOutputs(400));
    std::string sent;
    for (const Bytes& report : device.takeOutputs())
        sent += "write " + report::toHex(report) + "; ";
    EXPECT_EQ(story_.take(), sent);
    hid_close(hid);
}

TEST_F(HidCalls, MayBeMadeByAnyThread)
{
    constexpr int kCalls = 200;
    plug();
    plug("webcam");
    hid_device* const first = hid_open_path("1-1:1.0");
    hid_device* const second = hid_open_path("1-2:1.0");
    story_.take();
    const auto writeOften = [](hid_device* hid) {
        for (int i = 0; i < kCalls; ++i)
            EXPECT_EQ(write(hid), 3);
    };
    std::thread one(writeOften, first);
    std::thread two(writeOften, second);
    one.join();
    two.join();
    EXPECT_EQ(story_.length(), 2 * kCalls);
    hid_close(first);
    hid_close(second);
}

} // namespace
