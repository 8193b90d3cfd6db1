// The host with the real stack and simulated devices.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"
#include "tests/host/failing_new.h"
#include "tests/support/bus_test.h"

namespace {

constexpr auto kNoState = static_cast<KXState>(2);
constexpr const char* kSpeakerphone = "0x1209-HID-0x0001#";

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
    auto& device = record(plug("speakerphone"));
    EXPECT_EQ(host_->IsSupported(), 0) << "no device yet";
    host_->SelectDevice(kSpeakerphone);
    EXPECT_EQ(host_->IsSupported(), 1);
    (void)story_.take();

    for (const auto& [state, value, press, story, call, mute] : {
             std::tuple{KXState::Call, uint8_t{0}, "", "03 08 00; ", 0, -1},
             {KXState::Call, 255, "030000", "command 1; 03 00 00; 03 00 00; ", 2, -1},
             {KXState::Call, 0, "030100", "03 08 00; command 0; 03 00 00; 03 01 00; ", 1, -1},
             {KXState::Call, 2, "", "03 00 00; 03 00 00; 03 00 00; ", 2, -1},
             {KXState::Call, 1, "", "03 00 00; 03 01 00; ", 1, -1},
             {KXState::Mute, 7, "", "03 05 00; ", 1, 1},
             {KXState::Mute, 0, "", "03 01 00; ", 1, 0},
             {KXState::Call, 3, "030800", "state 0:1; 03 05 00; ", 1, 1},
             {kNoState, 1, "030800", "state 0:0; 03 01 00; ", 1, 0},
         }) {
        host_->SetState(state, &value);
        EXPECT_TRUE(!*press || device.inject(sim::fromHex(press).value()));
        EXPECT_EQ(storyLike(story), story);
        EXPECT_EQ(std::pair(get(KXState::Call), get(KXState::Mute)), std::pair(call, mute));
    }
    host_->SetState(KXState::Call, nullptr);
    EXPECT_FALSE(host_->GetState(KXState::Call, nullptr));
    EXPECT_EQ(get(kNoState), -1);
}

TEST_F(Host, OneKeyOneStack)
{
    auto& device = record(plug("speakerphone"));
    auto& other = record(plug("led-per-report"));
    const auto* onHook = "03 00 00; 03 00 00; 03 00 00; ";
    for (const auto& [select, reports, call, ids] : {
             std::tuple{kSpeakerphone, onHook, int{KXCallIdle}, 0x12090001u},
             {kSpeakerphone, "", KXCallIdle, 0x12090001},
             {nullptr, "", KXCallIdle, 0x12090001},
             {"0x047f-HID-0xc056#a name", "18 00; 17 00; 20 00; ", KXCallIdle, 0x047fc056},
             {"0x1209-HID-0x0001", "", -1, 0x047fc056},    // too short; the ids stay
             {"0xzzzz-HID-0xzzzz#", "", KXCallUnknown, 0}, // open failed, the stack is there
             {kSpeakerphone, onHook, KXCallIdle, 0x12090001},
         }) {
        host_->SelectDevice(select);
        EXPECT_EQ(story_.take(), reports);
        EXPECT_EQ(get(KXState::Call), call);
        EXPECT_EQ(device.claimed(), call == KXCallIdle && ids == 0x12090001);
        EXPECT_EQ(other.claimed(), call == KXCallIdle && ids == 0x047fc056);
        uint16_t vendor = 0;
        uint16_t product = 0;
        EXPECT_EQ(host_->GetDeviceId(&vendor, &product), 0);
        EXPECT_EQ(KX::PackVidPid(vendor, product), ids);
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

    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.productId = 0xFFFE; // of no other test, so that its descriptor is fetched
    const auto& device = plug(info);
    const auto select = [&] { host_->SelectDevice("0x1209-HID-0xfffe#"); };
    forEachAllocation(select, [&] {
        EXPECT_EQ(get(KXState::Call), -1);
        EXPECT_TRUE(!device.claimed() && device.driverBound());
    });
    EXPECT_EQ(get(KXState::Call), KXCallIdle);
}

} // namespace
