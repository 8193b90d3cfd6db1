// Reading a report descriptor, also from a device that returns little or nothing.
#include "hid/usb/DescriptorRetrieval.h"
#include "hid/usb/HidDevice.h"
#include "tests/hid/library_calls.h"
#include "tests/support/bus_test.h"

#include <algorithm>

namespace {

constexpr const char* kUnavailable
    = "         Report Descriptors: \n           ** UNAVAILABLE **\n";
constexpr const char* kIncomplete = "          Warning: incomplete report descriptor\n";

class Retrieval : public BusTest {
protected:
    // Returns what is retrieved and leaves in `printed_` what is printed.
    Bytes retrieve(const std::string& path)
    {
        testing::internal::CaptureStdout();
        Bytes bytes = KX::RetrieveReportDescriptor(path.c_str());
        printed_ = testing::internal::GetCapturedStdout();
        return bytes;
    }

    std::string printed_;
};

// The device's report descriptor with zeros after the first bytes.
sim::Bytes Beginning(const sim::UsbDevice& device, ptrdiff_t length)
{
    sim::Bytes bytes = device.info().reportDescriptor;
    std::fill(bytes.begin() + length, bytes.end(), uint8_t{0});
    return bytes;
}

TEST_F(Retrieval, ReadsTheAnnouncedLengthFromTheInterfaceThatEitherFormOfItsPathNames)
{
    const auto& first = plug("speakerphone");
    sim::UsbDeviceInfo info = sim::findProfile("led-per-report")->info;
    info.interfaceNumber = 3;
    using Class = sim::ClassDescriptor;
    info.classDescriptors = {{Class::kPhysical, 7}, {Class::kReport, 2}, {Class::kReport, 9}};
    plug(info);
    const Bytes second{info.reportDescriptor[0], info.reportDescriptor[1]};
    EXPECT_EQ(retrieve("1-1:1.0"), first.info().reportDescriptor);
    EXPECT_EQ(retrieve("1-2:1.3"), second);
    EXPECT_EQ(retrieve("0001:0003:03"), second);
    for (const char* other : {"1-3:1.0", "1-1:1.1", "1-1:2.0", "0001:0009:00", "", "1-1"})
        EXPECT_EQ(retrieve(other), Bytes{}) << other;
    EXPECT_EQ(printed_, "");
    EXPECT_TRUE(first.driverBound() && !first.claimed());
}

TEST_F(Retrieval, TriesFourTimesAndKeepsTheLongestAnswer)
{
    auto& device = plug("speakerphone");
    device.faults().shortenReportDescriptor.arm();
    constexpr int stall = -1;
    for (const auto& [answers, kept, printed] : {
             std::tuple{std::vector{stall, 20, stall, 273}, 273, ""},
             {{stall, stall, stall, stall}, 0, ""},
             {{20, 10, 5, 5}, 20, kIncomplete},
             {{5, 30, 10, 0}, 30, ""},
         }) {
        auto next = answers.begin();
        calls::beforeDescriptorRequest = [&, end = answers.end()] {
            ASSERT_NE(next, end);
            device.faults().stallReportDescriptor.arm(*next == stall ? 1 : 0);
            device.faults().shortLength = static_cast<size_t>(*next++);
        };
        EXPECT_EQ(retrieve("1-1:1.0"), Beginning(device, kept));
        EXPECT_EQ(printed_, printed);
        EXPECT_EQ(next, answers.end());
        EXPECT_FALSE(device.claimed());
    }
    calls::beforeDescriptorRequest = nullptr;
}

TEST_F(Retrieval, ReturnsZerosWithoutTheInterfaceAndNothingWithoutTheDevice)
{
    auto& device = plug("speakerphone");
    device.faults().refuseClaim.arm(1);
    EXPECT_EQ(retrieve("1-1:1.0"), Beginning(device, 0));
    EXPECT_EQ(printed_, kUnavailable);
    device.faults().refuseDetach.arm(1);
    EXPECT_EQ(retrieve("1-1:1.0"), Bytes{});
    device.setOpenable(false);
    EXPECT_EQ(retrieve("1-1:1.0"), Bytes{});
    EXPECT_EQ(printed_, "");
}

TEST_F(Retrieval, OpensBySerialNumber)
{
    const auto& info = plug("speakerphone").info();
    for (const auto& [serialNumber, opens] : {std::pair{L"S0001", true}, {L"none", false}})
        EXPECT_EQ(
            KX::hid_open(info.vendorId, info.productId, serialNumber, KX::DescriptorFetch::Off)
                != nullptr,
            opens);
}

TEST(AnnouncedLength, IsAbsentBeyondTheEntriesAndTheBytesThereAre)
{
    for (const char* extra : {"09 21 11 01 00 00 22 11 01", "09 21 11 01 00 01 22 11", "09 21 11"})
        EXPECT_FALSE(KX::AnnouncedDescriptorLength(sim::fromHex(extra).value())) << extra;
}

} // namespace
