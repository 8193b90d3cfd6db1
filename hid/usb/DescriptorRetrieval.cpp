#include "hid/usb/DescriptorRetrieval.h"

#include "hid/usb/UsbInterface.h"

#include <cstdio>

namespace KX {

namespace {

// HID descriptor (USB Device Class Definition for HID 1.11, 6.2.1).
constexpr size_t kEntryCountOffset = 5;
constexpr size_t kFirstEntryOffset = 6;
constexpr size_t kEntrySize = 3;
constexpr uint8_t kReportDescriptorType = 0x22;

constexpr int kAttempts = 4;

// Returns the length of the last response, or a negative error.
int Read(UsbInterface& interface, Bytes& descriptor)
{
    int received = 0;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        received = interface.GetReportDescriptor(descriptor);
        if (received >= static_cast<int>(descriptor.size()))
            return received;
    }
    return received;
}

void Print(const char* line)
{
    std::fputs(line, stdout);
    std::fflush(stdout);
}

void Fetch(UsbInterface& interface, Bytes& descriptor)
{
    if (!interface.Claim()) {
        Print("         Report Descriptors: \n           ** UNAVAILABLE **\n");
        return;
    }
    if (!descriptor.empty()) {
        const int received = Read(interface, descriptor);
        if (received > 0 && received < static_cast<int>(descriptor.size()))
            Print("          Warning: incomplete report descriptor\n");
    }
    interface.Release();
}

} // namespace

std::optional<uint16_t> AnnouncedDescriptorLength(std::span<const uint8_t> extra)
{
    if (extra.size() <= kEntryCountOffset)
        return std::nullopt;
    const size_t count = extra[kEntryCountOffset];
    for (size_t i = 0; i < count; ++i) {
        const size_t offset = kFirstEntryOffset + i * kEntrySize;
        if (offset + kEntrySize > extra.size())
            return std::nullopt;
        if (extra[offset] == kReportDescriptorType)
            return static_cast<uint16_t>(extra[offset + 1] | extra[offset + 2] << 8);
    }
    return std::nullopt;
}

Bytes RetrieveReportDescriptor(const char* path)
{
    UsbInterface interface;
    if (!path || !interface.Open(path))
        return {};
    const auto length = AnnouncedDescriptorLength(interface.ClassDescriptor());
    if (!length)
        return {};
    Bytes descriptor(*length);
    Fetch(interface, descriptor);
    return descriptor;
}

} // namespace KX
