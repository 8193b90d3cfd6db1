#include "report/format/descriptor_source.h"

#include "report/format/c_source.h"
#include "report/format/file_content.h"
#include "report/format/recording.h"
#include "report/format/text_cursor.h"
#include "report/format/usbhid_dump.h"
#include "report/item.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace report {
namespace {

constexpr size_t kSignificantBytes = 16; // of binary content

bool isBinary(std::string_view content)
{
    const std::string_view begin = content.substr(0, kSignificantBytes);
    return std::any_of(begin.begin(), begin.end(), [](char c) {
        return c >= 0 && c < ' '
            && std::string_view("\t\n\v\f\r").find(c) == std::string_view::npos;
    });
}

// Whether the definition of HID gives the item a meaning.
bool isDefined(const Item& item)
{
    switch (item.tag) {
    case ItemTag::kInput:
    case ItemTag::kOutput:
    case ItemTag::kCollection:
    case ItemTag::kFeature:
    case ItemTag::kEndCollection:
    case ItemTag::kUsagePage:
    case ItemTag::kLogicalMinimum:
    case ItemTag::kLogicalMaximum:
    case ItemTag::kPhysicalMinimum:
    case ItemTag::kPhysicalMaximum:
    case ItemTag::kUnitExponent:
    case ItemTag::kUnit:
    case ItemTag::kReportSize:
    case ItemTag::kReportId:
    case ItemTag::kReportCount:
    case ItemTag::kPush:
    case ItemTag::kPop:
    case ItemTag::kUsage:
    case ItemTag::kUsageMinimum:
    case ItemTag::kUsageMaximum:
    case ItemTag::kDesignatorIndex:
    case ItemTag::kDesignatorMinimum:
    case ItemTag::kDesignatorMaximum:
    case ItemTag::kStringIndex:
    case ItemTag::kStringMinimum:
    case ItemTag::kStringMaximum:
    case ItemTag::kDelimiter:
        return true;
    case ItemTag::kLong:
        return item.isLong();
    }
    return false;
}

// Some devices give a length that is too long, and zeros for the rest.
bool isPadding(const Item& item)
{
    return item.bytes.front() == 0 && item.offset > 0;
}

std::vector<FoundDescriptor> readBinary(std::string_view content, const std::string& name)
{
    if (content.size() > kMaxDescriptorSize)
        throw DescriptorError{
            name + ": a binary file of more than 65535 bytes, which no report descriptor has"};
    DescriptorBytes bytes(content.begin(), content.end());
    for (const Item& item : splitItems(bytes)) {
        if (!isDefined(item) && !isPadding(item)) {
            std::array<char, 8> prefix{};
            std::snprintf(prefix.data(), prefix.size(), "0x%02x", unsigned{item.bytes.front()});
            throw DescriptorError{name + ": a binary file that is no report descriptor: item "
                + prefix.data() + " at byte " + std::to_string(item.offset) + " is reserved"};
        }
        if (item.truncated)
            throw DescriptorError{name + ": a binary file that ends within the item at byte "
                + std::to_string(item.offset)};
    }
    return {{std::move(bytes)}};
}

// Whether this line is one of those with which lsusb begins to describe a device, or that people
// copy from its output.
bool isLsusb(std::string_view line)
{
    constexpr std::array<std::string_view, 7> beginnings{"Bus ",
        "Device Descriptor:", "Configuration Descriptor:", "Interface Descriptor:",
        "HID Device Descriptor:", "Report Descriptor", "Item("};
    return std::any_of(beginnings.begin(), beginnings.end(),
        [&](std::string_view beginning) { return line.starts_with(beginning); });
}

// Whether this line begins with the offset 0, as the first line of xxd, hexdump and od. No
// descriptor begins with such bytes.
bool isOffsetDump(std::string_view line)
{
    constexpr size_t minimum = 4; // digits
    const size_t digits = line.find_first_not_of('0');
    if (digits == line.npos || digits < minimum)
        return false;
    line.remove_prefix(digits + (line[digits] == ':' ? 1 : 0));
    return line.starts_with(' ') || line.starts_with('\t');
}

bool isRecording(std::string_view line)
{
    return line.size() >= 2 && line[1] == ':' && line[0] >= 'A' && line[0] <= 'Z';
}

std::string labelOf(const RecordedDevice& device, size_t index)
{
    if (device.name.empty() && device.physicalPath.empty())
        return "device " + std::to_string(index);
    const char* const separator = device.name.empty() || device.physicalPath.empty() ? "" : ", ";
    return device.name + separator + device.physicalPath;
}

std::vector<FoundDescriptor> readRecording(std::string_view content, const std::string& name)
{
    RecordingResult result = parseRecording(content, name);
    if (const auto* const error = std::get_if<DescriptorError>(&result))
        throw *error;
    std::vector<FoundDescriptor> found;
    std::vector<RecordedDevice>& devices = std::get<Recording>(result).devices;
    for (size_t i = 0; i < devices.size(); ++i) {
        RecordedDevice& device = devices[i];
        if (device.descriptor.empty())
            continue;
        FoundDescriptor descriptor{std::move(device.descriptor), labelOf(device, i)};
        if (device.vendorId != 0 || device.productId != 0)
            descriptor.ids = DeviceIds{device.vendorId, device.productId};
        descriptor.name = std::move(device.name);
        found.push_back(std::move(descriptor));
    }
    if (found.empty()) {
        TextCursor text(content, name);
        text.moveTo(text.position() + text.rest().size());
        text.fail("an R: line with a descriptor");
    }
    return found;
}

std::vector<FoundDescriptor> readText(std::string_view content, const std::string& name)
{
    const TextCursor whole(content, name);
    TextCursor text = whole;
    text.skipComments(TextCursor::Comments::kAll);
    const std::string_view line = text.restOfLine();
    if (isOffsetDump(line))
        text.failWith("expected a descriptor in bytes, found the offsets of a dump; "
                      "use the output of \"xxd -p\"");
    if (isUsbhidDump(line))
        return readUsbhidDump(text);
    if (isRecording(line))
        return readRecording(content, name);
    if (isLsusb(line))
        text.failWith("expected a descriptor in bytes, found the output of lsusb; "
                      "use that of \"sudo usbhid-dump -e descriptor\"");
    if (isCSource(whole))
        return readCSource(whole);
    DescriptorResult result = parseDescriptor(content, name);
    if (const auto* const error = std::get_if<DescriptorError>(&result))
        throw *error;
    return {{std::get<DescriptorBytes>(std::move(result))}};
}

} // namespace

DescriptorsResult parseDescriptors(std::string_view content, const std::string& name)
{
    try {
        const bool binary = isBinary(content) && !isUtf16(content);
        return binary ? readBinary(content, name) : readText(content, name);
    } catch (const DescriptorError& error) {
        return error;
    }
}

DescriptorsResult readDescriptors(const std::filesystem::path& file)
{
    try {
        return parseDescriptors(readFile(file, kMaxRecordingSize), file.string());
    } catch (const DescriptorError& error) {
        return error;
    }
}

} // namespace report
