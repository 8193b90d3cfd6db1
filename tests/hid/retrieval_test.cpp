// Reading a report descriptor from a device that may not want to tell it.
#include "DescriptorRetrieval.h"
#include "HidDevice.h"
#include "bus_test.h"
#include "device_file.h"

namespace {

using test::bytesFromHex;

constexpr const char* kUnavailable
    = "         Report Descriptors: \n           ** UNAVAILABLE **\n";
constexpr const char* kIncomplete = "          Warning: incomplete report descriptor\n";

class Retrieval : public BusTest {
protected:
    // What is retrieved, and in `printed_` what is said about it.
    Bytes retrieve(const std::string& path)
    {
        testing::internal::CaptureStdout();
        Bytes bytes = KX::RetrieveReportDescriptor(path.c_str());
        printed_ = testing::internal::GetCapturedStdout();
        return bytes;
    }

    std::string printed_;
};

TEST_F(Retrieval, FindsTheInterfaceByEitherFormOfItsPath)
{
    auto& first = plug("speakerphone");
    auto& second = plug("lamp-per-report");
    EXPECT_EQ(retrieve("1-1:1.0"), first.info().reportDescriptor);
    EXPECT_EQ(retrieve("1-2:1.0"), second.info().reportDescriptor);
    EXPECT_EQ(retrieve("0001:0003:00"), second.info().reportDescriptor);
    for (const char* other : {"1-3:1.0", "1-1:1.1", "1-1:2.0", "0001:0009:00", "", "1-1"})
        EXPECT_EQ(retrieve(other), Bytes{}) << other;
    EXPECT_EQ(printed_, "");
    EXPECT_TRUE(first.driverBound());
    EXPECT_FALSE(first.claimed());
}

TEST_F(Retrieval, GoesByTheFirstReportEntryOfTheHidDescriptor)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    const auto size = static_cast<uint16_t>(info.reportDescriptor.size());
    using Class = sim::ClassDescriptor;
    struct Row {
        std::vector<Class> listed;
        size_t expected;
    };
    for (const Row& row : {
             Row{{{Class::kPhysical, 7}, {Class::kReport, size}}, size},
             Row{{{Class::kReport, 10}, {Class::kReport, size}}, 10},
             Row{{{Class::kPhysical, 7}}, 0},
             Row{{}, 0},
             Row{{{Class::kReport, 0}}, 0},
         }) {
        info.classDescriptors = row.listed;
        auto& device = plug(info);
        Bytes expected = info.reportDescriptor;
        expected.resize(row.expected);
        EXPECT_EQ(retrieve(device.hidPath()), expected);
        EXPECT_EQ(printed_, "");
        device.unplug();
    }
}

TEST_F(Retrieval, TriesFourTimesAndKeepsWhatItGot)
{
    auto& device = plug("speakerphone");
    const Bytes& whole = device.info().reportDescriptor;

    device.faults().stallReportDescriptor.arm(3);
    EXPECT_EQ(retrieve("1-1:1.0"), whole);
    EXPECT_EQ(printed_, "");

    device.faults().stallReportDescriptor.arm(4);
    EXPECT_EQ(retrieve("1-1:1.0"), Bytes(whole.size()));
    EXPECT_EQ(printed_, "");
    EXPECT_EQ(device.counters().reportDescriptorReads, 8);

    device.faults().shortLength = 10;
    device.faults().shortenReportDescriptor.arm(4);
    Bytes partial(whole.begin(), whole.begin() + 10);
    partial.resize(whole.size());
    EXPECT_EQ(retrieve("1-1:1.0"), partial);
    EXPECT_EQ(printed_, kIncomplete);
    EXPECT_EQ(device.counters().reportDescriptorReads, 12);
    EXPECT_FALSE(device.claimed());
}

TEST_F(Retrieval, AnInterfaceThatCannotBeClaimedLeavesZeros)
{
    auto& device = plug("lamp-per-report");
    device.faults().refuseClaim.arm(1); // ours; hidapi's own claim then works
    testing::internal::CaptureStdout();
    const auto opened = KX::hid_open(
        device.info().vendorId, device.info().productId, nullptr, KX::DescriptorFetch::On);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), kUnavailable);
    ASSERT_NE(opened, nullptr);
    Bytes descriptor;
    EXPECT_TRUE(KX::hid_get_report_descriptor_copy(opened.get(), descriptor));
    EXPECT_EQ(descriptor, Bytes(device.info().reportDescriptor.size()));
}

TEST_F(Retrieval, WithoutPermissionOrWithADriverThatStaysThereIsNothing)
{
    auto& device = plug("speakerphone");
    device.faults().refuseDetach.arm(1);
    EXPECT_EQ(retrieve("1-1:1.0"), Bytes{});
    device.setOpenable(false);
    EXPECT_EQ(retrieve("1-1:1.0"), Bytes{});
    EXPECT_EQ(printed_, "");
}

TEST_F(Retrieval, OpensByIdsAndSerialNumber)
{
    auto& device = plug("speakerphone");
    sim::UsbDeviceInfo twin = device.info();
    twin.serialNumber = u"other";
    plug(twin);
    const auto serialOf = [](const wchar_t* wanted) {
        const auto opened = KX::hid_open(0x0B0E, 0x0410, wanted, KX::DescriptorFetch::Off);
        wchar_t serial[32] = L"-";
        if (opened)
            (void)hid_get_serial_number_string(opened->handle, serial, std::size(serial));
        return std::wstring(serial);
    };
    hid_device_info* list = hid_enumerate(0x0B0E, 0x0410);
    EXPECT_EQ(serialOf(nullptr), list->serial_number);
    hid_free_enumeration(list);
    EXPECT_EQ(serialOf(L"S0001"), L"S0001");
    EXPECT_EQ(serialOf(L"other"), L"other");
    EXPECT_EQ(serialOf(L"none"), L"-");
    EXPECT_EQ(KX::hid_open(0, 0, nullptr, KX::DescriptorFetch::Off), nullptr);
    Bytes untouched{1};
    EXPECT_FALSE(KX::hid_get_report_descriptor_copy(nullptr, untouched));
    EXPECT_EQ(untouched, Bytes{1});
}

TEST(AnnouncedLength, StaysWithinTheBytesThereAre)
{
    struct Row {
        const char* extra;
        int length; // -1: none
    };
    for (const Row& row : {
             Row{"09 21 11 01 00 01 22 11 01", 0x0111},
             Row{"0c 21 11 01 00 02 23 05 00 22 40 00", 0x40},
             Row{"09 21 11 01 00 00 22 11 01", -1},
             Row{"09 21 11 01 00 ff 23 11 01", -1},
             Row{"09 21 11 01 00 01 22 11", -1},
             Row{"09 21 11", -1},
             Row{"", -1},
         }) {
        const auto length = KX::AnnouncedDescriptorLength(bytesFromHex(row.extra));
        EXPECT_EQ(length ? int{*length} : -1, row.length) << row.extra;
    }
}

} // namespace
