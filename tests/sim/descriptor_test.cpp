#include "tests/support/bus_test.h"

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
        libusb_detach_kernel_driver(handle_, interface_);
        libusb_claim_interface(handle_, interface_);
    }
    Claimed(const Claimed&) = delete;
    Claimed& operator=(const Claimed&) = delete;
    ~Claimed()
    {
        libusb_close(handle_);
        libusb_exit(context_);
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

using DescriptorsOnBus = BusTest;

TEST_F(DescriptorsOnBus, TheReportDescriptorIsTheClaimedInterfaces)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.interfaceNumber = 3;
    sim::UsbDevice& device = plug(info);
    const Bytes whole = info.reportDescriptor;
    const Claimed claimed(info);

    EXPECT_EQ(claimed.reportDescriptor(3), whole);
    EXPECT_EQ(claimed.reportDescriptor(3, 100).size(), 100U);
    EXPECT_EQ(claimed.reportDescriptor(0), Bytes{}) << "there is no such interface";
    EXPECT_EQ(Claimed(info).reportDescriptor(3), Bytes{}) << "another client has the interface";
    EXPECT_EQ(device.counters().reportDescriptorReads, 2);
}

} // namespace
