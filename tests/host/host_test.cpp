// The host with the real stack and simulated devices.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"
#include "tests/host/failing_new.h"
#include "tests/support/bus_test.h"

namespace {

#define ON_HOOK "03 00 00; 03 00 00; 03 00 00; "

constexpr const char* kSpeakerphone = "0x12ab-HID-0x0001#";

class Host : public BusTest, protected IKXHostCallback {
protected:
    void OnCommand(KXCommand command, void* reserved) override
    {
        story_.add((reserved ? "wrong " : "command ") + std::to_string(uint32_t(command)));
    }
    void OnState(KXState state, const uint8_t* value) override
    {
        story_.add("state " + std::to_string(uint32_t(state)) + ":" + std::to_string(*value));
    }
    void TearDown() override
    {
        DestroyKXHost(host_);
        BusTest::TearDown();
    }

    // Plugs in a device with ids of its own and records its reports.
    sim::UsbDevice& plugAs(uint16_t productId, const char* profile)
    {
        sim::UsbDeviceInfo info = sim::findProfile(profile)->info;
        info.vendorId = 0x12ab;
        info.productId = productId;
        return record(plug(info));
    }

    // The state's value; -1 when the host returns none.
    int get(KXState state)
    {
        uint8_t value = 0;
        return host_->GetState(state, &value) ? value : -1;
    }

    IKXHost* host_ = CreateKXHost(this);
};

// Each row: a state that is set, a report that the device then sends, the reports and callbacks
// that follow, and the two states afterwards.
TEST_F(Host, MapsStatesBothWays)
{
    auto& device = plugAs(1, "speakerphone");
    EXPECT_EQ(host_->IsSupported(), 0) << "no device yet";
    host_->SelectDevice(kSpeakerphone);
    EXPECT_EQ(host_->IsSupported(), 1);
    (void)story_.take();

    for (const auto& [state, value, press, story, call, mute] : {
             std::tuple{KXState::Call, uint8_t{0}, "", "03 08 00; ", 0, -1},
             {KXState::Call, 255, "030000", "command 1; 03 00 00; 03 00 00; ", 2, -1},
             {KXState::Call, 0, "030100", "03 08 00; command 0; 03 00 00; 03 01 00; ", 1, -1},
             {KXState::Call, 2, "", ON_HOOK, 2, -1},
             {KXState::Call, 1, "", "03 00 00; 03 01 00; ", 1, -1},
             {KXState::Mute, 7, "", "03 05 00; ", 1, 1},
             {KXState::Mute, 0, "", "03 01 00; ", 1, 0},
             {KXState::Call, 3, "030800", "state 0:1; 03 05 00; ", 1, 1},
             {KXState(2), 1, "030800", "state 0:0; 03 01 00; ", 1, 0},
         }) {
        host_->SetState(state, &value);
        EXPECT_TRUE(!*press || device.inject(sim::fromHex(press).value()));
        EXPECT_EQ(storyLike(story), story);
        EXPECT_EQ(std::pair(get(KXState::Call), get(KXState::Mute)), std::pair(call, mute));
    }
    host_->SetState(KXState::Call, nullptr);
    EXPECT_FALSE(host_->GetState(KXState::Call, nullptr));
    EXPECT_EQ(get(KXState(2)), -1);
}

TEST_F(Host, OneKeyOneStack)
{
    auto& device = plugAs(1, "speakerphone");
    auto& other = plugAs(0xFACE, "led-per-report");
    for (const auto& [select, reports, call, ids] : {
             std::tuple{kSpeakerphone, ON_HOOK, int{KXCallIdle}, 0x12ab0001u},
             {kSpeakerphone, "", KXCallIdle, 0x12ab0001},
             {nullptr, "", KXCallIdle, 0x12ab0001},
             {"0x12AB-HID-0xFace#a name", "18 00; 17 00; 20 00; ", KXCallIdle, 0x12abface},
             {"0x12ab-HID-0x0001", "", -1, 0x12abface},    // too short; the ids stay
             {"0xzzzz-HID-0xzzzz#", "", KXCallUnknown, 0}, // open failed, the stack is there
             {kSpeakerphone, ON_HOOK, KXCallIdle, 0x12ab0001},
         }) {
        host_->SelectDevice(select);
        EXPECT_EQ(story_.take(), reports);
        EXPECT_EQ(get(KXState::Call), call);
        EXPECT_EQ(device.claimed(), call == KXCallIdle && ids == 0x12ab0001);
        EXPECT_EQ(other.claimed(), call == KXCallIdle && ids == 0x12abface);
        std::pair<uint16_t, uint16_t> id;
        EXPECT_EQ(host_->GetDeviceId(&id.first, &id.second), 0);
        EXPECT_EQ(KX::PackVidPid(id.first, id.second), ids);
    }
    DestroyKXHost(std::exchange(host_, nullptr));
    EXPECT_FALSE(device.claimed() || other.claimed());
    DestroyKXHost(nullptr);
    EXPECT_EQ(CreateKXHost(nullptr), nullptr);
}

TEST_F(Host, WithoutMemoryNoneIsCreatedNoDeviceIsSelectedAndBothCanBeTriedAgain)
{
    EXPECT_TRUE(KX::DeviceFilter::Instance().VendorWhitelist().contains(0x0B0E));
    IKXHost* created = nullptr;
    forEachAllocation([&] { created = CreateKXHost(this); }, [&] { EXPECT_EQ(created, nullptr); });
    EXPECT_NE(created, nullptr);
    DestroyKXHost(created);

    auto& device = plugAs(3, "speakerphone"); // ids of no other test: its descriptor is fetched
    const auto select = [&] { host_->SelectDevice("0x12ab-HID-0x0003#"); };
    forEachAllocation(select, [&] {
        EXPECT_EQ(get(KXState::Call), -1);
        EXPECT_TRUE(!device.claimed() && device.driverBound());
    });
    EXPECT_TRUE(device.waitForOutputs(3)) << "it has its controls";
}

} // namespace
