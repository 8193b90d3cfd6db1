// The device filter sets are process-wide, and each test here runs in a process of its own.
#include "DeviceFilter.h"
#include "IKXHost.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>

namespace {

using Ids = std::unordered_set<uint32_t>;
using Names = std::unordered_set<std::string>;

int Load(const std::string& json)
{
    return LoadHidFilterConfig(json.c_str(), static_cast<int>(json.size()));
}

struct NoCallback final : IKXHostCallback {
    void OnCommand(KXCommand, void*) override { }
    void OnState(KXState, const uint8_t*) override { }
};

void CreateAndDestroyHost()
{
    NoCallback callback;
    IKXHost* host = CreateKXHost(&callback);
    ASSERT_NE(host, nullptr);
    DestroyKXHost(host);
}

TEST(DeviceFilter, TheFirstHostFillsInTheDefaults)
{
    EXPECT_EQ(CreateKXHost(nullptr), nullptr);
    EXPECT_TRUE(KX::VendorWhitelist().empty());
    CreateAndDestroyHost();
    EXPECT_EQ(KX::VendorWhitelist(),
        (Ids{0x095D, 0x2574, 0x14ED, 0x2ABF, 0x047F, 0x046D, 0x0B0E, 0x14BE, 0x6993, 0x1395, 0x2D34,
            0x28E6, 0x1656, 0x413C, 0x17EF}));
    EXPECT_EQ(KX::VidPidWhitelist(), (Ids{66063718, 77152289}));
    EXPECT_TRUE(KX::VidPidBlacklist().empty());
    EXPECT_TRUE(KX::NameBlacklist().empty());
}

TEST(DeviceFilter, AConfigurationBeforeTheFirstHostReplacesTheDefaultsAfterItExtendsThem)
{
    ASSERT_EQ(Load(R"({ "HID": { "WhitelistVendorId": [ 4660, 4660 ] } } // comment)"), 1);
    CreateAndDestroyHost();
    EXPECT_EQ(KX::VendorWhitelist(), (Ids{0x1234}));
    EXPECT_EQ(KX::VidPidWhitelist().size(), 2u);
    ASSERT_EQ(
        Load(R"({ "HID": { "WhitelistVendorId": [ 1 ], "BlacklistDeviceName": [ "a" ] } })"), 1);
    CreateAndDestroyHost();
    EXPECT_EQ(KX::VendorWhitelist(), (Ids{0x1234, 1}));
    EXPECT_EQ(KX::NameBlacklist(), (Names{"a"}));
}

TEST(DeviceFilter, TheVendorBlacklistBoundsBothListsOfPairs)
{
    ASSERT_EQ(
        Load(R"({ "HID": { "WhitelistVidPid": [ 1, 2, 3 ], "BlacklistVidPid": [ 4 ] } })"), 1);
    EXPECT_TRUE(KX::VidPidWhitelist().empty());
    EXPECT_TRUE(KX::VidPidBlacklist().empty());
    ASSERT_EQ(Load(R"({ "HID": { "WhitelistVidPid": [ 1, 2, 3 ], "BlacklistVidPid": [ 4 ],
                                 "BlacklistVendorId": [ "never", "read" ] } })"),
        1);
    EXPECT_EQ(KX::VidPidWhitelist(), (Ids{1, 2}));
    EXPECT_EQ(KX::VidPidBlacklist(), (Ids{4, 0}));
}

TEST(DeviceFilter, TextsThatDoNotParseChangeNothing)
{
    EXPECT_EQ(LoadHidFilterConfig(nullptr, 10), 0);
    EXPECT_EQ(LoadHidFilterConfig("{}", 1), 0);
    for (const std::string& text :
        {std::string("{"), std::string(R"({ "HID": { "WhitelistVendorId": [ 1 ] } )"),
            std::string(100'000, '['), std::string("\xff\xfe{}")})
        EXPECT_EQ(Load(text), 0);
    EXPECT_EQ(Load("{}"), 1);
    EXPECT_EQ(LoadHidFilterConfig("{}", 1000), 1) << "the length is not a bound";
    EXPECT_TRUE(KX::VendorWhitelist().empty());
}

TEST(DeviceFilter, AnElementOfAWrongTypeIsTheCallersToCatch)
{
    for (const char* wrong : {R"("5")", "-1", "4294967296", "[]", "{}"}) {
        const std::string json
            = std::string(R"({ "HID": { "WhitelistVendorId": [ 77, )") + wrong + ", 88 ] } }";
        EXPECT_THROW(Load(json), std::exception) << wrong;
    }
    for (const char* document : {"[]", R"({ "HID": [] })", R"({ "HID": "text" })"})
        EXPECT_THROW(Load(document), std::exception) << document;
    EXPECT_EQ(KX::VendorWhitelist(), (Ids{77})) << "what came before the error stays";
}

TEST(NameChecks, ConferenceDevicesAreTheSameByNameAndLeadingNumber)
{
    struct Row {
        const char *a, *b;
        uint8_t differs;
    };
    for (const Row& row : {
             Row{"Jabra SPEAK 510", "My Jabra SPEAK 510 USB", 0},
             Row{"2 Jabra SPEAK 510", "2- Jabra SPEAK 510", 0},
             Row{"2 Jabra SPEAK 510", "3 Jabra SPEAK 510", 1},
             Row{"Jabra SPEAK 510", "2 Jabra SPEAK 510", 1},
             Row{"Jabra SPEAK 510", "Jabra SPEAK 810", 1},
             Row{"jabra speak 510", "jabra speak 510", 1},
             Row{"Trio8800", "Trio8800", 0},
             Row{"Trio 8800", "Trio8800", 1},
             Row{"Yamaha AudioVideo Device", "Yamaha AudioVideo Device", 0},
             Row{"something else", "something else", 1},
             Row{nullptr, "Revolabs", 1},
             Row{"Revolabs", nullptr, 1},
         }) {
        uint8_t differs = 7;
        IsSameConferenceDevice(row.a, row.b, &differs);
        EXPECT_EQ(differs, row.differs) << row.a << " / " << row.b;
    }
}

TEST(NameChecks, KnownNames)
{
    EXPECT_EQ(IsKnownSpeakerphone("a Revolabs b"), 1);
    EXPECT_EQ(IsKnownSpeakerphone("Jabra SPEAK 810"), 1);
    EXPECT_EQ(IsKnownSpeakerphone("Logitech MeetUp"), 0);
    EXPECT_EQ(IsKnownSpeakerphone(nullptr), 0);
    EXPECT_TRUE(IsCaptureBox("XI100DUSB-HDMI Video"));
    EXPECT_FALSE(IsCaptureBox("XI100DUSB"));
    EXPECT_FALSE(IsCaptureBox(nullptr));

    char* name = nullptr;
    uint32_t capacity = 0;
    EXPECT_EQ(GetLegacyDeviceName(&name, &capacity), name);
    EXPECT_STREQ(name, "Revolabs");
    EXPECT_EQ(capacity, 32u);
}

} // namespace
