#include "hid/usb/HidPath.h"

#include <cstdio>

namespace KX {

namespace {

constexpr int kMaxPorts = 8; // USB allows 7 tiers

std::string PortPath(libusb_device* device, uint8_t configuration, uint8_t interface)
{
    uint8_t ports[kMaxPorts] = {};
    const int count = libusb_get_port_numbers(device, ports, kMaxPorts);
    if (count <= 0)
        return {};
    std::string path = std::to_string(libusb_get_bus_number(device));
    for (int i = 0; i < count; ++i)
        path += (i == 0 ? "-" : ".") + std::to_string(ports[i]);
    return path + ":" + std::to_string(configuration) + "." + std::to_string(interface);
}

std::string AddressPath(libusb_device* device, uint8_t interface)
{
    char path[64];
    (void)snprintf(path, sizeof path, "%04x:%04x:%02x", libusb_get_bus_number(device),
        libusb_get_device_address(device), interface);
    return path;
}

} // namespace

bool IsHidPath(const std::string& path, libusb_device* device,
    const libusb_config_descriptor& configuration, uint8_t number)
{
    return path == PortPath(device, configuration.bConfigurationValue, number)
        || path == AddressPath(device, number);
}

} // namespace KX
