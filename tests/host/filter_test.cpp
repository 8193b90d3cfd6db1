// The device filter sets: which documents add what, and which are refused.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"
#include "tests/host/failing_new.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Ids = std::unordered_set<uint32_t>;
using Names = std::unordered_set<std::string>;

// Loads a document whose "HID" has these members.
bool LoadMembers(KX::DeviceFilter& filter, const std::string& members)
{
    return filter.Load((R"({ "HID": {)" + members + "} } // comment").c_str());
}

TEST(DeviceFilter, ListsLoadedBeforeTheDefaultsReplaceThemAndThoseLoadedAfterExtendThem)
{
    KX::DeviceFilter filter;
    EXPECT_TRUE(LoadMembers(filter, R"("WhitelistVendorId": [ 4660, 4660 ])"));
    filter.FillDefaults();
    EXPECT_EQ(filter.VendorWhitelist(), (Ids{0x1234}));
    EXPECT_EQ(filter.VidPidWhitelist(), (Ids{66063718, 77152289}));
    EXPECT_TRUE(LoadMembers(filter, R"("WhitelistVendorId": [ 1 ], "BlacklistDeviceName": ["a"])"));
    filter.FillDefaults();
    EXPECT_EQ(filter.VendorWhitelist(), (Ids{0x1234, 1}));
    EXPECT_EQ(filter.NameBlacklist(), Names{"a"});
}

TEST(DeviceFilter, DefaultsAreFilledInWholeOrNotAtAll)
{
    KX::DeviceFilter filter;
    forEachAllocation(
        [&] {
            try {
                filter.FillDefaults();
            } catch (const std::bad_alloc&) {
            }
        },
        [&] { EXPECT_TRUE(filter.VendorWhitelist().empty() && filter.VidPidWhitelist().empty()); });
    EXPECT_EQ(filter.VendorWhitelist().size(), 15u);
    EXPECT_EQ(filter.VidPidWhitelist().size(), 2u);
}

TEST(DeviceFilter, TheVendorBlacklistBoundsBothListsOfPairs)
{
    KX::DeviceFilter filter;
    const std::string pairs = R"("WhitelistVidPid": [ 1, 2, 3 ], "BlacklistVidPid": [ 4 ])";
    EXPECT_TRUE(LoadMembers(filter, pairs));
    EXPECT_TRUE(filter.VidPidWhitelist().empty() && filter.VidPidBlacklist().empty());
    EXPECT_TRUE(LoadMembers(filter, pairs + R"(, "BlacklistVendorId": [ "never", "read" ])"));
    EXPECT_EQ(filter.VidPidWhitelist(), (Ids{1, 2}));
    EXPECT_EQ(filter.VidPidBlacklist(), (Ids{4, 0}));
}

// The sets as text, "threw" in front of it when JsonCpp's error was raised.
std::string LoadedFrom(const std::string& document)
{
    KX::DeviceFilter filter;
    std::ostringstream text;
    try {
        EXPECT_TRUE(filter.Load(document.c_str()));
    } catch (const std::exception&) {
        text << "threw ";
    }
    const auto append = [&](const char* set, const auto& elements) {
        for (const auto& element : elements)
            text << set << element << ' ';
    };
    append("vendor:", filter.VendorWhitelist());
    append("white:", filter.VidPidWhitelist());
    append("black:", filter.VidPidBlacklist());
    append("name:", filter.NameBlacklist());
    return text.str();
}

TEST(DeviceFilter, OtherTypesThanExpectedAreIgnoredConvertedOrRaiseAnError)
{
    for (const auto& [members, loaded] : {
             // Something else where a list is meant.
             std::pair{R"("WhitelistVendorId": null)", ""},
             {R"("WhitelistVendorId": 5)", ""},
             {R"("WhitelistVendorId": "text", "BlacklistDeviceName": "text")", ""},
             {R"("WhitelistVendorId": {}, "BlacklistDeviceName": {})", ""},
             {R"("WhitelistVendorId": { "a": 1 })", "threw "},
             {R"("BlacklistDeviceName": { "a": "b" })", "threw "},
             {R"("BlacklistVendorId": 5, "WhitelistVidPid": [ 1 ])", ""},
             {R"("BlacklistVendorId": { "a": 1 }, "WhitelistVidPid": [ 1 ])", "white:1 black:0 "},
             {R"("BlacklistVendorId": [ 1 ], "WhitelistVidPid": null)", "white:0 black:0 "},
             {R"("BlacklistVendorId": [ 1 ], "WhitelistVidPid": 5)", "threw "},
             {R"("BlacklistVendorId": [ 1 ], "BlacklistVidPid": "text")", "threw white:0 "},
             {R"("BlacklistVendorId": [], "WhitelistVidPid": 5)", ""},
             // Something else than a number or a text as an element.
             {R"("WhitelistVendorId": [ 77, "5", 88 ])", "threw vendor:77 "},
             {R"("WhitelistVendorId": [ 77, -1 ])", "threw vendor:77 "},
             {R"("WhitelistVendorId": [ 77, 4294967296 ])", "threw vendor:77 "},
             {R"("WhitelistVendorId": [ [] ])", "threw "},
             {R"("WhitelistVendorId": [ 3.7 ])", "vendor:3 "},
             {R"("WhitelistVendorId": [ true ])", "vendor:1 "},
             {R"("WhitelistVendorId": [ null ])", "vendor:0 "},
             {R"("BlacklistDeviceName": [ {} ])", "threw "},
             {R"("BlacklistDeviceName": [ 1.5 ])", "name:1.5 "},
             {R"("BlacklistDeviceName": [ true ])", "name:true "},
             {R"("BlacklistDeviceName": [ null ])", "name: "},
         })
        EXPECT_EQ(LoadedFrom(std::string(R"({ "HID": {)") + members + "} }"), loaded) << members;

    for (const char* empty : {"{}", "null", R"({ "HID": null })"})
        EXPECT_EQ(LoadedFrom(empty), "") << empty;
    for (const char* other :
        {"[]", "12", R"("text")", R"({ "HID": [] })", R"({ "HID": 5 })", R"({ "HID": "text" })"})
        EXPECT_EQ(LoadedFrom(other), "threw ") << other;
}

TEST(DeviceFilter, TextsThatDoNotParseChangeNothing)
{
    KX::DeviceFilter filter;
    for (const std::string& text : {std::string(R"({ "HID": { "WhitelistVendorId": [ 1 ] } )"),
             std::string(100'000, '['), std::string("\xff\xfe{}"), std::string()})
        EXPECT_FALSE(filter.Load(text.c_str())) << text.substr(0, 40);
    EXPECT_TRUE(filter.VendorWhitelist().empty());
}

TEST(LoadHidFilterConfig, AddsToTheProcessWideFilter)
{
    EXPECT_EQ(LoadHidFilterConfig(nullptr, 10), 0);
    EXPECT_EQ(LoadHidFilterConfig("{}", 1), 0);
    EXPECT_EQ(LoadHidFilterConfig("{}", 2), 1);
    EXPECT_EQ(LoadHidFilterConfig("{", 1000), 0);
    const char* document = R"({ "HID": { "BlacklistDeviceName": [ "a name" ] } })";
    EXPECT_EQ(LoadHidFilterConfig(document, 2), 1) << "the length does not bound the text";
    EXPECT_TRUE(KX::DeviceFilter::Instance().NameBlacklist().contains("a name"));
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
