#include "sim/device/usb_descriptors.h"

#include <array>

namespace sim {
namespace {

enum DescriptorType : uint8_t {
    kDevice = 1,
    kConfiguration,
    kString,
    kInterface,
    kEndpoint,
    kHid = 0x21
};

constexpr uint8_t kBootSubclass = 1;
constexpr uint8_t kMaxControlPacket = 64;
constexpr uint8_t kInterruptTransfer = 3;
constexpr uint8_t kIntervalMs = 1;
constexpr size_t kMaxStringUnits = 126; // the length field is one byte

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

Bytes endpointDescriptor(const UsbDeviceInfo& info, uint8_t address)
{
    return {7, kEndpoint, address, kInterruptTransfer, lowByte(info.maxPacketSize),
        highByte(info.maxPacketSize), kIntervalMs};
}

} // namespace

Bytes deviceDescriptor(const UsbDeviceInfo& info)
{
    return {18, kDevice, 0x00, 0x02, 0, 0, 0, kMaxControlPacket, // USB 2.00, class by interface
        lowByte(info.vendorId), highByte(info.vendorId),         //
        lowByte(info.productId), highByte(info.productId),       //
        0x00, 0x01,                                              // release 1.00
        stringIndex(info, 1), stringIndex(info, 2), stringIndex(info, 3), 1};
}

Bytes hidDescriptor(const UsbDeviceInfo& info)
{
    const std::vector<ClassDescriptor> list
        = info.classDescriptors.value_or(std::vector{ClassDescriptor{
            ClassDescriptor::kReport, static_cast<uint16_t>(info.reportDescriptor.size())}});
    Bytes bytes = {lowByte(6 + 3 * list.size()), kHid, 0x11, 0x01, 0, lowByte(list.size())};
    for (const ClassDescriptor& entry : list)
        append(bytes, {entry.type, lowByte(entry.length), highByte(entry.length)});
    return bytes;
}

Bytes configurationDescriptor(const UsbDeviceInfo& info)
{
    Bytes bytes = {9, kConfiguration, 0, 0, 1, 1, 0, 0x80, 50}; // value 1, bus powered, 100 mA
    const uint8_t endpoints = info.hasOutEndpoint ? 2 : 1;
    const uint8_t subclass = info.boot ? kBootSubclass : 0;
    append(bytes,
        {9, kInterface, info.interfaceNumber, 0, endpoints, info.interfaceClass, subclass, 0, 0});
    append(bytes, hidDescriptor(info));
    append(bytes, endpointDescriptor(info, kEndpointIn));
    if (info.hasOutEndpoint)
        append(bytes, endpointDescriptor(info, kEndpointOut));
    bytes[2] = lowByte(bytes.size());
    bytes[3] = highByte(bytes.size());
    return bytes;
}

std::optional<Bytes> stringDescriptor(const UsbDeviceInfo& info, uint8_t index)
{
    if (index == 0)
        return Bytes{4, kString, 0x09, 0x04}; // English
    const std::u16string* text = stringAt(info, index);
    if (!text)
        return std::nullopt;
    const std::u16string sent = text->substr(0, kMaxStringUnits);
    Bytes bytes = {lowByte(2 + 2 * sent.size()), kString};
    for (const char16_t unit : sent)
        append(bytes, {lowByte(unit), highByte(unit)});
    return bytes;
}

} // namespace sim
