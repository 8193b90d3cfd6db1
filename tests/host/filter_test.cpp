// The device filter sets: which documents add what, and which are refused. The checks by name.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"
#include "tests/host/failing_new.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

// The sets, each in order.
std::string Text(const KX::DeviceFilter& filter)
{
    std::ostringstream text;
    const auto append = [&](const char* name, const auto& set) {
        for (const auto& element : std::set(set.begin(), set.end()))
            text << name << element << ' ';
    };
    append("vendor:", filter.VendorWhitelist());
    append("white:", filter.VidPidWhitelist());
    append("black:", filter.VidPidBlacklist());
    append("name:", filter.NameBlacklist());
    return text.str();
}

// What a document leaves in the sets, after what became of it when it was not loaded.
std::string LoadedFrom(const std::string& document)
{
    KX::DeviceFilter filter;
    try {
        const std::string refused = filter.Load(document.c_str()) ? "" : "refused ";
        return refused + Text(filter);
    } catch (const std::exception&) {
        return "threw " + Text(filter);
    }
}

TEST(DeviceFilter, LoadsListsAndIgnoresConvertsOrRaisesAnErrorForTheRest)
{
    for (const char* empty : {"{}", "null", R"({ "HID": null })"})
        EXPECT_EQ(LoadedFrom(empty), "") << empty;
    for (const char* other : {"[]", R"("text")", R"({ "HID": [] })", R"({ "HID": 5 })"})
        EXPECT_EQ(LoadedFrom(other), "threw ") << other;
    EXPECT_EQ(LoadedFrom(std::string(100'000, '[')), "refused ");
    for (const auto& [members, loaded] : {
             std::pair{R"("WhitelistVendorId": 5, "BlacklistDeviceName": {})", ""},
             {R"("WhitelistVendorId": { "a": 1 })", "threw "},
             {R"("BlacklistDeviceName": { "a": "b" })", "threw "},
             {R"("WhitelistVendorId": [ 77, -1 ])", "threw vendor:77 "},
             {R"("WhitelistVendorId": [ 77, 4294967296 ])", "threw vendor:77 "},
             {R"("WhitelistVendorId": [ 3.7, true, null ])", "vendor:0 vendor:1 vendor:3 "},
             {R"("BlacklistDeviceName": [ 1.5, true, null ])", "name: name:1.5 name:true "},
             {R"("BlacklistDeviceName": [ "a", {} ])", "threw name:a "},
             // The vendor blacklist bounds both lists of pairs.
             {R"("WhitelistVidPid": [ 1 ], "BlacklistVidPid": 4)", ""},
             {R"("WhitelistVidPid": [ 1, 2 ], "BlacklistVendorId": [ "x" ])", "white:1 black:0 "},
             {R"("BlacklistVendorId": { "a": 1 }, "BlacklistVidPid": [ 4 ])", "white:0 black:4 "},
             {R"("BlacklistVendorId": [ 1 ], "BlacklistVidPid": "text")", "threw white:0 "},
         })
        EXPECT_EQ(LoadedFrom(std::string(R"({ "HID": {)") + members + "} } // comment"), loaded)
            << members;
}

TEST(DeviceFilter, DefaultsFillEmptyListsWholeOrNotAtAll)
{
    KX::DeviceFilter filter;
    const auto fill = [&] {
        try {
            filter.FillDefaults();
        } catch (const std::bad_alloc&) {
        }
    };
    forEachAllocation(fill, [&] { EXPECT_EQ(Text(filter), ""); });
    KX::DeviceFilter preset;
    EXPECT_TRUE(preset.Load(R"({ "HID": { "WhitelistVendorId": [ 1 ] } })"));
    preset.FillDefaults();
    EXPECT_EQ(Text(preset), "vendor:1 white:66063718 white:77152289 ");
}

TEST(LoadHidFilterConfig, AddsToTheProcessWideFilter)
{
    EXPECT_EQ(LoadHidFilterConfig(nullptr, 10), 0);
    EXPECT_EQ(LoadHidFilterConfig("{}", 1), 0);
    EXPECT_EQ(LoadHidFilterConfig("{", 1000), 0);
    const char* document = R"({ "HID": { "BlacklistDeviceName": [ "a name" ] } })";
    EXPECT_EQ(LoadHidFilterConfig(document, 2), 1) << "the length does not bound the text";
    EXPECT_TRUE(KX::DeviceFilter::Instance().NameBlacklist().contains("a name"));
}

TEST(NameChecks, GoByKnownPartsAndTheLeadingNumber)
{
    const auto differs = [](const char* first, const char* second) {
        uint8_t result = 7;
        IsSameConferenceDevice(first, second, &result);
        return result;
    };
    EXPECT_EQ(differs("2 Jabra SPEAK 510", "2- My Jabra SPEAK 510 USB"), 0);
    EXPECT_EQ(differs("2 Jabra SPEAK 510", "3 Jabra SPEAK 510"), 1);
    EXPECT_EQ(differs("Jabra SPEAK 510", "Jabra SPEAK 810"), 1);
    EXPECT_EQ(differs("jabra speak 510", "jabra speak 510"), 1);
    EXPECT_TRUE(differs(nullptr, "Revolabs") && differs("Revolabs", nullptr));
    EXPECT_TRUE(IsKnownSpeakerphone("a Revolabs b") && IsCaptureBox("XI100DUSB-HDMI Video"));
    EXPECT_FALSE(IsKnownSpeakerphone("Logitech MeetUp") || IsCaptureBox("XI100DUSB"));
    EXPECT_FALSE(IsKnownSpeakerphone(nullptr) || IsCaptureBox(nullptr));
    uint32_t capacity = 0;
    EXPECT_STREQ(GetLegacyDeviceName(nullptr, &capacity), "Revolabs");
    EXPECT_EQ(capacity, 32u);
}

} // namespace
