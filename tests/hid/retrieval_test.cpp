// Reading a report descriptor, also from a device that returns little or nothing.
#include "hid/usb/DescriptorRetrieval.h"
#include "hid/usb/HidDevice.h"
#include "tests/hid/library_calls.h"
#include "tests/support/bus_test.h"

#include <algorithm>

namespace {

using Retrieval = BusTest;

// What is retrieved and what is printed.
using Retrieved = std::pair<sim::Bytes, std::string>;

Retrieved Retrieve(const char* path)
{
    testing::internal::CaptureStdout();
    sim::Bytes bytes = KX::RetrieveReportDescriptor(path);
    return {std::move(bytes), testing::internal::GetCapturedStdout()};
}

TEST_F(Retrieval, ReadsTheAnnouncedLengthFromTheInterfaceThatEitherFormOfItsPathNames)
{
    auto& first = plug("speakerphone");
    sim::UsbDeviceInfo info = sim::findProfile("led-per-report")->info;
    sim::InterfaceInfo& interface = info.controls();
    interface.number = 3;
    using Class = sim::ClassDescriptor;
    interface.classDescriptors = {{Class::kPhysical, 7}, {Class::kReport, 2}, {Class::kReport, 9}};
    plug(info);
    const Retrieved second({interface.reportDescriptor[0], interface.reportDescriptor[1]}, "");
    EXPECT_EQ(Retrieve("1-1:1.0"), Retrieved(first.info().controls().reportDescriptor, ""));
    EXPECT_EQ(Retrieve("1-2:1.3"), second);
    EXPECT_EQ(Retrieve("0001:0003:03"), second);
    for (const char* other : {"1-3:1.0", "1-1:1.1", "1-1:2.0", "0001:0009:00", "", "1-1"})
        EXPECT_EQ(Retrieve(other), Retrieved()) << other;
    EXPECT_TRUE(first.driverBound() && !first.claimed());
    first.faults().refuseDetach.arm(1);
    EXPECT_EQ(Retrieve("1-1:1.0"), Retrieved());
    first.setOpenable(false);
    EXPECT_EQ(Retrieve("1-1:1.0"), Retrieved());
}

// The descriptor has zeros after the bytes that were received.
TEST_F(Retrieval, ClaimsTheInterfaceAndTriesFourTimesKeepingTheLongestAnswer)
{
    auto& device = plug("speakerphone");
    device.faults().shortenReportDescriptor.arm();
    constexpr int stall = -1;
    const auto* incomplete = "          Warning: incomplete report descriptor\n";
    for (const auto& [answers, kept, printed] : {
             std::tuple{std::vector{stall, 20, stall, 273}, 273, ""},
             {{stall, stall, stall, stall}, 0, ""},
             {{20, 10, 5, 5}, 20, incomplete},
             {{5, 30, 10, 0}, 30, ""},
             {{}, 0, "         Report Descriptors: \n           ** UNAVAILABLE **\n"},
         }) {
        device.faults().refuseClaim.arm(answers.empty() ? 1 : 0);
        auto next = answers.begin();
        calls::beforeDescriptorRequest = [&, end = answers.end()] {
            ASSERT_NE(next, end);
            device.faults().stallReportDescriptor.arm(*next == stall ? 1 : 0);
            device.faults().shortLength = static_cast<size_t>(*next++);
        };
        Bytes expected = device.info().controls().reportDescriptor;
        std::fill(expected.begin() + kept, expected.end(), uint8_t{0});
        EXPECT_EQ(Retrieve("1-1:1.0"), Retrieved(expected, printed));
        EXPECT_EQ(next, answers.end());
        EXPECT_FALSE(device.claimed());
    }
    calls::beforeDescriptorRequest = [] {};
}

TEST_F(Retrieval, OpensBySerialNumber)
{
    const auto& info = plug("speakerphone").info();
    EXPECT_TRUE(KX::hid_open(info.vendorId, info.productId, L"S0001", KX::DescriptorFetch::Off));
    EXPECT_FALSE(KX::hid_open(info.vendorId, info.productId, L"none", KX::DescriptorFetch::Off));
}

TEST(AnnouncedLength, IsAbsentBeyondTheEntriesAndTheBytesThereAre)
{
    for (const char* extra : {"09 21 11 01 00 00 22 11 01", "09 21 11 01 00 01 22 11", "09 21 11"})
        EXPECT_FALSE(KX::AnnouncedDescriptorLength(sim::fromHex(extra).value())) << extra;
}

} // namespace
