// The control map: what the stack uses of a device, and the reason for each control that it lacks.
#include "tests/support/device_file.h"
#include "tools/ctl/explain/control_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using test::bytesFromHex;

ctl::ControlMap mapOf(const std::vector<uint8_t>& descriptor)
{
    static const report::UsageNames names = report::UsageNames::load();
    return {descriptor, report::readLayout(descriptor), names};
}

// The report in hexadecimal, or the reason and further reasons: "other-collection+usage-range".
// Notes follow in brackets.
std::string summary(const ctl::ControlEntry& entry)
{
    EXPECT_NE(entry.report.has_value(), entry.reason.has_value());
    std::string text = entry.report ? report::toHex(*entry.report, "") : entry.reason->word;
    for (const ctl::Remark& further : entry.furtherReasons)
        text += std::string("+") + further.word;
    for (const ctl::Remark& note : entry.notes)
        text += std::string(" [") + note.word + "]";
    return text;
}

// clang-format off
// Worked out by hand from the bytes of the files, not with any program: Hook Switch, Phone Mute,
// Line Busy Tone, Flash; Off-Hook, Mute, Ring and Hold LED.
//
// The two speakerphones whose inputs are constant fields flag them 0x23 and 0x07.
#define C " [constant-field]"
constexpr std::pair<const char*, std::array<const char*, 8>> kDevices[] = {
    {"046d-0944", {"0802", "0801", "absent", "absent", "absent", "no-off-hook-led", "absent", "absent"}},
    {"046d-0ac4", {"absent", "absent", "absent", "absent", "absent", "absent", "absent", "absent"}},
    {"047f-02e6", {"2001", "2002", "absent", "2004", "2401", "2301", "2101", "2501"}},
    {"047f-c056", {"0802", "0801", "absent", "0804", "1701", "0901", "1801", "2001"}},
    {"095d-9201", {"other-collection", "other-collection", "absent", "other-collection", "other-collection", "absent", "absent", "absent"}},
    {"0b0e-0307", {"020100", "020400", "020200", "020800", "020100", "020200", "020400", "020800"}},
    {"0b0e-2456", {"020100", "020400", "020200", "020800", "020100", "020200", "020400", "020800"}},
    {"1395-0082", {"0802", "0801", "absent", "0808", "0902", "0901", "0904", "0920"}},
    {"1395-009c", {"0201", "0208", "absent", "0202", "0301", "0308", "0304", "0320"}},
    {"1532-0560", {"absent", "absent", "absent", "absent", "absent", "absent", "absent", "absent"}},
    {"291a-3301", {"020100" C, "020400" C, "020200" C, "020800" C, "020100", "020200", "020400", "020800"}},
    {"413c-8223", {"0501", "0502", "0510", "0508", "0501", "0502", "0504", "0508"}},
    {"6993-b02b", {"020100", "020400", "020200", "020800", "020100", "020200", "020400", "020800"}},
    {"speakerphone", {"030100" C, "030800" C, "030200" C, "031000" C, "030100", "030400", "030800", "031000"}},
    {"no-report-ids", {"0100", "0400", "0200", "0800", "000100", "000200", "000400", "000800"}},
    {"webcam", {"0802", "0801", "absent", "absent", "absent", "no-off-hook-led", "absent", "absent"}},
    {"no-telephony", {"absent", "absent", "absent", "absent", "absent", "absent", "absent", "absent"}},
};
#undef C
// clang-format on

TEST(ControlMap, IsThatOfTheDevices)
{
    for (const auto& [name, expected] : kDevices) {
        const ctl::ControlMap map = mapOf(test::deviceDescriptor(name));
        for (const ctl::Control& control : ctl::kControls)
            EXPECT_EQ(summary(map[control.id]), expected[static_cast<size_t>(control.id)])
                << name << ' ' << control.key;
    }
    for (const std::string& name : test::deviceNames())
        EXPECT_NE(std::ranges::find(kDevices, name, [](const auto& row) { return row.first; }),
            std::end(kDevices))
            << name << " has no row";
}

// The beginning of a Headset collection with values of one bit.
#define HEADSET "050b 0905 a101 1500 2501 7501 9501 "

using enum ctl::ControlId;

struct ReasonCase {
    const char* reasons;
    ctl::ControlId control;
    const char* descriptor;
    const char* repaired; // the first reason's repair
    const char* then;     // what the map has for the control after it
};

// clang-format off
TEST(ControlMap, GivesTheReasonWhoseRepairHelps)
{
    for (const auto& [reasons, control, descriptor, repaired, then] : {
             ReasonCase{"absent", kHookSwitch, HEADSET "0921 8102", HEADSET "0921 8102 0920 8102", "02"},
             {"delimiter-alternative", kFlash, HEADSET "a901 0920 0921 092f a900 8102", HEADSET "0921 8102", "01"},
             {"delimiter-alternative", kFlash, HEADSET "a901 0920 0b21000b00 a900 8102", HEADSET "0921 8102", "01"},
             {"feature-report", kHookSwitch, HEADSET "0920 b102", HEADSET "0920 8102", "01"},
             {"wrong-direction", kHookSwitch, HEADSET "0920 9102", HEADSET "0920 8102", "01"},
             {"wrong-direction", kRing, HEADSET "0508 0918 8102", HEADSET "0508 0918 9102", "0001"},
             {"other-collection", kHookSwitch, "050b 0901 a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"other-collection", kHookSwitch, "050b 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"other-collection+usage-range", kHookSwitch, "050b 0901 a101 7501 9501 1920 2920 8102", HEADSET "1920 2920 8102", "usage-range"},
             {"nested-headset", kHookSwitch, "050b 0901 a101 0905 a102 7501 9501 0920 8102 c0 c0", HEADSET "0920 8102", "01"},
             {"usage-range", kHookSwitch, "a100" HEADSET "1920 2920 8102", "a100" HEADSET "0920 8102", "01"},
             {"page-value", kHookSwitch, "070b000100 0905 a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"extended-headset", kHookSwitch, "050b 0b05000b00 a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"later-telephony-page", kHookSwitch, "050b 0901 a101 c0 050c 0901 a101 c0" HEADSET "0920 8102", "050b 0901 a101 c0 0905 a101 7501 9501 0920 8102 c0 050c 0901 a101 c0", "01"},
             {"later-headset", kHookSwitch, HEADSET "0921 8102 c0 0905 a101 0920 8102", HEADSET "0921 8102 0920 8102", "02"},
             {"usage-apart", kHookSwitch, "0905 050b a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"usage-apart", kHookSwitch, "050b 0905 0901 a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"usage-apart", kHookSwitch, "050b 1905 2905 a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"page-elsewhere", kHookSwitch, "050c 0901 a101 050b c0 0905 a101 7501 9501 0920 8102", "050c 0901 a101 c0" HEADSET "0920 8102", "01"},
             {"page-elsewhere", kHookSwitch, "050b c0 0905 a101 7501 9501 0920 8102", HEADSET "0920 8102", "01"},
             {"fewer-usages+constant-field", kHookSwitch, HEADSET "9508 0920 8101", HEADSET "0920 8102 9507 8101", "01"},
             {"array-field", kHookSwitch, HEADSET "7502 0920 0921 8100", HEADSET "9502 0920 0921 8102", "01"},
             {"array-field+usage-range", kHookSwitch, HEADSET "7504 1920 292f 8100", HEADSET "9510 1920 292f 8102", "usage-range"},
             {"extended-usage", kHookSwitch, HEADSET "0b20000b00 8102", HEADSET "0920 8102", "01"},
             {"usage-range", kFlash, HEADSET "9502 1920 2921 8102", HEADSET "9502 0920 0921 8102", "02"},
             {"usage-range", kHookSwitch, "050b 0901 a101 7501 9501 8501 1920 2920 8102 c0 0905 a101 8502 1920 2920 8102", "050b 0901 a101 7501 9501 8501 1920 2920 8102 c0 0905 a101 8502 0920 8102", "0201 [also-elsewhere]"},
             {"more-usages", kHookSwitch, HEADSET "0920 0921 8102", HEADSET "9502 0920 0921 8102", "01"},
             {"more-usages", kHookSwitch, HEADSET "a901 0920 0921 a900 8102", HEADSET "0920 8102", "01"},
             {"fewer-usages", kHookSwitch, HEADSET "9502 0920 8102", HEADSET "0920 8102 8101", "01"},
             {"count-elsewhere", kHookSwitch, "050b 7501 9501 0905 a101 0920 8102", HEADSET "0920 8102", "01"},
             {"count-elsewhere", kHookSwitch, HEADSET "a4 9508 b4 0920 8102", HEADSET "0920 8102", "01"},
             {"report-too-long", kHookSwitch, HEADSET "0920 8102 97feff0000 7508 8101", HEADSET "0920 8102 9507 8101", "01"},
             {"report-too-long", kHookSwitch, HEADSET "0920 8102 0b20000b00 94 8102", HEADSET "0920 8102", "01"},
             {"long-item", kHookSwitch, HEADSET "fe0100c0 0920 8102", HEADSET "0920 8102", "01"},
             {"no-off-hook-led", kMute, HEADSET "0508 0909 9102", HEADSET "9502 0508 0909 0917 9102", "0001"},
             {"usage-range+no-off-hook-led", kMute, HEADSET "0508 1909 2909 9102", HEADSET "0508 0909 9102", "no-off-hook-led"},
         }) {
        EXPECT_EQ(summary(mapOf(bytesFromHex(descriptor))[control]), reasons) << descriptor;
        EXPECT_EQ(summary(mapOf(bytesFromHex(repaired))[control]), then) << repaired;
    }
}

TEST(ControlMap, NotesWhereTheStackUsesAnotherBit)
{
    for (const auto& [expected, control, descriptor] : {
             std::tuple{"01 [several-bits]", kHookSwitch, HEADSET "7504 9502 0920 0921 8102"},
             {"02 [other-bit]", kFlash, HEADSET "7504 9502 0920 0921 8102"},
             {"0101 [other-bit] [other-length]", kHookSwitch, "050c 0901 a101 8501 7501 9508 8101 c0 050b 0905 a101 8501 9501 0920 8102"},
             {"0101 [other-length]", kHookSwitch, HEADSET "8501 0920 8102 9507 8101 8501 9508 8101"},
             {"01 [other-length]", kHookSwitch, HEADSET "0920 8102 c0 050c 0901 a101 8501 09e9 8102"},
             {"0001 [other-length]", kRing, HEADSET "0508 0918 9102 c0 050c 0901 a101 8501 09e9 8102"},
             {"01 [other-report]", kHookSwitch, "050c 0901 a101 8503 7501 9508 8101 c0 050b 0905 a101 9501 0920 8102"},
             {"01 [other-usage]", kHookSwitch, HEADSET "050c 0920 8102"},
             {"01 [other-usage]", kFlash, HEADSET "0920 0921 8102"},
             {"01 [array-field]", kFlash, HEADSET "7502 0920 0921 8100"},
             {"0101 [also-elsewhere]", kHookSwitch, HEADSET "8501 0920 8102 c0 0901 a101 8502 0920 8102"},
             {"01 [other-collection]", kHookSwitch, "050b 0901 a101 0508 c0 0905 a101 7501 9501 050b 0920 8102"},
             {"00 [no-bit]", kHookSwitch, "050b 0905 a101 9501 0920 8102"},
         })
        EXPECT_EQ(summary(mapOf(bytesFromHex(descriptor))[control]), expected) << descriptor;
    EXPECT_EQ(summary(mapOf(bytesFromHex(HEADSET "0920 8102 9507 8101 7508 953f 8101"))[kFlash]), "absent");
    const auto tooLong = mapOf(bytesFromHex(HEADSET "0920 8102 9507 8101 7508 9540 8101"));
    EXPECT_EQ(tooLong[kHookSwitch].notes.at(0).word, std::string("long-report"));
}

// clang-format on

// The stack cannot read a longer one from a device.
TEST(ControlMap, HasNoControlsOfALongDescriptor)
{
    auto descriptor = bytesFromHex(HEADSET "0920 8102");
    descriptor.resize(4096, 0xc0);
    EXPECT_EQ(summary(mapOf(descriptor)[kHookSwitch]), "01");
    descriptor.push_back(0xc0);
    for (const ctl::Control& control : ctl::kControls)
        EXPECT_EQ(summary(mapOf(descriptor)[control.id]), "descriptor-too-long");
    EXPECT_FALSE(mapOf(descriptor).stackControls().hasHookSwitch);
}

// Random descriptors of the items that matter.
TEST(ControlMap, KnowsWhereTheStackLooks)
{
    constexpr const char* kParts[] = {"050b", "0508", "04", "0905", "0901", "a101", "a102", "c0",
        "7501", "7504", "9501", "9502", "9503", "8501", "8502", "0920", "0921", "0909", "0917",
        "0b20000b00", "1920 2921", "08", "8102", "8101", "8100", "9102", "b102", "a4", "b4",
        "fe0100c0", "0920 8102", "0921 8102", "0508 0909 9102", "050b 092f 8106"};
    std::mt19937 random(20);
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string text = round % 2 ? HEADSET : "050b ";
        for (size_t i = random() % 30; i > 0; --i)
            text += kParts[random() % std::size(kParts)];
        const auto descriptor = bytesFromHex(text);
        const ctl::ControlMap map = mapOf(descriptor);
        for (const ctl::Control& control : ctl::kControls) {
            const std::string result = summary(map[control.id]);
            EXPECT_EQ(result.find("report-too-long"), std::string::npos) << text;
            found += map[control.id].report.has_value();
        }
    }
    EXPECT_GT(found, 5'000) << "they have to be worth reading";
    for (const std::string& name : test::deviceNames()) {
        for (int round = 0; round < 100; ++round) {
            auto bytes = test::deviceDescriptor(name);
            for (int i = 0; i < 4; ++i)
                bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
            const ctl::ControlMap map = mapOf(bytes);
            for (const ctl::Control& control : ctl::kControls)
                EXPECT_NE(summary(map[control.id]), "");
        }
    }
}

} // namespace
