// The host's mapping, against the real stack and a simulated device.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"
#include "tests/support/bus_test.h"

namespace {

constexpr const char* kSpeakerphone = "0x0b0e-HID-0x0410#";

constexpr auto kNoState = static_cast<KXState>(2);

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

    // The state's value, or -1 when the host does not tell, or -2 when it wrote one all the same.
    int get(KXState state)
    {
        uint8_t value = 99;
        return host_->GetState(state, &value) ? value : value == 99 ? -1 : -2;
    }
    uint32_t ids()
    {
        uint16_t vendor = 0;
        uint16_t product = 0;
        EXPECT_EQ(host_->GetDeviceId(&vendor, &product), 0);
        return uint32_t{vendor} << 16 | product;
    }

    IKXHost* host_ = CreateKXHost(this);
};

// Each state set, each report that the device sends then, what comes of it, and the states told.
TEST_F(Host, MapsStatesBothWays)
{
    auto& device = record(plug());
    EXPECT_EQ(get(KXState::Call), -1) << "no device yet";
    EXPECT_EQ(host_->IsSupported(), 0);
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
        EXPECT_EQ(get(KXState::Call), call);
        EXPECT_EQ(get(KXState::Mute), mute);
    }
    host_->SetState(KXState::Call, nullptr);
    EXPECT_EQ(story_.take(), "");
    EXPECT_FALSE(host_->GetState(KXState::Call, nullptr));
    EXPECT_EQ(get(kNoState), -1);
}

TEST_F(Host, OneKeyOneStack)
{
    auto& device = record(plug());
    auto& other = plug("lamp-per-report");
    host_->SelectDevice(kSpeakerphone);
    EXPECT_EQ(story_.take(), "03 00 00; 03 00 00; 03 00 00; ");
    host_->SelectDevice(kSpeakerphone);
    host_->SelectDevice(nullptr);
    EXPECT_EQ(story_.take(), "") << "the open stack stays";

    host_->SelectDevice("0x047F-HID-0xC056#a name");
    EXPECT_TRUE(other.claimed() && !device.claimed());
    EXPECT_EQ(ids(), 0x047FC056u);
    host_->SelectDevice("0x0b0e-HID-0x0410"); // one short
    EXPECT_FALSE(other.claimed());
    EXPECT_EQ(get(KXState::Call), -1);
    EXPECT_EQ(ids(), 0x047FC056u) << "they stay";
    host_->SelectDevice("0xzzzz-HID-0xzzzz#");
    EXPECT_EQ(get(KXState::Call), KXCallUnknown) << "open failed, the stack is there";
    EXPECT_EQ(ids(), 0u);

    host_->SelectDevice(kSpeakerphone);
    DestroyKXHost(std::exchange(host_, nullptr));
    EXPECT_FALSE(device.claimed());
    DestroyKXHost(nullptr);
    EXPECT_EQ(CreateKXHost(nullptr), nullptr);
}

TEST_F(Host, TheFirstFillsInTheFilterDefaults)
{
    const std::unordered_set<uint32_t> vendors = {0x095D, 0x2574, 0x14ED, 0x2ABF, 0x047F, 0x046D,
        0x0B0E, 0x14BE, 0x6993, 0x1395, 0x2D34, 0x28E6, 0x1656, 0x413C, 0x17EF};
    EXPECT_EQ(KX::VendorWhitelist(), vendors);
    EXPECT_EQ(KX::VidPidWhitelist(), (std::unordered_set<uint32_t>{66063718, 77152289}));
    EXPECT_TRUE(KX::VidPidBlacklist().empty() && KX::NameBlacklist().empty());
}

} // namespace
