// The host's mapping, against the real stack and a simulated device.
#include "IKXHost.h"
#include "bus_test.h"
#include "device_file.h"

#include <mutex>
#include <utility>

namespace {

using test::bytesFromHex;

class Callback final : public IKXHostCallback {
public:
    void OnCommand(KXCommand command, void* reserved) override
    {
        EXPECT_EQ(reserved, nullptr);
        add("command " + std::to_string(static_cast<unsigned>(command)));
    }
    void OnState(KXState state, const uint8_t* value) override
    {
        add("state " + std::to_string(static_cast<unsigned>(state)) + " " + std::to_string(*value));
    }
    std::vector<std::string> take()
    {
        const std::lock_guard guard(mutex_);
        return std::exchange(events_, {});
    }

private:
    void add(std::string event)
    {
        const std::lock_guard guard(mutex_);
        events_.push_back(std::move(event));
    }
    std::mutex mutex_;
    std::vector<std::string> events_;
};

constexpr const char* kSpeakerphone = "0x0b0e-HID-0x0410#";

class Host : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        host_ = CreateKXHost(&callback_);
        ASSERT_NE(host_, nullptr);
    }
    void TearDown() override
    {
        DestroyKXHost(host_);
        BusTest::TearDown();
    }
    void set(KXState state, uint8_t value) { host_->SetState(state, &value); }

    // The state's value, or -1 when the host does not tell, or -2 when it wrote one all the same.
    int get(KXState state)
    {
        uint8_t value = 99;
        const bool told = host_->GetState(state, &value);
        return told ? value : value == 99 ? -1 : -2;
    }

    Callback callback_;
    IKXHost* host_ = nullptr;
};

TEST_F(Host, MapsStatesBothWays)
{
    auto& device = plug();
    EXPECT_EQ(get(KXState::Call), -1) << "no device yet";
    EXPECT_EQ(host_->IsSupported(), 0);
    host_->SelectDevice(kSpeakerphone);
    EXPECT_EQ(host_->IsSupported(), 1);
    EXPECT_EQ(get(KXState::Mute), -1) << "never set";
    EXPECT_EQ(get(KXState::Call), KXCallIdle);
    (void)device.takeOutputs();

    struct Row {
        KXState state;
        uint8_t value;
        const char* last; // report, none when empty
        int call, mute;
    };
    for (const Row& row : {
             Row{KXState::Call, 0, "03 08 00", 0, -1},
             Row{KXState::Call, 1, "03 01 00", 1, -1},
             Row{KXState::Mute, 7, "03 05 00", 1, 1},
             Row{KXState::Mute, 0, "03 01 00", 1, 0},
             Row{KXState::Call, 3, "", 1, 0},
             Row{KXState::Call, 255, "", 1, 0},
             Row{static_cast<KXState>(2), 1, "", 1, 0},
             Row{KXState::Call, 2, "03 00 00", 2, 0},
         }) {
        set(row.state, row.value);
        const auto reports = device.takeOutputs();
        EXPECT_EQ(reports.empty() ? Bytes{} : reports.back(), bytesFromHex(row.last));
        EXPECT_EQ(get(KXState::Call), row.call);
        EXPECT_EQ(get(KXState::Mute), row.mute);
    }
    host_->SetState(KXState::Call, nullptr);
    EXPECT_FALSE(host_->GetState(KXState::Call, nullptr));
    EXPECT_EQ(get(static_cast<KXState>(2)), -1);
    EXPECT_EQ(device.takeOutputs(), Reports{});
}

TEST_F(Host, PassesTheDevicesEventsOn)
{
    auto& device = plug();
    host_->SelectDevice(kSpeakerphone);
    const auto after = [&](uint8_t call, const char* report) {
        set(KXState::Call, call);
        EXPECT_TRUE(device.inject(bytesFromHex(report)));
        std::vector<std::string> events;
        EXPECT_TRUE(eventually([&] { return !(events = callback_.take()).empty(); }));
        return events;
    };
    using Events = std::vector<std::string>;
    EXPECT_EQ(after(KXCallActive, "030800"), Events{"state 0 1"});
    EXPECT_EQ(after(KXCallActive, "030800"), Events{"state 0 0"});
    set(KXState::Call, KXCallIdle);
    EXPECT_EQ(after(KXCallRinging, "030100"), Events{"command 0"});
    set(KXState::Call, KXCallIdle);
    EXPECT_EQ(after(KXCallRinging, "030000"), Events{"command 1"});
}

TEST_F(Host, OneKeyOneStack)
{
    auto& device = plug();
    auto& other = plug("lamp-per-report");
    host_->SelectDevice(kSpeakerphone);
    EXPECT_EQ(outputs(device, 3).size(), 3u);
    host_->SelectDevice(kSpeakerphone);
    host_->SelectDevice(nullptr);
    EXPECT_EQ(device.takeOutputs(), Reports{}) << "the open stack stays";
    EXPECT_TRUE(device.claimed());

    host_->SelectDevice("0x047F-HID-0xC056#a name");
    EXPECT_FALSE(device.claimed());
    EXPECT_TRUE(other.claimed());
    uint16_t vendor = 0;
    uint16_t product = 0;
    EXPECT_EQ(host_->GetDeviceId(&vendor, &product), 0);
    EXPECT_EQ(vendor, 0x047F);
    EXPECT_EQ(product, 0xC056);

    host_->SelectDevice("0x0b0e-HID-0x0410"); // one short
    EXPECT_FALSE(other.claimed());
    EXPECT_EQ(get(KXState::Call), -1);
    EXPECT_EQ(host_->GetDeviceId(&vendor, &product), 0);
    EXPECT_EQ(vendor, 0x047F) << "the ids stay";

    host_->SelectDevice("0xzzzz-HID-0xzzzz#");
    EXPECT_EQ(get(KXState::Call), KXCallUnknown) << "open failed, the stack is there";
    EXPECT_EQ(host_->GetDeviceId(&vendor, &product), 0);
    EXPECT_EQ(vendor, 0);
}

TEST_F(Host, DestroyedOnHookItLeavesTheLampsOff)
{
    auto& device = plug();
    host_->SelectDevice(kSpeakerphone);
    set(KXState::Call, KXCallRinging);
    (void)device.takeOutputs();
    set(KXState::Call, KXCallIdle);
    DestroyKXHost(std::exchange(host_, nullptr));
    EXPECT_EQ(device.takeOutputs(), Reports(3, bytesFromHex("03 00 00")));
    EXPECT_FALSE(device.claimed());
    DestroyKXHost(nullptr);
}

} // namespace
