#include "sim/bus/hid_directory.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace sim {
namespace {

constexpr unsigned kUsbBus = 3;

// The kernel numbers the HID devices. Here the number differs only within a USB device.
std::string nameFor(const UsbDeviceInfo& info, const InterfaceInfo& interface)
{
    std::array<char, 32> name{};
    snprintf(name.data(), name.size(), "%04X:%04X:%04X.%04X", kUsbBus, unsigned{info.vendorId},
        unsigned{info.productId}, interface.number + 1U);
    return name.data();
}

} // namespace

HidDirectory::HidDirectory(
    const fs::path& device, const UsbDeviceInfo& info, const InterfaceInfo& interface)
{
    if (!interface.isHid())
        return;
    const std::string number = std::to_string(interface.number);
    shown_ = device / (device.filename().native() + ":1." + number) / nameFor(info, interface);
    hidden_ = device / (".unbound-" + number);
    fs::create_directories(shown_);
    std::ofstream file(shown_ / "report_descriptor", std::ios::binary);
    for (const uint8_t byte : interface.reportDescriptor)
        file.put(static_cast<char>(byte));
    file.close();
    setDriver("usbhid");
}

void HidDirectory::setDriver(const char* name)
{
    const std::string driver = name ? name : "";
    if (shown_.empty() || driver == driver_)
        return;
    driver_ = driver;
    const fs::path link = shown_.parent_path() / "driver";
    std::error_code ignored;
    fs::remove(link, ignored);
    if (!driver.empty())
        fs::create_symlink("../../../../bus/usb/drivers/" + driver, link, ignored);
    const bool bound = driver == "usbhid";
    fs::rename(bound ? hidden_ : shown_, bound ? shown_ : hidden_, ignored);
}

} // namespace sim
