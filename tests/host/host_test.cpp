// The host with the real stack and simulated devices.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"
#include "tests/host/failing_new.h"
#include "tests/support/bus_test.h"

#include <array>
#include <cstdio>

namespace {

constexpr auto kNoState = static_cast<KXState>(2);

std::string keyOf(const sim::UsbDevice& device, const char* name = "")
{
    std::array<char, 64> key = {};
    (void)std::snprintf(key.data(), key.size(), "0x%04x-HID-0x%04x#%s", device.info().vendorId,
        device.info().productId, name);
    return key.data();
}

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

    void select(const std::string& key) { host_->SelectDevice(key.c_str()); }
    void set(KXState state, uint8_t value) { host_->SetState(state, &value); }

    // The state's value; -1 when the host returns none, -2 when it then wrote one all the same.
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
        return KX::PackVidPid(vendor, product);
    }
    static uint32_t idsOf(const sim::UsbDevice& device)
    {
        return KX::PackVidPid(device.info().vendorId, device.info().productId);
    }

    IKXHost* host_ = CreateKXHost(this);
};

// Each row: a state that is set, a report that the device then sends, the reports and callbacks
// that follow, and the two states afterwards.
TEST_F(Host, MapsStatesBothWays)
{
    auto& device = record(plug("speakerphone"));
    EXPECT_EQ(get(KXState::Call), -1) << "no device yet";
    EXPECT_EQ(host_->IsSupported(), 0);
    select(keyOf(device));
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
        set(state, value);
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
    auto& device = record(plug("speakerphone"));
    auto& other = plug("led-per-report");
    select(keyOf(device));
    EXPECT_EQ(story_.take(), "03 00 00; 03 00 00; 03 00 00; ");
    select(keyOf(device));
    host_->SelectDevice(nullptr);
    EXPECT_EQ(story_.take(), "") << "the open stack stays";

    select(keyOf(other, "a name"));
    EXPECT_TRUE(other.claimed() && !device.claimed());
    EXPECT_EQ(ids(), idsOf(other));
    std::string tooShort = keyOf(device);
    tooShort.pop_back();
    select(tooShort);
    EXPECT_FALSE(other.claimed());
    EXPECT_EQ(get(KXState::Call), -1);
    EXPECT_EQ(ids(), idsOf(other)) << "they stay";
    select("0xzzzz-HID-0xzzzz#");
    EXPECT_EQ(get(KXState::Call), KXCallUnknown) << "open failed, the stack is there";
    EXPECT_EQ(ids(), 0u);

    select(keyOf(device));
    DestroyKXHost(std::exchange(host_, nullptr));
    EXPECT_FALSE(device.claimed());
    DestroyKXHost(nullptr);
    EXPECT_EQ(CreateKXHost(nullptr), nullptr);
}

TEST_F(Host, CreationFillsInTheFilterDefaultsOrReturnsNullWithoutMemory)
{
    EXPECT_TRUE(KX::DeviceFilter::Instance().VendorWhitelist().contains(0x0B0E));
    IKXHost* created = nullptr;
    forEachAllocation([&] { created = CreateKXHost(this); }, [&] { EXPECT_EQ(created, nullptr); });
    EXPECT_NE(created, nullptr);
    DestroyKXHost(created);
}

TEST_F(Host, SelectsNoDeviceWithoutMemoryAndCanTryAgain)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.productId = 0xFFFE; // of no other test, so that its descriptor is fetched
    auto& device = plug(info);
    const std::string key = keyOf(device);
    forEachAllocation([&] { host_->SelectDevice(key.c_str()); },
        [&] {
            EXPECT_EQ(get(KXState::Call), -1);
            EXPECT_FALSE(device.claimed());
            EXPECT_TRUE(device.driverBound());
        });
    EXPECT_EQ(get(KXState::Call), KXCallIdle);
    (void)record(device);
    {
        const FailingNew withoutMemory(1, FailingNew::Then::KeepsFailing);
        set(KXState::Call, KXCallActive);
        set(KXState::Mute, 1);
        set(KXState::Call, KXCallIdle);
        set(KXState::Call, KXCallRinging);
    }
    EXPECT_EQ(
        story_.take(), "03 00 00; 03 01 00; 03 05 00; 03 00 00; 03 00 00; 03 00 00; 03 08 00; ");
}

} // namespace
