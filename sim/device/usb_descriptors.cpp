#include "sim/device/usb_descriptors.h"

#include <array>

namespace sim {
namespace {

constexpr uint8_t kInterruptTransfer = 3;

const std::u16string* stringAt(const UsbDeviceInfo& info, uint8_t index)
{
    const std::array strings = {&info.manufacturer, &info.product, &info.serialNumber};
    if (index < 1 || index > strings.size() || strings[index - 1U]->empty())
        return nullptr;
    return strings[index - 1U];
}

uint8_t stringIndex(const UsbDeviceInfo& info, uint8_t index)
{
    return stringAt(info, index) ? index : uint8_t{0};
}

void append(Bytes& bytes, const Bytes& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// The largest packet of endpoint 0.
uint8_t maxControlPacket(const UsbDeviceInfo& info)
{
    return info.speed == UsbSpeed::kLow ? 8 : 64;
}

// One millisecond: in milliseconds, or for high speed as the exponent of 125 us * 2^(N - 1).
uint8_t interval(const UsbDeviceInfo& info)
{
    return info.speed == UsbSpeed::kHigh ? 4 : 1;
}

Bytes endpointDescriptor(const UsbDeviceInfo& info, const InterfaceInfo& interface, uint8_t address)
{
    return {7, Descriptor::kEndpoint, address, kInterruptTransfer, lowByte(interface.maxPacketSize),
        highByte(interface.maxPacketSize), interval(info)};
}

Bytes interfaceDescriptor(const UsbDeviceInfo& info, const InterfaceInfo& interface)
{
    const uint8_t endpoints = !interface.isHid() ? 0 : interface.outEndpoint ? 2 : 1;
    Bytes bytes = {9, Descriptor::kInterface, interface.number, 0, endpoints,
        interface.interfaceClass, interface.subclass, interface.protocol, 0};
    if (endpoints == 0)
        return bytes;
    append(bytes, hidDescriptor(interface));
    append(bytes, endpointDescriptor(info, interface, inAddress(interface)));
    if (interface.outEndpoint)
        append(bytes, endpointDescriptor(info, interface, interface.outEndpoint));
    return bytes;
}

} // namespace

Bytes deviceDescriptor(const UsbDeviceInfo& info)
{
    return {18, Descriptor::kDevice, 0x00, 0x02, 0, 0, 0,  // USB 2.00, class by interface
        maxControlPacket(info),                            //
        lowByte(info.vendorId), highByte(info.vendorId),   //
        lowByte(info.productId), highByte(info.productId), //
        lowByte(info.release), highByte(info.release),     //
        stringIndex(info, 1), stringIndex(info, 2), stringIndex(info, 3), 1};
}

Bytes hidDescriptor(const InterfaceInfo& interface)
{
    const std::vector<ClassDescriptor> list
        = interface.classDescriptors.value_or(std::vector{ClassDescriptor{
            ClassDescriptor::kReport, static_cast<uint16_t>(interface.reportDescriptor.size())}});
    Bytes bytes
        = {lowByte(6 + 3 * list.size()), Descriptor::kHid, 0x11, 0x01, 0, lowByte(list.size())};
    for (const ClassDescriptor& entry : list)
        append(bytes, {entry.type, lowByte(entry.length), highByte(entry.length)});
    return bytes;
}

Bytes configurationDescriptor(const UsbDeviceInfo& info)
{
    // Value 1, bus powered, 100 mA.
    Bytes bytes
        = {9, Descriptor::kConfiguration, 0, 0, lowByte(info.interfaces.size()), 1, 0, 0x80, 50};
    for (const InterfaceInfo& interface : info.interfaces)
        append(bytes, interfaceDescriptor(info, interface));
    bytes[2] = lowByte(bytes.size());
    bytes[3] = highByte(bytes.size());
    return bytes;
}

std::optional<Bytes> stringDescriptor(const UsbDeviceInfo& info, uint8_t index)
{
    if (index == 0)
        return Bytes{4, Descriptor::kString, 0x09, 0x04}; // English
    const std::u16string* text = stringAt(info, index);
    if (!text)
        return std::nullopt;
    const std::u16string sent = text->substr(0, UsbDeviceInfo::kMaxStringUnits);
    Bytes bytes = {lowByte(2 + 2 * sent.size()), Descriptor::kString};
    for (const char16_t unit : sent)
        append(bytes, {lowByte(unit), highByte(unit)});
    return bytes;
}

} // namespace sim
