#include "sim/profile/recorded_devices.h"

#include "sim/profile/utf16.h"
#include "tools/text/printable.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <tuple>
#include <utility>

namespace sim {
namespace {

constexpr report::DeviceIds kTestIds{0x1209, 0x0001};
constexpr uint8_t kMaxEndpoint = 15;

// Where a descriptor comes from.
struct Origin {
    std::string device; // the same for all interfaces of a device; empty if that is not known
    std::optional<uint8_t> interface = {};
};

// The number at the end of a label after one of the marks, "bus 001, device 005, interface 003",
// "usb-0000:00:14.0-2/input3" and "1-2:1.3".
Origin originOf(const report::FoundDescriptor& found)
{
    std::string_view label = found.label;
    if (!found.name.empty() && label.starts_with(found.name + ", "))
        label.remove_prefix(found.name.size() + 2);
    for (const std::string_view mark : {", interface ", "/input", ":1."}) {
        const size_t at = label.rfind(mark);
        if (at == label.npos)
            continue;
        const std::string_view digits = label.substr(at + mark.size());
        uint8_t number = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (result.ec == std::errc() && result.ptr == digits.data() + digits.size()
            && number < InterfaceInfo::kNumbers)
            return {std::string(label.substr(0, at)), number};
    }
    return {};
}

std::string stemOf(const std::string& file)
{
    return std::filesystem::path(file).stem();
}

// As much of a text as a string descriptor holds.
std::u16string deviceString(const std::string& text)
{
    std::u16string units = utf16(text::printable(text)).value_or(u"");
    if (units.size() > UsbDeviceInfo::kMaxStringUnits)
        units.resize(UsbDeviceInfo::kMaxStringUnits);
    return units;
}

Profile deviceFor(const report::FoundDescriptor& found, const std::string& file)
{
    const report::DeviceIds ids = found.ids.value_or(kTestIds);
    Profile profile;
    profile.name = stemOf(file);
    profile.info.vendorId = ids.vendor;
    profile.info.productId = ids.product;
    profile.info.product = deviceString(found.name.empty() ? profile.name : found.name);
    profile.info.interfaces.clear();
    return profile;
}

bool hasNumber(const UsbDeviceInfo& info, uint8_t number)
{
    return std::ranges::find(info.interfaces, number, &InterfaceInfo::number)
        != info.interfaces.end();
}

// With endpoint numbers of its own.
void addInterface(UsbDeviceInfo& info, report::DescriptorBytes descriptor, uint8_t number)
{
    const auto endpoint = static_cast<uint8_t>(info.interfaces.size() + 1);
    info.interfaces.push_back({.number = number,
        .reportDescriptor = std::move(descriptor),
        .inEndpoint = endpoint,
        .outEndpoint = endpoint});
}

struct Devices {
    std::vector<Profile> profiles;
    std::vector<size_t> profileOf;   // of each descriptor: index in `profiles`
    std::vector<size_t> interfaceOf; // index in the interfaces of that device
};

Devices readDevices(std::string_view content, const std::string& file)
{
    auto result = report::parseDescriptors(content, file);
    if (const auto* const error = std::get_if<report::DescriptorError>(&result))
        throw ProfileError({error->text});
    Devices read;
    std::vector<Profile>& devices = read.profiles;
    std::map<std::tuple<std::string, uint16_t, uint16_t>, size_t> known; // index in devices
    for (auto& found : std::get<std::vector<report::FoundDescriptor>>(result)) {
        const Origin origin = originOf(found);
        const report::DeviceIds ids = found.ids.value_or(kTestIds);
        const uint8_t number = origin.interface.value_or(0);
        const auto [at, isNew]
            = known.emplace(std::tuple(origin.device, ids.vendor, ids.product), devices.size());
        const bool fits = !isNew && origin.interface && !hasNumber(devices[at->second].info, number)
            && devices[at->second].info.interfaces.size() < kMaxEndpoint;
        if (!fits) {
            at->second = devices.size();
            devices.push_back(deviceFor(found, file));
        }
        read.profileOf.push_back(at->second);
        read.interfaceOf.push_back(devices[at->second].info.interfaces.size());
        addInterface(devices[at->second].info, std::move(found.bytes), number);
    }
    return read;
}

} // namespace

std::vector<Profile> devicesIn(std::string_view content, const std::string& file)
{
    return readDevices(content, file).profiles;
}

Profile deviceOfDescriptor(std::string_view content, const std::string& file, size_t index)
{
    Devices read = readDevices(content, file);
    Profile profile = std::move(read.profiles.at(read.profileOf.at(index)));
    profile.info.chosenControls = read.interfaceOf.at(index);
    return profile;
}

void applyOptions(UsbDeviceInfo& info, const ProfileOptions& options)
{
    if (options.ids) {
        info.vendorId = options.ids->vendor;
        info.productId = options.ids->product;
    }
    if (options.product) {
        const auto units = utf16(*options.product);
        if (!units || units->size() > UsbDeviceInfo::kMaxStringUnits)
            throw ProfileError({"--name: expected valid UTF-8 of at most "
                + std::to_string(UsbDeviceInfo::kMaxStringUnits) + " UTF-16 units"});
        info.product = *units;
    }
    InterfaceInfo& controls = info.controls();
    if (const auto number = options.interfaceNumber) {
        if (*number >= InterfaceInfo::kNumbers)
            throw ProfileError({"--interface: expected 0 to 31"});
        const auto other = std::ranges::find(info.interfaces, *number, &InterfaceInfo::number);
        if (other != info.interfaces.end())
            other->number = controls.number;
        controls.number = *number;
    }
    if (options.noOutEndpoint)
        controls.outEndpoint = 0;
}

} // namespace sim
