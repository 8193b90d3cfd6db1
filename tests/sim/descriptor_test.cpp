#include "bus_test.h"

#include <libusb.h>

namespace {

using sim::Bytes;

// A device opened by libusb, its interface claimed.
class Claimed {
public:
    explicit Claimed(const sim::UsbDeviceInfo& info)
        : interface_(info.interfaceNumber)
    {
        libusb_init(&context_);
        handle_ = libusb_open_device_with_vid_pid(context_, info.vendorId, info.productId);
        if (!handle_)
            return;
        libusb_detach_kernel_driver(handle_, interface_);
        libusb_claim_interface(handle_, interface_);
    }
    Claimed(const Claimed&) = delete;
    Claimed& operator=(const Claimed&) = delete;
    ~Claimed()
    {
        if (handle_)
            libusb_close(handle_);
        libusb_exit(context_);
    }

    // The class descriptors of the interface, as libusb found them in sysfs.
    Bytes extra() const
    {
        libusb_config_descriptor* configuration = nullptr;
        libusb_get_active_config_descriptor(libusb_get_device(handle_), &configuration);
        const libusb_interface_descriptor& setting = configuration->interface[0].altsetting[0];
        Bytes bytes(setting.extra, setting.extra + setting.extra_length);
        libusb_free_config_descriptor(configuration);
        return bytes;
    }

    // The answer to GET_DESCRIPTOR(report); empty if it failed.
    Bytes reportDescriptor(uint16_t interface, uint16_t length = 4096) const
    {
        Bytes bytes(length);
        const int size = libusb_control_transfer(handle_, 0x81, LIBUSB_REQUEST_GET_DESCRIPTOR,
            0x2200, interface, bytes.data(), length, 5000);
        bytes.resize(size < 0 ? 0 : static_cast<size_t>(size));
        return bytes;
    }

private:
    const int interface_;
    libusb_context* context_ = nullptr;
    libusb_device_handle* handle_ = nullptr;
};

class DescriptorsOnBus : public BusTest { };

TEST_F(DescriptorsOnBus, TheReportDescriptorComesWholeShortOrNotAtAll)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.interfaceNumber = 3;
    sim::UsbDevice& device = plug(info);
    const Bytes whole = info.reportDescriptor;
    const Claimed claimed(info);

    EXPECT_EQ(whole.size(), 273U);
    EXPECT_EQ(claimed.reportDescriptor(3), whole);
    EXPECT_EQ(claimed.reportDescriptor(3, 100).size(), 100U);
    EXPECT_EQ(claimed.reportDescriptor(0), Bytes{}) << "there is no such interface";
    EXPECT_EQ(Claimed(info).reportDescriptor(3), Bytes{}) << "another client has the interface";
    EXPECT_EQ(device.counters().reportDescriptorReads, 2);

    device.faults().stallReportDescriptor.arm(2);
    device.faults().shortLength = 10;
    device.faults().shortenReportDescriptor.arm(1);
    EXPECT_EQ(claimed.reportDescriptor(3), Bytes{});
    EXPECT_EQ(claimed.reportDescriptor(3), Bytes{});
    EXPECT_EQ(claimed.reportDescriptor(3), Bytes(whole.begin(), whole.begin() + 10));
    EXPECT_EQ(claimed.reportDescriptor(3), whole);
    EXPECT_EQ(device.counters().reportDescriptorReads, 6);
}

TEST_F(DescriptorsOnBus, TheHidDescriptorListsWhatItIsTold)
{
    using List = std::vector<sim::ClassDescriptor>;
    const struct {
        std::optional<List> list;
        Bytes expected;
    } cases[] = {
        {std::nullopt, {9, 0x21, 0x11, 1, 0, 1, 0x22, 0x11, 0x01}},
        {List{}, {6, 0x21, 0x11, 1, 0, 0}},
        {List{{sim::ClassDescriptor::kPhysical, 5}, {sim::ClassDescriptor::kReport, 273}},
            {12, 0x21, 0x11, 1, 0, 2, 0x23, 5, 0, 0x22, 0x11, 0x01}},
    };
    for (const auto& testCase : cases) {
        sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
        info.classDescriptors = testCase.list;
        sim::UsbDevice& device = plug(info);
        EXPECT_EQ(Claimed(info).extra(), testCase.expected);
        device.unplug();
    }
}

} // namespace
