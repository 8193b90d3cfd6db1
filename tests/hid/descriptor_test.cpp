// Report descriptors: what real devices' controls come out as, and that any bytes come out.
#include "BuiltInDescriptor.h"
#include "DescriptorDump.h"
#include "Root.h"
#include "TelephonyControls.h"
#include "device_file.h"

#include <gtest/gtest.h>

#include <random>

using test::bytesFromHex;

namespace {

constexpr uint32_t kTelephony = 0x0B;
constexpr uint32_t kHeadset = 0x05;

KX::Bytes Output(const KX::Bytes& descriptor, uint32_t usage)
{
    KX::Root root;
    root.Parse(descriptor);
    KX::Bytes found;
    return root.FindOutput(kTelephony, kHeadset, usage, found) ? found : KX::Bytes{};
}

KX::Bytes Input(const KX::Bytes& descriptor, uint32_t usage)
{
    KX::Root root;
    root.Parse(descriptor);
    KX::Bytes found;
    return root.FindInput(kTelephony, kHeadset, usage, found) ? found : KX::Bytes{};
}

struct DeviceControls {
    const char* device;
    // Each as hexadecimal bytes; empty for a control that is not there.
    const char *offHook, *mute, *ring, *hold;              // output
    const char *phoneMute, *hookSwitch, *lineBusy, *flash; // input
};

// Worked out apart from this parser: each bit counted over all fields of its report, with HID's
// own rules for usages and pages.
constexpr DeviceControls kDevices[] = {
    {"046d-0944", "", "08 01", "", "", "08 01", "08 02", "", ""},
    {"046d-0ac4", "", "", "", "", "", "", "", ""},
    {"047f-02e6", "24 01", "23 01", "21 01", "25 01", "20 02", "20 01", "", "20 04"},
    {"047f-c056", "17 01", "09 01", "18 01", "20 01", "08 01", "08 02", "", "08 04"},
    {"095d-9201", "", "", "", "", "", "", "", ""},
    {"0b0e-0307", "02 01 00", "02 02 00", "02 04 00", "02 08 00", "02 04 00", "02 01 00",
        "02 02 00", "02 08 00"},
    {"0b0e-2456", "02 01 00", "02 02 00", "02 04 00", "02 08 00", "02 04 00", "02 01 00",
        "02 02 00", "02 08 00"},
    {"1395-0082", "09 02", "09 01", "09 04", "09 20", "08 01", "08 02", "", "08 08"},
    {"1395-009c", "03 01", "03 08", "03 04", "03 20", "02 08", "02 01", "", "02 02"},
    {"1532-0560", "", "", "", "", "", "", "", ""},
    {"291a-3301", "02 01 00", "02 02 00", "02 04 00", "02 08 00", "02 04 00", "02 01 00",
        "02 02 00", "02 08 00"},
    {"413c-8223", "05 01", "05 02", "05 04", "05 08", "05 02", "05 01", "05 10", "05 08"},
    {"6993-b02b", "02 01 00", "02 02 00", "02 04 00", "02 08 00", "02 04 00", "02 01 00",
        "02 02 00", "02 08 00"},
    {"built-in", "03 01 00", "03 04 00", "03 08 00", "03 10 00", "03 08 00", "03 01 00", "03 02 00",
        "03 10 00"},
};

KX::Bytes DescriptorOf(const std::string& device)
{
    return device == "built-in"
        ? KX::Bytes(KX::kBuiltInDescriptor.begin(), KX::kBuiltInDescriptor.end())
        : test::deviceDescriptor(device);
}

TEST(Descriptor, TheControlsOfRealDevicesAreWhereTheyAre)
{
    for (const auto& device : kDevices) {
        SCOPED_TRACE(device.device);
        const KX::Bytes bytes = DescriptorOf(device.device);
        EXPECT_EQ(Output(bytes, 0x17), bytesFromHex(device.offHook));
        EXPECT_EQ(Output(bytes, 0x09), bytesFromHex(device.mute));
        EXPECT_EQ(Output(bytes, 0x18), bytesFromHex(device.ring));
        EXPECT_EQ(Output(bytes, 0x20), bytesFromHex(device.hold));
        EXPECT_EQ(Input(bytes, 0x2F), bytesFromHex(device.phoneMute));
        EXPECT_EQ(Input(bytes, 0x20), bytesFromHex(device.hookSwitch));
        EXPECT_EQ(Input(bytes, 0x97), bytesFromHex(device.lineBusy));
        EXPECT_EQ(Input(bytes, 0x21), bytesFromHex(device.flash));
    }
    EXPECT_EQ(std::size(kDevices), test::deviceNames().size() + 1) << "a device file has no row";
}

struct Rule {
    const char* what;
    const char* descriptor;
    uint32_t usage;
    const char* input;
};

// Each begins with the Telephony page unless it says otherwise.
constexpr Rule kRules[] = {
    {"empty", "", 0x20, ""},
    {"13 bits make a report of 2 bytes",
        "050b 0905 a101 7501 9503 0920 0921 092f 8102 950a 8101 c0", 0x2F, "00 04 00"},
    {"the first field that holds the usage counts",
        "050b 0905 a101 7501 9501 0920 8102 0920 8102 c0", 0x20, "00 01"},
    {"one bit a usage, whatever the size", "050b 0905 a101 7504 9502 0920 0921 8102 c0", 0x21,
        "00 02"},
    {"the last usages belong to the field", "050b 0905 a101 7501 9501 0921 0920 8102 c0", 0x20,
        "00 01"},
    {"the others do not", "050b 0905 a101 7501 9501 0921 0920 8102 c0", 0x21, ""},
    {"too few usages name none", "050b 0905 a101 7501 9502 0920 8102 c0", 0x20, ""},
    {"features are never found", "050b 0905 a101 7501 9501 0920 b102 c0", 0x20, ""},
    {"features take their usages away", "050b 0905 a101 7501 9501 0920 b102 8102 c0", 0x20, ""},
    {"nested collections belong to the outer one",
        "050b 0905 a101 7501 9501 a102 0920 8102 c0 0921 8102 c0", 0x21, "00 02"},
    {"the usage must stand right before its collection",
        "050b 0905 0901 a101 7501 9501 0920 8102 c0", 0x20, ""},
    {"only the first of two equal usages is looked at",
        "050b 0905 0905 a101 7501 9501 0920 8102 c0", 0x20, ""},
    {"only the first of two equal pages is looked at",
        "050b 0900 050b 0905 a101 7501 9501 0920 8102 c0", 0x20, ""},
    {"a new report id opens a group of its own",
        "050b 0905 a101 7501 9508 8501 8101 8502 9501 0920 8102 c0", 0x20, "02 01"},
    {"the first report id takes over the group that began without one",
        "050b 0905 a101 7501 9501 0921 8102 8507 0920 8102 c0", 0x21, "07 01"},
    {"an item without data repeats the last value", "050b 0905 a101 7501 9501 0920 08 8102 c0",
        0x20, "00 01"},
    {"four bytes are read as such", "050b 0905 a101 7501 9501 0b20000000 8102 c0", 0x20, "00 01"},
    {"size and count hold into the next collection",
        "050b 0904 a101 7501 9501 8102 c0 0905 a101 0920 8102 c0", 0x20, "00 01"},
    {"size between collections is skipped", "050b 0905 7501 9501 a101 0920 8102 c0", 0x20, ""},
    {"an item cut off at the end is dropped", "050b 0905 a101 7501 9501 0920 81", 0x20, ""},
    {"collections may stay open at the end", "050b 0905 a101 7501 9501 0920 8102", 0x20, "00 01"},
};

TEST(Descriptor, FollowsItsRules)
{
    for (const auto& rule : kRules) {
        SCOPED_TRACE(rule.what);
        EXPECT_EQ(Input(bytesFromHex(rule.descriptor), rule.usage), bytesFromHex(rule.input));
    }
}

TEST(Descriptor, AReportLargerThanUsbCanDescribeIsNotFound)
{
    const auto descriptor = [](const std::string& count, const std::string& size) {
        return bytesFromHex(
            "050b 0905 a101 7501 9501 0920 8102 97" + count + "77" + size + "8102 c0");
    };
    EXPECT_EQ(Input(descriptor("fdff0000", "08000000"), 0x20).size(), 65535u);
    EXPECT_TRUE(Input(descriptor("feff0000", "08000000"), 0x20).empty());
    for (const char* size : {"ffffff7f", "ffffffff", "00000080"})
        for (const char* count : {"ffffff7f", "ffffffff", "00000080"})
            EXPECT_LE(Input(descriptor(count, size), 0x20).size(), 65535u) << size << count;

    KX::Bytes many = bytesFromHex("050b 0905 a101 77ffffff7f 97ffffff7f");
    for (int i = 0; i < 30'000; ++i)
        many.insert(many.end(), {0x81, 0x02}); // their sum does not fit 64 bits
    EXPECT_TRUE(Input(many, 0x20).empty());
}

TEST(Descriptor, AnyBytesMakeATreeThatAnswersAndDumps)
{
    std::mt19937 random(20240521);
    const std::vector<std::string> names = test::deviceNames();
    for (int round = 0; round < 300; ++round) {
        KX::Bytes bytes = test::deviceDescriptor(names[random() % names.size()]);
        bytes.resize(random() % bytes.size()); // cut, then damaged
        for (size_t i = 0; i < bytes.size() / 16; ++i)
            bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
        KX::Root root;
        root.Parse(bytes);
        const auto controls = KX::TelephonyControls::FromDescriptor(root);
        EXPECT_TRUE(!controls.hasMuteLed || controls.hasOffHookLed);
        EXPECT_TRUE(root.Dump("").starts_with("----------------Root("));
    }
}

TEST(Descriptor, MasksLoseTheReportIdThatIsNotThereAndMuteNeedsOffHook)
{
    KX::Root root;
    root.Parse(bytesFromHex("050b 0905 a101 7501 9508 0920 0921 092f 0997 0901 0902 0903 0904 8102 "
                            "9501 0508 0909 9102 c0"));
    const auto controls = KX::TelephonyControls::FromDescriptor(root);
    EXPECT_EQ(controls.hookSwitchMask, bytesFromHex("01"));
    EXPECT_EQ(controls.phoneMuteMask, bytesFromHex("04"));
    EXPECT_EQ(controls.muteLedReport, bytesFromHex("00 01"));
    EXPECT_FALSE(controls.hasMuteLed);
}

TEST(Descriptor, DumpsByteForByte)
{
    const KX::Bytes bytes = bytesFromHex("050b 0905 a101 8503 7501 9502 0920 0921 8102 8101 c0");
    KX::Root root;
    root.Parse(bytes);
    const std::string expected = "{\n"
                                 "0x05, 0x0b, 0x09, 0x05, 0xa1, 0x01, 0x85, 0x03, "
                                 "0x75, 0x01, 0x95, 0x02, 0x09, 0x20, 0x09, 0x21, \n"
                                 "0x81, 0x02, 0x81, 0x01, 0xc0}\n"
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
                                 "\t\t\treport    id:\t3\n"
                                 "\t\t\treport  size:\t1\n"
                                 "\t\t\treport count:\t2\n"
                                 "\t\t\tdata    type:\ti\n"
                                 "\t\t\tusage   page:\t11\n"
                                 "\t\t\tusage: \n"
                                 "\n"
                                 "\t\tOutputs:\n"
                                 "\n";
    EXPECT_EQ(KX::DescriptorText(root, bytes), expected);
}

} // namespace
