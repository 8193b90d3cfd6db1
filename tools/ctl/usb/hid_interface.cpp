#include "tools/ctl/usb/hid_interface.h"

#include "hid/usb/DescriptorRetrieval.h"
#include "hid/usb/HidPath.h"

#include <array>
#include <cstdio>

namespace fs = std::filesystem;

namespace ctl {
namespace {

constexpr uint8_t kBootSubclass = 1;
constexpr size_t kMaxPorts = 7; // one for each tier of hubs

UsbConfiguration activeConfiguration(libusb_device* device)
{
    libusb_config_descriptor* configuration = nullptr;
    if (libusb_get_active_config_descriptor(device, &configuration) != LIBUSB_SUCCESS)
        return nullptr;
    return UsbConfiguration(configuration);
}

HidInterface makeInterface(libusb_device* device, const libusb_interface_descriptor& descriptor)
{
    const std::span classDescriptor(descriptor.extra, static_cast<size_t>(descriptor.extra_length));
    return {UsbDeviceRef(libusb_ref_device(device)), descriptor.bInterfaceNumber,
        descriptor.bInterfaceSubClass == kBootSubclass,
        KX::AnnouncedDescriptorLength(classDescriptor).value_or(0)};
}

// Calls function(configuration, interface descriptor) for each alternate setting of each interface.
template <typename Function>
void forEachSetting(libusb_device* device, const Function& function)
{
    const UsbConfiguration configuration = activeConfiguration(device);
    if (!configuration)
        return;
    for (const auto& interface :
        std::span(configuration->interface, configuration->bNumInterfaces)) {
        for (const auto& setting :
            std::span(interface.altsetting, static_cast<size_t>(interface.num_altsetting)))
            function(*configuration, setting);
    }
}

} // namespace

fs::path HidInterface::node() const
{
    std::array<char, 32> path{};
    std::snprintf(path.data(), path.size(), "/dev/bus/usb/%03d/%03d",
        libusb_get_bus_number(device.get()), libusb_get_device_address(device.get()));
    return path.data();
}

fs::path HidInterface::deviceDirectory() const
{
    std::array<uint8_t, kMaxPorts> ports{};
    const int count
        = libusb_get_port_numbers(device.get(), ports.data(), static_cast<int>(ports.size()));
    std::string name = std::to_string(libusb_get_bus_number(device.get()));
    for (int i = 0; i < count; ++i)
        name += (i == 0 ? "-" : ".") + std::to_string(ports[static_cast<size_t>(i)]);
    return "/sys/bus/usb/devices/" + name;
}

fs::path HidInterface::directory() const
{
    const UsbConfiguration configuration = activeConfiguration(device.get());
    if (!configuration)
        return {};
    const fs::path parent = deviceDirectory();
    return parent
        / (parent.filename().native() + ':' + std::to_string(configuration->bConfigurationValue)
            + '.' + std::to_string(number));
}

std::vector<HidInterface> hidInterfaces(libusb_device* device)
{
    std::vector<HidInterface> interfaces;
    forEachSetting(device, [&](const auto&, const libusb_interface_descriptor& setting) {
        if (setting.bInterfaceClass == LIBUSB_CLASS_HID)
            interfaces.push_back(makeInterface(device, setting));
    });
    return interfaces;
}

bool hasInterface(libusb_device* device, libusb_class_code interfaceClass)
{
    bool found = false;
    forEachSetting(device, [&](const auto&, const libusb_interface_descriptor& setting) {
        found = found || setting.bInterfaceClass == interfaceClass;
    });
    return found;
}

std::optional<HidInterface> findInterface(
    std::span<libusb_device* const> devices, const std::string& path)
{
    std::optional<HidInterface> found;
    for (libusb_device* const device : devices) {
        forEachSetting(
            device, [&](const auto& configuration, const libusb_interface_descriptor& setting) {
                if (!found && setting.bInterfaceClass == LIBUSB_CLASS_HID
                    && KX::IsHidPath(path, device, configuration, setting.bInterfaceNumber))
                    found = makeInterface(device, setting);
            });
        if (found)
            break;
    }
    return found;
}

} // namespace ctl
