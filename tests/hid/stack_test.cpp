// The stack against simulated devices: the exact reports, the exact events, in order.
#include "CKXHostStackStdHid.h"
#include "bus_test.h"
#include "device_file.h"
#include "recording_sink.h"

#include <atomic>
#include <chrono>
#include <sstream>
#include <thread>

namespace {

using test::bytesFromHex;
using Events = std::vector<std::string>;

using Reports = std::vector<KX::Bytes>;

// "03 00 00, 03 01 00"
Reports reportsFromText(const std::string& text)
{
    Reports reports;
    std::istringstream stream(text);
    for (std::string report; std::getline(stream, report, ',');)
        reports.push_back(bytesFromHex(report));
    return reports;
}

// False for a word that is no operation.
bool operate(KX::IHostHidStack& stack, const std::string& word)
{
    if (word == "ring")
        stack.Ring();
    else if (word == "offhook")
        stack.OffHook();
    else if (word == "hangup")
        stack.HangUp();
    else if (word == "mute")
        stack.Mute();
    else if (word == "unmute")
        stack.Unmute();
    else
        return false;
    return true;
}

class Stack : public BusTest {
protected:
    void TearDown() override
    {
        stack_.Close();
        BusTest::TearDown();
    }

    int open(const sim::UsbDevice& device)
    {
        return stack_.Open(&sink_, device.info().vendorId, device.info().productId);
    }

    // Does each of the words: an operation, or a report in hexadecimal that the device sends.
    static void perform(KX::IHostHidStack& stack, sim::UsbDevice& device, const std::string& words)
    {
        std::istringstream stream(words);
        for (std::string word; stream >> word;)
            if (!operate(stack, word))
                press(device, bytesFromHex(word));
    }

    // hidapi queues reports, so that the bus cannot tell when the reader is done with one. What
    // the report causes is waited for by those who expect it.
    static void press(sim::UsbDevice& device, const Bytes& report)
    {
        ASSERT_TRUE(device.inject(report));
        ASSERT_TRUE(device.waitUntilRead());
    }

    RecordingSink sink_;
    KX::CKXHostStackStdHid stack_;
};

TEST_F(Stack, OpensTheBuiltInDeviceWithoutAskingForItsDescriptor)
{
    auto& device = plug("speakerphone");
    ASSERT_EQ(open(device), 1);
    EXPECT_EQ(outputs(device, 3), reportsFromText("03 00 00, 03 00 00, 03 00 00"));
    EXPECT_EQ(device.counters().reportDescriptorReads, 0);
    EXPECT_EQ(stack_.GetCallState(), KX::kCallIdle);
    EXPECT_EQ(stack_.GetMuteState(), KX::kMuteNeverSet);
    EXPECT_EQ(stack_.QuerySupport(), 1);
    EXPECT_EQ(stack_.QueryOptionA(), 0);
    EXPECT_EQ(stack_.QueryOptionB(), 0);
}

struct Row {
    const char* before; // operations whose reports do not count
    const char* operation;
    const char* reports;
    uint32_t callState;
    uint32_t muteState = KX::kMuteNeverSet;
};

struct Device {
    const char* profile;
    std::vector<Row> rows;
};

const Device kDevices[] = {
    {"speakerphone",
        {
            {"", "ring", "03 08 00", KX::kCallRinging},
            {"", "ring ring", "03 08 00", KX::kCallRinging},
            {"", "offhook", "03 00 00, 03 01 00", KX::kCallActive},
            {"offhook", "ring", "03 09 00", KX::kCallRinging},
            {"offhook", "mute", "03 05 00", KX::kCallActive, KX::kMuted},
            {"offhook mute", "unmute", "03 01 00", KX::kCallActive, KX::kUnmuted},
            {"offhook mute", "hangup", "03 00 00, 03 00 00, 03 00 00", KX::kCallIdle, KX::kMuted},
            {"", "mute unmute", "", KX::kCallIdle},
            {"ring", "mute", "", KX::kCallRinging},
        }},
    {"lamp-per-report",
        {
            {"", "ring", "18 01", KX::kCallRinging},
            {"", "offhook", "18 00, 17 01", KX::kCallActive},
            {"offhook", "ring", "18 01", KX::kCallRinging},
            {"offhook", "mute", "09 01", KX::kCallActive, KX::kMuted},
            {"offhook mute", "unmute", "09 00", KX::kCallActive, KX::kUnmuted},
            {"offhook", "hangup", "18 00, 17 00, 20 00", KX::kCallIdle},
        }},
    {"no-out-endpoint",
        {
            {"", "ring", "05 04", KX::kCallRinging},
            {"offhook", "mute", "05 03", KX::kCallActive, KX::kMuted},
            {"offhook", "ring", "05 05", KX::kCallRinging},
            {"offhook", "hangup", "05 00, 05 00, 05 00", KX::kCallIdle},
        }},
    {"no-report-ids",
        {
            {"", "ring", "00 04 00", KX::kCallRinging},
            {"offhook", "mute", "00 03 00", KX::kCallActive, KX::kMuted},
            {"offhook mute", "unmute", "00 01 00", KX::kCallActive, KX::kUnmuted},
        }},
    {"webcam", // a mute lamp alone is not enough to use it
        {
            {"", "offhook mute unmute hangup", "", KX::kCallIdle},
            {"", "ring", "", KX::kCallIdle},
        }},
    {"no-telephony", {{"", "ring offhook mute hangup", "", KX::kCallIdle}}},
};

TEST_F(Stack, EachOperationSendsItsReports)
{
    for (const Device& kind : kDevices) {
        auto& device = plug(kind.profile);
        for (const Row& row : kind.rows) {
            SCOPED_TRACE(std::string(kind.profile) + ": " + row.before + " / " + row.operation);
            KX::CKXHostStackStdHid stack;
            ASSERT_EQ(stack.Open(nullptr, device.info().vendorId, device.info().productId), 1);
            perform(stack, device, row.before);
            (void)device.takeOutputs(); // hid_write() returns when the device has the report
            perform(stack, device, row.operation);
            EXPECT_EQ(device.takeOutputs(), reportsFromText(row.reports));
            EXPECT_EQ(stack.GetCallState(), row.callState);
            EXPECT_EQ(stack.GetMuteState(), row.muteState);
        }
        device.unplug();
    }
}

struct Press {
    const char* before;
    const char* reports; // that the device sends
    Events events;
    const char* answers; // that it receives
    uint32_t callState;
};

const Press kPresses[] = {
    {"ring", "030100", {"off-hook"}, "03 00 00, 03 01 00", KX::kCallActive},
    {"ring", "030000", {"hang-up"}, "03 00 00, 03 00 00", KX::kCallIdle},
    {"ring", "0101", {"hang-up"}, "03 00 00, 03 00 00", KX::kCallIdle}, // a volume key
    {"offhook ring", "031100", {"off-hook"}, "03 00 00, 03 01 00", KX::kCallActive},
    {"offhook ring", "030300", {"hang-up"}, "03 00 00, 03 01 00", KX::kCallActive},
    {"offhook ring", "030100 030000 031000 030200 03010000 031300", {"off-hook"},
        "03 00 00, 03 01 00", KX::kCallActive}, // only the last decides
    {"offhook", "030900", {"mute"}, "03 05 00", KX::kCallActive},
    {"offhook", "030900 030100 030900", {"mute", "unmute"}, "03 05 00, 03 01 00", KX::kCallActive},
    {"offhook mute", "030800", {"unmute"}, "03 01 00", KX::kCallActive},
};

TEST_F(Stack, EachPressIsHeardAndAnswered)
{
    auto& device = plug("speakerphone");
    ASSERT_EQ(open(device), 1);
    for (const Press& row : kPresses) {
        SCOPED_TRACE(std::string(row.before) + " / " + row.reports);
        perform(stack_, device, std::string("offhook unmute hangup ") + row.before);
        (void)device.takeOutputs();
        perform(stack_, device, row.reports);
        EXPECT_EQ(
            outputs(device, reportsFromText(row.answers).size()), reportsFromText(row.answers));
        EXPECT_EQ(sink_.Take(), row.events);
        EXPECT_EQ(stack_.GetCallState(), row.callState);
    }
}

TEST_F(Stack, PressesThatMeanNothingAreIgnored)
{
    auto& device = plug("speakerphone");
    ASSERT_EQ(open(device), 1);
    perform(stack_, device, "offhook 030100 030000 0308 08 03080000");
    (void)device.takeOutputs();
    perform(stack_, device, "030800"); // heard last, so the others have been
    EXPECT_EQ(outputs(device, 1), reportsFromText("03 05 00"));
    EXPECT_EQ(sink_.Take(), Events{"mute"});

    perform(stack_, device, "hangup");
    (void)device.takeOutputs();
    perform(stack_, device, "030800 030100");
    stack_.Close();
    EXPECT_EQ(device.takeOutputs(), Reports{});
    EXPECT_EQ(sink_.Take(), Events{});
}

TEST_F(Stack, HearsADeviceWithoutReportIdsAndOneWithLampsApart)
{
    struct Kind {
        const char *profile, *hook, *mute, *answered, *muted;
    };
    for (const Kind& kind : {
             Kind{"no-report-ids", "0100", "0400", "00 00 00, 00 01 00", "00 03 00"},
             Kind{"lamp-per-report", "0802", "0801", "18 00, 17 01", "09 01"},
             Kind{"no-out-endpoint", "0501", "0502", "05 00, 05 01", "05 03"},
         }) {
        SCOPED_TRACE(kind.profile);
        auto& device = plug(kind.profile);
        KX::CKXHostStackStdHid stack;
        ASSERT_EQ(stack.Open(&sink_, device.info().vendorId, device.info().productId), 1);
        stack.Ring();
        (void)device.takeOutputs();
        press(device, bytesFromHex(kind.hook));
        EXPECT_EQ(outputs(device, 2), reportsFromText(kind.answered));
        press(device, bytesFromHex(kind.mute));
        EXPECT_EQ(outputs(device, 1), reportsFromText(kind.muted));
        EXPECT_EQ(sink_.Take(), (Events{"off-hook", "mute"}));
        stack.Close();
        device.unplug();
    }
}

TEST_F(Stack, LosesNoPressInAFlood)
{
    auto& device = plug("speakerphone");
    ASSERT_EQ(open(device), 1);
    stack_.OffHook();
    constexpr size_t presses = 400;
    for (size_t i = 0; i < presses; ++i) {
        ASSERT_TRUE(device.inject(bytesFromHex("030800")));
        if (i % 10 == 9) { // well below what hidapi keeps
            ASSERT_TRUE(device.waitForOutputs(5 + i + 1));
        }
    }
    EXPECT_TRUE(eventually([&] { return stack_.GetMuteState() == KX::kUnmuted; }));
    EXPECT_EQ(sink_.Take().size(), presses);
}

TEST_F(Stack, AnUnpluggedDeviceHarmsNoneOfTheStates)
{
    for (const char* state : {"hangup", "ring", "offhook", "offhook mute", "offhook ring"}) {
        SCOPED_TRACE(state);
        auto& device = plug("speakerphone");
        KX::CKXHostStackStdHid stack;
        ASSERT_EQ(stack.Open(&sink_, device.info().vendorId, device.info().productId), 1);
        perform(stack, device, state);
        device.unplug();
        stack.Ring();
        stack.OffHook();
        stack.Mute();
        EXPECT_EQ(stack.GetMuteState(), KX::kMuted);
        stack.HangUp();
        EXPECT_EQ(stack.GetCallState(), KX::kCallIdle);
        stack.Close();

        device.plug(); // and it can be used again
        KX::CKXHostStackStdHid again;
        EXPECT_EQ(again.Open(&sink_, device.info().vendorId, device.info().productId), 1);
        again.Close();
        device.unplug();
    }
    EXPECT_EQ(sink_.Take(), Events{});
}

TEST_F(Stack, UnplugInTheMidstOfPressesAndOperations)
{
    for (size_t round = 0; round < 10; ++round) {
        auto& device = plug("speakerphone");
        KX::CKXHostStackStdHid stack;
        ASSERT_EQ(stack.Open(&sink_, device.info().vendorId, device.info().productId), 1);
        std::atomic<bool> stop = false;
        std::thread finger([&] {
            while (!stop)
                (void)(device.inject(bytesFromHex("030900")) && device.waitUntilRead());
        });
        std::thread hand([&] {
            (void)device.waitForOutputs(4 + 3 * round);
            device.unplug();
        });
        for (int i = 0; i < 30; ++i) {
            stack.OffHook();
            stack.Ring();
        }
        stop = true;
        finger.join();
        hand.join();
        stack.Close();
    }
}

TEST_F(Stack, OpenFailsPlainlyAndLeavesNothingOpen)
{
    EXPECT_EQ(stack_.Open(&sink_, 0x1234, 0x5678), 0);
    stack_.Ring();
    EXPECT_EQ(stack_.GetCallState(), KX::kCallNeverSet);

    auto& device = plug("speakerphone");
    device.setOpenable(false);
    KX::CKXHostStackStdHid denied;
    EXPECT_EQ(denied.Open(&sink_, device.info().vendorId, device.info().productId), 0);
    device.setOpenable(true);
    device.faults().refuseClaim.arm();
    KX::CKXHostStackStdHid refused;
    EXPECT_EQ(refused.Open(&sink_, device.info().vendorId, device.info().productId), 0);
    EXPECT_FALSE(device.claimed());
    device.faults().clear();
    KX::CKXHostStackStdHid well;
    EXPECT_EQ(well.Open(&sink_, device.info().vendorId, device.info().productId), 1);
}

TEST_F(Stack, ADeviceThatFailedOnceOpensWithoutControls)
{
    auto& device = plug("lamp-per-report");
    device.setOpenable(false);
    {
        KX::CKXHostStackStdHid first; // its end is hidapi's, so it comes before the next opening
        EXPECT_EQ(first.Open(&sink_, device.info().vendorId, device.info().productId), 0);
    }
    device.setOpenable(true);
    ASSERT_EQ(open(device), 1);
    EXPECT_EQ(device.counters().reportDescriptorReads, 0);
    perform(stack_, device, "ring offhook mute hangup");
    EXPECT_EQ(device.takeOutputs(), Reports{});
}

TEST_F(Stack, LostReportsChangeNoState)
{
    auto& device = plug("speakerphone");
    ASSERT_EQ(open(device), 1);
    (void)device.takeOutputs();
    device.faults().failWrite.arm(3);
    perform(stack_, device, "offhook mute unmute");
    EXPECT_EQ(device.takeOutputs(), reportsFromText("03 01 00"));
    EXPECT_EQ(stack_.GetMuteState(), KX::kUnmuted);
}

TEST_F(Stack, CloseMayBeRepeatedAndGivesTheDriverBack)
{
    auto& device = plug("lamp-per-report"); // its descriptor is fetched, too
    ASSERT_EQ(open(device), 1);
    EXPECT_FALSE(device.driverBound());
    const auto start = std::chrono::steady_clock::now();
    stack_.Close();
    // Far above a read time-out, so that only a reader that does not stop fails it.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    stack_.Close();
    EXPECT_FALSE(device.claimed());
    EXPECT_TRUE(device.driverBound());
}

} // namespace
