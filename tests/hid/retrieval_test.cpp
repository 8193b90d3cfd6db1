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

TEST_F(Retrieval, FindsTheInterfaceByEitherFormOfItsPath)
{
    auto& first = plug("speakerphone");
    auto& second = plug("led-per-report");
    EXPECT_EQ(retrieve("1-1:1.0"), first.info().reportDescriptor);
    EXPECT_EQ(retrieve("1-2:1.0"), second.info().reportDescriptor);
    EXPECT_EQ(retrieve("0001:0003:00"), second.info().reportDescriptor);
    for (const char* other : {"1-3:1.0", "1-1:1.1", "1-1:2.0", "0001:0009:00", "", "1-1"})
        EXPECT_EQ(retrieve(other), Bytes{}) << other;
    EXPECT_EQ(printed_, "");
    EXPECT_TRUE(first.driverBound());
    EXPECT_FALSE(first.claimed());
}

TEST_F(Retrieval, UsesTheFirstReportEntryOfTheHidDescriptor)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    using Class = sim::ClassDescriptor;
    for (const auto& [listed, size] : {
             std::pair<std::vector<Class>, size_t>{{{Class::kPhysical, 7}, {Class::kReport, 9}}, 9},
             {{{Class::kReport, 10}, {Class::kReport, 273}}, 10},
             {{{Class::kReport, 0}}, 0},
             {{}, 0},
         }) {
        info.classDescriptors = listed;
        info.interfaceNumber = 3;
        auto& device = plug(info);
        EXPECT_EQ(retrieve(device.hidPath()).size(), size);
        device.unplug();
    }
}

TEST_F(Retrieval, TriesFourTimesAndKeepsWhatItReceived)
{
    auto& device = plug("speakerphone");
    const Bytes& whole = device.info().reportDescriptor;
    auto& faults = device.faults();
    faults.shortLength = 10;
    struct Row {
        sim::Fault& fault;
        int times, reads;
        ptrdiff_t received; // zeros follow
        const char* printed;
    };
    for (const Row& row : {
             Row{faults.stallReportDescriptor, 3, 4, 273, ""},
             Row{faults.stallReportDescriptor, 4, 4, 0, ""},
             Row{faults.shortenReportDescriptor, 4, 4, 10, kIncomplete},
             Row{faults.refuseClaim, 1, 0, 0, kUnavailable},
         }) {
        row.fault.arm(row.times);
        const int readsBefore = device.counters().reportDescriptorReads;
        Bytes expected = whole;
        std::fill(expected.begin() + row.received, expected.end(), uint8_t{0});
        EXPECT_EQ(retrieve("1-1:1.0"), expected);
        EXPECT_EQ(printed_, row.printed);
        EXPECT_EQ(device.counters().reportDescriptorReads - readsBefore, row.reads);
        EXPECT_FALSE(device.claimed());
    }
}

TEST_F(Retrieval, KeepsTheTailOfAnEarlierLongerAnswer)
{
    auto& device = plug("speakerphone");
    device.faults().shortenReportDescriptor.arm();
    for (const auto& [lengths, kept, printed] : {
             std::tuple{std::vector<size_t>{20, 10, 5, 5}, 20, kIncomplete},
             {{5, 30, 10, 1}, 30, kIncomplete},
             {{20, 10, 5, 0}, 20, ""},
         }) {
        auto next = lengths.begin();
        calls::beforeDescriptorRequest = [&] { device.faults().shortLength = *next++; };
        Bytes expected = device.info().reportDescriptor;
        std::fill(expected.begin() + kept, expected.end(), uint8_t{0});
        EXPECT_EQ(retrieve(device.hidPath()), expected);
        EXPECT_EQ(printed_, printed);
    }
    calls::beforeDescriptorRequest = nullptr;
}

TEST_F(Retrieval, ReturnsNothingWithoutPermissionOrWhenTheDriverStays)
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
    const auto& first = plug("speakerphone");
    sim::UsbDeviceInfo info = first.info();
    info.serialNumber = u"other";
    const auto& second = plug(info);
    const auto open = [&](const wchar_t* serial) {
        return KX::hid_open(info.vendorId, info.productId, serial, KX::DescriptorFetch::Off);
    };
    {
        const auto opened = open(L"S0001");
        EXPECT_TRUE(opened && first.claimed() && !second.claimed());
    }
    {
        const auto opened = open(L"other");
        EXPECT_TRUE(opened && second.claimed() && !first.claimed());
    }
    EXPECT_TRUE(open(nullptr)) << "whichever is first";
    EXPECT_FALSE(open(L"none"));
    EXPECT_EQ(KX::hid_open(0, 0, nullptr, KX::DescriptorFetch::Off), nullptr);
    Bytes untouched{1};
    EXPECT_FALSE(KX::hid_get_report_descriptor_copy(nullptr, untouched));
    EXPECT_EQ(untouched, Bytes{1});
}

TEST(AnnouncedLength, StaysWithinTheBytesThereAre)
{
    constexpr int none = -1;
    for (const auto& [extra, expected] : {
             std::pair{"09 21 11 01 00 01 22 11 01", 0x0111},
             {"0c 21 11 01 00 02 23 05 00 22 40 00", 0x40},
             {"09 21 11 01 00 00 22 11 01", none},
             {"09 21 11 01 00 ff 23 11 01", none},
             {"09 21 11 01 00 01 22 11", none},
             {"09 21 11", none},
             {"", none},
         }) {
        const auto length = KX::AnnouncedDescriptorLength(sim::fromHex(extra).value());
        EXPECT_EQ(length ? int{*length} : none, expected) << extra;
    }
}

} // namespace
