// Report descriptors: the controls of real devices, and the parser's rules on made-up ones.
#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyControls.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

#include <array>

using test::bytesFromHex;

namespace {

// The mask of the control `usage` of a headset. Empty if it has none.
KX::Bytes Input(const std::string& descriptor, uint32_t usage)
{
    KX::Root root;
    root.Parse(bytesFromHex(descriptor));
    KX::Bytes found;
    (void)root.FindInput(0x0B, 0x05, usage, found);
    return found;
}

// clang-format off
// Worked out by hand, not with this parser: each bit counted over all fields of its report, with
// HID's own rules for usages and pages.
//
// Off-hook, mute, ring and hold LED; mute, hook, line busy and flash button.
constexpr std::pair<const char*, std::array<const char*, 8>> kDevices[] = {
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
    for (const auto& [name, expected] : kDevices) {
        KX::Root root;
        if (std::string(name) == "built-in")
            root.Parse(KX::kBuiltInDescriptor);
        else
            root.Parse(test::deviceDescriptor(name));
        const auto found = KX::TelephonyControls::FromDescriptor(root);
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

// Report ids, sizes and nesting, and what stands twice or stays set, are in the fuzzer's seeds.
TEST(Descriptor, FollowsItsRules)
{
    for (const auto& [what, descriptor, usage, input] : {
             std::tuple{"with too few usages none counts", ONE_BIT "9502 0920 8102", 0x20u, ""},
             {"of too many usages the last ones count", ONE_BIT "0921 0920 8102", 0x20, "0001"},
             {"features use up their usages", ONE_BIT "0920 b102 8102", 0x20, ""},
             {"a collection uses up its usage", ONE_BIT "0920 a102 8102 c0 c0", 0x20, ""},
             {"13 bits need 2 bytes", ONE_BIT "9503 0920 0921 092f 8102 950a 8101", 0x2F, "000400"},
             {"one bit each, whatever the size", ONE_BIT "7504 9502 0920 0921 8102", 0x21, "0002"},
             {"the first field with the usage counts", ONE_BIT "0920 8102 0920 8102", 0x20, "0001"},
             {"size and count outside collections", "050b 0905 7501 9501 a101 0920 8102", 0x20, ""},
             {"an item cut off at the end is dropped", ONE_BIT "0920 81", 0x20, ""},
             {"no report has a negative size", ONE_BIT "0920 8102 97ffffffff 7508 8102", 0x20, ""},
         })
        EXPECT_EQ(Input(descriptor, usage), bytesFromHex(input)) << what;
}

TEST(Descriptor, AReportLargerThanUsbCanDescribeIsNotFound)
{
    const std::string begin = ONE_BIT "0920 8102";
    EXPECT_EQ(Input(begin + "97fdff0000 7508 8102 c0", 0x20).size(), 65535u);
    EXPECT_EQ(Input(begin + "97feff0000 7508 8102 c0", 0x20).size(), 0u);
    std::string many = begin + "77ffffff7f 97ffffff7f";
    for (int i = 0; i < 30'000; ++i)
        many += "8102"; // their sum does not fit 64 bits
    EXPECT_TRUE(Input(many, 0x20).empty());
}

// The second collection starts with the page of its node again.
TEST(Descriptor, DumpsByteForByte)
{
    const KX::Bytes bytes
        = bytesFromHex("050b 0904 a101 0508 c0 0905 a101 8503 7501 9502 0920 0921 8102 c0");
    const std::string expected
        = "{\n"
          "0x05, 0x0b, 0x09, 0x04, 0xa1, 0x01, 0x05, 0x08, 0xc0, 0x09, 0x05, 0xa1, "
          "0x01, 0x85, 0x03, 0x75, \n0x01, 0x95, 0x02, 0x09, 0x20, 0x09, 0x21, 0x81, 0x02, 0xc0}\n"
          "----------------Root(1)--------------:\nUsagePage(04)(4) 0b:\n"
          "\tUsage(08) 04:\n\tCollection(1):\n\t\tReportID:0\n\t\tInputs:\n\t\tOutputs:\n"
          "\tUsage(08) 05:\n\tCollection(1):\n\t\tReportID:3\n\t\tInputs:\n"
          "\t\t\treport    id:\t3\n\t\t\treport  size:\t1\n\t\t\treport count:\t2\n"
          "\t\t\tdata    type:\ti\n\t\t\tusage   page:\t11\n\t\t\tusage: 0x20 0x21 \n\n"
          "\t\tOutputs:\n\n";
    KX::Root root;
    root.Parse(bytes);
    EXPECT_EQ(KX::DescriptorText(root, bytes), expected);
}

} // namespace
