#include "tools/ctl/convert/usb_transfer.h"

#include <cassert>

namespace ctl {
namespace {

using report::Bytes;

constexpr size_t kDevicesPerBus = 127;
constexpr uint16_t kInterface = 0;
constexpr uint8_t kControlIn = 0x80;
constexpr uint8_t kControlOut = 0x00;
constexpr uint8_t kInterruptIn = 0x81;
constexpr uint8_t kInterruptOut = 0x01;

constexpr uint8_t kGetDescriptor = 6;
constexpr uint8_t kFromDevice = 0x80;
constexpr uint8_t kFromInterface = 0x81;
constexpr uint8_t kSetReport = 9;
constexpr uint8_t kToInterfaceClass = 0x21;
constexpr unsigned kFeatureReport = 3;

enum DescriptorType : uint8_t {
    kDevice = 1,
    kConfiguration = 2,
    kInterfaceDescriptor = 4,
    kEndpoint = 5,
    kHid = 0x21,
    kReport = 0x22,
};

uint8_t low(size_t number)
{
    return static_cast<uint8_t>(number);
}

uint8_t high(size_t number)
{
    return static_cast<uint8_t>(number >> 8);
}

Bytes deviceDescriptor(const report::RecordedDevice& device)
{
    return {18, kDevice, 0x00, 0x02, 0, 0, 0, 64,    // USB 2.0, class by interface, packet size
        low(device.vendorId), high(device.vendorId), //
        low(device.productId), high(device.productId), 0, 0, // release 0
        0, 0, 0, 1};                                         // no strings, one configuration
}

Bytes configurationDescriptor(const report::RecordedDevice& device)
{
    const size_t reportSize = device.descriptor.size();
    Bytes bytes = {9, kConfiguration, 0, 0, 1, 1, 0, 0x80, 50, // value 1, bus powered, 100 mA
        9, kInterfaceDescriptor, kInterface, 0, 2, 3, 0, 0, 0, // two endpoints, class HID
        9, kHid, 0x11, 0x01, 0, 1, kReport, low(reportSize), high(reportSize), // HID 1.11
        7, kEndpoint, kInterruptIn, 3, 64, 0, 1, // interrupt, packet size, interval
        7, kEndpoint, kInterruptOut, 3, 64, 0, 1};
    bytes[2] = low(bytes.size());
    bytes[3] = high(bytes.size());
    return bytes;
}

UsbTransfer transferOf(size_t index, std::chrono::microseconds time)
{
    UsbTransfer transfer;
    transfer.bus = static_cast<uint16_t>(1 + index / kDevicesPerBus);
    transfer.device = static_cast<uint8_t>(1 + index % kDevicesPerBus);
    transfer.time = time;
    return transfer;
}

} // namespace

std::vector<UsbTransfer> descriptorTransfers(
    const report::RecordedDevice& device, size_t index, std::chrono::microseconds time)
{
    std::vector<UsbTransfer> transfers;
    const auto add = [&](uint8_t requestType, DescriptorType type, Bytes descriptor) {
        UsbTransfer transfer = transferOf(index, time);
        transfer.endpoint = kControlIn;
        transfer.setup = UsbSetup{requestType, kGetDescriptor, static_cast<uint16_t>(type << 8),
            kInterface, static_cast<uint16_t>(descriptor.size())};
        transfer.data = std::move(descriptor);
        transfers.push_back(std::move(transfer));
    };
    add(kFromDevice, kDevice, deviceDescriptor(device));
    add(kFromDevice, kConfiguration, configurationDescriptor(device));
    if (!device.descriptor.empty())
        add(kFromInterface, kReport, device.descriptor);
    return transfers;
}

UsbTransfer reportTransfer(const report::RecordedReport& report)
{
    using Direction = report::RecordedReport::Direction;
    UsbTransfer transfer = transferOf(report.device, report.time);
    transfer.failed = report.failure.has_value();
    transfer.data = report.bytes;
    if (report.direction == Direction::kInput) {
        transfer.endpoint = kInterruptIn;
        return transfer;
    }
    const uint8_t id = report.bytes.empty() ? uint8_t{0} : report.bytes.front();
    if (id == 0 && !report.bytes.empty())
        transfer.data.erase(transfer.data.begin()); // not on the wire
    if (report.direction == Direction::kOutput) {
        transfer.endpoint = kInterruptOut;
    } else {
        transfer.endpoint = kControlOut;
        transfer.setup = UsbSetup{kToInterfaceClass, kSetReport,
            static_cast<uint16_t>(kFeatureReport << 8 | id), kInterface,
            static_cast<uint16_t>(transfer.data.size())};
    }
    return transfer;
}

} // namespace ctl
