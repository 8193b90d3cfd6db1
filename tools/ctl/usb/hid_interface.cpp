#include "tools/ctl/usb/hid_interface.h"

#include "hid/usb/DescriptorRetrieval.h"

#include <array>
#include <cstdio>

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

std::string nodeOf(libusb_device* device)
{
    std::array<char, 32> path{};
    std::snprintf(path.data(), path.size(), "/dev/bus/usb/%03d/%03d", libusb_get_bus_number(device),
        libusb_get_device_address(device));
    return path.data();
}

// The kernel's name, "1-2.3".
std::string portName(libusb_device* device)
{
    std::array<uint8_t, kMaxPorts> ports{};
    const int count = libusb_get_port_numbers(device, ports.data(), static_cast<int>(ports.size()));
    std::string name = std::to_string(libusb_get_bus_number(device));
    for (int i = 0; i < count; ++i)
        name += (i == 0 ? "-" : ".") + std::to_string(ports[static_cast<size_t>(i)]);
    return name;
}

// hidapi before 0.11 made paths of bus, address and interface.
std::string hidPath(libusb_device* device, const std::string& interfaceName, int number)
{
    const hid_api_version& version = *hid_version();
    if (version.major > 0 || version.minor >= 11)
        return interfaceName;
    std::array<char, 32> path{};
    std::snprintf(path.data(), path.size(), "%04x:%04x:%02x", libusb_get_bus_number(device),
        libusb_get_device_address(device), static_cast<unsigned>(number));
    return path.data();
}

HidInterface makeInterface(libusb_device* device, const libusb_config_descriptor& configuration,
    const libusb_interface_descriptor& setting)
{
    const int number = setting.bInterfaceNumber;
    const std::string port = portName(device);
    const std::string name = port + ':' + std::to_string(configuration.bConfigurationValue) + '.'
        + std::to_string(number);
    const std::string sys = "/sys/bus/usb/devices/" + port;
    const std::span classDescriptor(setting.extra, static_cast<size_t>(setting.extra_length));
    return {UsbDeviceRef(libusb_ref_device(device)), number, isBootInterface(setting),
        KX::AnnouncedDescriptorLength(classDescriptor).value_or(0), hidPath(device, name, number),
        nodeOf(device), sys, sys + '/' + name};
}

} // namespace

std::vector<HidInterface> hidInterfaces(libusb_device* device)
{
    std::vector<HidInterface> interfaces;
    forEachSetting(device,
        [&](const libusb_config_descriptor& configuration,
            const libusb_interface_descriptor& setting) {
            if (setting.bInterfaceClass == LIBUSB_CLASS_HID)
                interfaces.push_back(makeInterface(device, configuration, setting));
        });
    return interfaces;
}

bool hasInterface(libusb_device* device,
    const std::function<bool(const libusb_interface_descriptor& interface)>& isSuch)
{
    bool found = false;
    forEachSetting(device, [&](const auto&, const libusb_interface_descriptor& setting) {
        found = found || isSuch(setting);
    });
    return found;
}

bool isBootInterface(const libusb_interface_descriptor& interface)
{
    return interface.bInterfaceClass == LIBUSB_CLASS_HID
        && interface.bInterfaceSubClass == kBootSubclass;
}

} // namespace ctl
