// Report descriptors: the controls of real devices, and the parser's rules on made-up ones.
#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyControls.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

#include <sstream>

using test::bytesFromHex;

namespace {

std::unique_ptr<KX::Root> Parsed(const KX::Bytes& descriptor)
{
    auto root = std::make_unique<KX::Root>();
    root->Parse(descriptor);
    return root;
}

// The mask of the control `usage` of a headset. Empty if it has none.
KX::Bytes Input(const std::string& descriptor, uint32_t usage)
{
    KX::Bytes found;
    const bool there = Parsed(bytesFromHex(descriptor))->FindInput(0x0B, 0x05, usage, found);
    return there ? found : KX::Bytes{};
}

struct Device {
    const char* name;
    // In hexadecimal: off-hook, mute, ring and hold LED; mute, hook, line busy and flash button.
    const char* controls[8];
};

// clang-format off
// Worked out by hand, not with this parser: each bit counted over all fields of its report, with
// HID's own rules for usages and pages.
constexpr Device kDevices[] = {
    {"046d-0944", {"", "08 01", "", "", "08 01", "08 02", "", ""}},
    {"046d-0ac4", {"", "", "", "", "", "", "", ""}},
    {"047f-02e6", {"24 01", "23 01", "21 01", "25 01", "20 02", "20 01", "", "20 04"}},
    {"047f-c056", {"17 01", "09 01", "18 01", "20 01", "08 01", "08 02", "", "08 04"}},
    {"095d-9201", {"", "", "", "", "", "", "", ""}},
    {"0b0e-0307", {"020100", "020200", "020400", "020800", "020400", "020100", "020200", "020800"}},
    {"0b0e-2456", {"020100", "020200", "020400", "020800", "020400", "020100", "020200", "020800"}},
    {"1395-0082", {"09 02", "09 01", "09 04", "09 20", "08 01", "08 02", "", "08 08"}},
    {"1395-009c", {"03 01", "03 08", "03 04", "03 20", "02 08", "02 01", "", "02 02"}},
    {"1532-0560", {"", "", "", "", "", "", "", ""}},
    {"291a-3301", {"020100", "020200", "020400", "020800", "020400", "020100", "020200", "020800"}},
    {"413c-8223", {"05 01", "05 02", "05 04", "05 08", "05 02", "05 01", "05 10", "05 08"}},
    {"6993-b02b", {"020100", "020200", "020400", "020800", "020400", "020100", "020200", "020800"}},
    {"built-in", {"030100", "030400", "030800", "031000", "030800", "030100", "030200", "031000"}},
};
// clang-format on

TEST(Descriptor, FindsTheControlsOfRealDevices)
{
    const auto& builtIn = KX::kBuiltInDescriptor;
    for (const auto& [name, expected] : kDevices) {
        const KX::Bytes descriptor = std::string(name) == "built-in"
            ? KX::Bytes(builtIn.begin(), builtIn.end())
            : test::deviceDescriptor(name);
        const auto found = KX::TelephonyControls::FromDescriptor(*Parsed(descriptor));
        const KX::Bytes controls[] = {found.offHookLedReport, found.muteLedReport,
            found.ringLedReport, found.holdLedReport, found.phoneMuteMask, found.hookSwitchMask,
            found.lineBusyMask, found.flashMask};
        for (size_t i = 0; i < std::size(controls); ++i)
            EXPECT_EQ(controls[i], bytesFromHex(expected[i])) << name << ", control " << i;
    }
    EXPECT_EQ(std::size(kDevices), test::deviceNames().size() + 1) << "a device file has no row";
}

// The start of a headset's collection. Each usage gets one bit unless more items follow.
#define ONE_BIT "050b 0905 a101 7501 9501 "

struct Rule {
    const char* what;
    const char* descriptor;
    uint32_t usage;
    const char* input;
};

constexpr Rule kRules[] = {
    {"empty", "", 0x20, ""},
    {"13 bits make a report of 2 bytes", ONE_BIT "9503 0920 0921 092f 8102 950a 8101 c0", 0x2F,
        "00 04 00"},
    {"the first field with the usage counts", ONE_BIT "0920 8102 0920 8102 c0", 0x20, "00 01"},
    {"one bit a usage, whatever the size", ONE_BIT "7504 9502 0920 0921 8102 c0", 0x21, "00 02"},
    {"of too many usages the last ones count", ONE_BIT "0921 0920 8102 c0", 0x20, "00 01"},
    {"of too many usages the first ones do not count", ONE_BIT "0921 0920 8102 c0", 0x21, ""},
    {"with too few usages none counts", ONE_BIT "9502 0920 8102 c0", 0x20, ""},
    {"features are never found", ONE_BIT "0920 b102 c0", 0x20, ""},
    {"features use up their usages", ONE_BIT "0920 b102 8102 c0", 0x20, ""},
    {"fields of nested collections belong to the outer one",
        ONE_BIT "a102 0920 8102 c0 0921 8102 c0", 0x21, "00 02"},
    {"the usage must be right before its collection", "050b 0905 0901 a101 7501 9501 0920 8102 c0",
        0x20, ""},
    {"only the first of two equal usages is looked at",
        "050b 0905 0905 a101 7501 9501 0920 8102 c0", 0x20, ""},
    {"only the first of two equal pages is looked at",
        "050b 0900 050b 0905 a101 7501 9501 0920 8102 c0", 0x20, ""},
    {"a new report id opens a group of its own", ONE_BIT "9508 8501 8101 8502 9501 0920 8102 c0",
        0x20, "02 01"},
    {"the group that began without a report id gets the first one",
        ONE_BIT "0921 8102 8507 0920 8102 c0", 0x21, "07 01"},
    {"an item without data repeats the last value", ONE_BIT "0920 08 8102 c0", 0x20, "00 01"},
    {"data of four bytes", ONE_BIT "0b20000000 8102 c0", 0x20, "00 01"},
    {"all four bytes count", ONE_BIT "0b20000008 8102 c0", 0x20, ""},
    {"size and count stay set in the next collection",
        "050b 0904 a101 7501 9501 8102 c0 0905 a101 0920 8102 c0", 0x20, "00 01"},
    {"size and count between collections are skipped", "050b 0905 7501 9501 a101 0920 8102 c0",
        0x20, ""},
    {"an item cut off at the end is dropped", ONE_BIT "0920 81", 0x20, ""},
    {"collections may stay open at the end", ONE_BIT "0920 8102", 0x20, "00 01"},
};

TEST(Descriptor, FollowsItsRules)
{
    for (const auto& rule : kRules)
        EXPECT_EQ(Input(rule.descriptor, rule.usage), bytesFromHex(rule.input)) << rule.what;
}

TEST(Descriptor, AReportLargerThanUsbCanDescribeIsNotFound)
{
    const std::string begin = ONE_BIT "0920 8102";
    const auto size
        = [&](const std::string& field) { return Input(begin + field + "8102 c0", 0x20).size(); };
    EXPECT_EQ(size("97fdff0000 7508"), 65535u);
    EXPECT_EQ(size("97feff0000 7508"), 0u);
    for (const char* count : {"97ffffff7f", "97ffffffff", "9700000080"})
        for (const char* bits : {"77ffffff7f", "77ffffffff", "7700000080"})
            EXPECT_LE(size(std::string(count).append(bits)), 65535u) << count << bits;

    std::string many = begin + "77ffffff7f 97ffffff7f";
    for (int i = 0; i < 30'000; ++i)
        many += "8102"; // their sum does not fit 64 bits
    EXPECT_TRUE(Input(many, 0x20).empty());
}

TEST(Descriptor, MasksHaveNoByteForAMissingReportIdAndMuteNeedsOffHook)
{
    KX::Root root;
    root.Parse(bytesFromHex(ONE_BIT "9508 0920 0921 092f 0997 0901 0902 0903 0904 8102 "
                                    "9501 0508 0909 9102 c0"));
    const auto controls = KX::TelephonyControls::FromDescriptor(root);
    EXPECT_EQ(controls.hookSwitchMask, bytesFromHex("01"));
    EXPECT_EQ(controls.phoneMuteMask, bytesFromHex("04"));
    EXPECT_EQ(controls.muteLedReport, bytesFromHex("00 01"));
    EXPECT_FALSE(controls.hasMuteLed);
}

TEST(Descriptor, FieldsStartWithThePageOfTheirNodeWhateverAnEarlierCollectionSet)
{
    const auto root = Parsed(bytesFromHex(
        "050b 0904 a101 7501 9501 0508 0917 9102 c0 0905 a101 0920 8102 0508 0917 9102 c0"));
    std::string pages;
    std::istringstream dump(root->Dump(""));
    for (std::string line; std::getline(dump, line);)
        if (const auto at = line.find("page:\t"); at != std::string::npos)
            pages += line.substr(at + 6) + " ";
    EXPECT_EQ(pages, "8 11 8 ");
}

TEST(Descriptor, DumpsByteForByte)
{
    const KX::Bytes bytes = bytesFromHex("050b 0905 a101 8503 7501 9502 0920 0921 8102 c0");
    const std::string expected = "{\n"
                                 "0x05, 0x0b, 0x09, 0x05, 0xa1, 0x01, 0x85, 0x03, "
                                 "0x75, 0x01, 0x95, 0x02, 0x09, 0x20, 0x09, 0x21, \n"
                                 "0x81, 0x02, 0xc0}\n"
                                 "----------------Root(1)--------------:\n"
                                 "UsagePage(04)(2) 0b:\n"
                                 "\tUsage(08) 05:\n"
                                 "\tCollection(1):\n"
                                 "\t\tReportID:3\n"
                                 "\t\tInputs:\n"
                                 "\t\t\treport    id:\t3\n"
                                 "\t\t\treport  size:\t1\n"
                                 "\t\t\treport count:\t2\n"
                                 "\t\t\tdata    type:\ti\n"
                                 "\t\t\tusage   page:\t11\n"
                                 "\t\t\tusage: 0x20 0x21 \n"
                                 "\n"
                                 "\t\tOutputs:\n"
                                 "\n";
    EXPECT_EQ(KX::DescriptorText(*Parsed(bytes), bytes), expected);
}

} // namespace
