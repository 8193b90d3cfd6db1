// The device filter sets are process-wide, and each test here runs in a process of its own.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"

#include <gtest/gtest.h>

namespace {

using Ids = std::unordered_set<uint32_t>;

int Load(const std::string& json)
{
    return LoadHidFilterConfig(json.c_str(), static_cast<int>(json.size()));
}

// With the members of "HID".
int LoadHid(const std::string& members)
{
    return Load(R"({ "HID": {)" + members + "} } // comment");
}

TEST(DeviceFilter, AConfigurationBeforeTheDefaultsReplacesThemAfterItExtendsThem)
{
    EXPECT_EQ(LoadHid(R"("WhitelistVendorId": [ 4660, 4660 ])"), 1);
    KX::FillDefaultFilters();
    EXPECT_EQ(KX::VendorWhitelist(), (Ids{0x1234}));
    EXPECT_EQ(KX::VidPidWhitelist().size(), 2u);
    EXPECT_EQ(LoadHid(R"("WhitelistVendorId": [ 1 ], "BlacklistDeviceName": [ "a" ])"), 1);
    EXPECT_EQ(KX::VendorWhitelist(), (Ids{0x1234, 1}));
    EXPECT_EQ(KX::NameBlacklist(), std::unordered_set<std::string>{"a"});
}

TEST(DeviceFilter, TheVendorBlacklistBoundsBothListsOfPairs)
{
    const std::string pairs = R"("WhitelistVidPid": [ 1, 2, 3 ], "BlacklistVidPid": [ 4 ])";
    EXPECT_EQ(LoadHid(pairs), 1);
    EXPECT_TRUE(KX::VidPidWhitelist().empty() && KX::VidPidBlacklist().empty());
    EXPECT_EQ(LoadHid(pairs + R"(, "BlacklistVendorId": [ "never", "read" ])"), 1);
    EXPECT_EQ(KX::VidPidWhitelist(), (Ids{1, 2}));
    EXPECT_EQ(KX::VidPidBlacklist(), (Ids{4, 0}));
}

TEST(DeviceFilter, TextsThatDoNotParseChangeNothing)
{
    EXPECT_EQ(LoadHidFilterConfig(nullptr, 10), 0);
    EXPECT_EQ(LoadHidFilterConfig("{}", 1), 0);
    EXPECT_EQ(LoadHidFilterConfig("{}", 1000), 1) << "the length is not a bound";
    EXPECT_EQ(Load(R"({ "HID": { "WhitelistVendorId": [ 1 ] } )"), 0);
    EXPECT_EQ(Load(std::string(100'000, '[')), 0);
    EXPECT_EQ(Load("\xff\xfe{}"), 0);
    EXPECT_TRUE(KX::VendorWhitelist().empty());
}

TEST(DeviceFilter, AnElementOfAWrongTypeIsTheCallersToCatch)
{
    for (const std::string wrong : {R"("5")", "-1", "4294967296", "[]", "{}"})
        EXPECT_ANY_THROW(LoadHid(R"("WhitelistVendorId": [ 77, )" + wrong + ", 88 ]")) << wrong;
    for (const char* document : {"[]", R"({ "HID": [] })", R"({ "HID": "text" })"})
        EXPECT_ANY_THROW(Load(document)) << document;
    EXPECT_EQ(KX::VendorWhitelist(), (Ids{77})) << "what came before the error stays";
}

int Differs(const char* a, const char* b)
{
    uint8_t differs = 7;
    IsSameConferenceDevice(a, b, &differs);
    return differs;
}

TEST(NameChecks, GoByKnownPartsAndTheLeadingNumber)
{
    EXPECT_EQ(Differs("Jabra SPEAK 510", "My Jabra SPEAK 510 USB"), 0);
    EXPECT_EQ(Differs("2 Jabra SPEAK 510", "2- Jabra SPEAK 510"), 0);
    EXPECT_EQ(Differs("2 Jabra SPEAK 510", "3 Jabra SPEAK 510"), 1);
    EXPECT_EQ(Differs("Jabra SPEAK 510", "Jabra SPEAK 810"), 1);
    EXPECT_EQ(Differs("jabra speak 510", "jabra speak 510"), 1);
    EXPECT_EQ(Differs("Trio 8800", "Trio8800"), 1);
    EXPECT_EQ(Differs(nullptr, "Revolabs"), 1);
    EXPECT_EQ(Differs("Revolabs", nullptr), 1);
    EXPECT_TRUE(IsKnownSpeakerphone("a Revolabs b"));
    EXPECT_FALSE(IsKnownSpeakerphone("Logitech MeetUp") || IsKnownSpeakerphone(nullptr));
    EXPECT_TRUE(IsCaptureBox("XI100DUSB-HDMI Video"));
    EXPECT_FALSE(IsCaptureBox("XI100DUSB") || IsCaptureBox(nullptr));
    uint32_t capacity = 0;
    EXPECT_STREQ(GetLegacyDeviceName(nullptr, &capacity), "Revolabs");
    EXPECT_EQ(capacity, 32u);
}

} // namespace
