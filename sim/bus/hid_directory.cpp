#include "sim/bus/hid_directory.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace sim {
namespace {

constexpr unsigned kUsbBus = 3;

std::string nameFor(const UsbDeviceInfo& info)
{
    std::array<char, 32> name{};
    snprintf(name.data(), name.size(), "%04X:%04X:%04X.0001", kUsbBus, unsigned{info.vendorId},
        unsigned{info.productId});
    return name.data();
}

} // namespace

HidDirectory::HidDirectory(const fs::path& device, const UsbDeviceInfo& info)
{
    if (info.interfaceClass != kHidInterfaceClass)
        return;
    const std::string interface = device.filename().native() + ":1."
        + std::to_string(info.interfaceNumber);
    shown_ = device / interface / nameFor(info);
    hidden_ = device / ".unbound";
    fs::create_directories(shown_);
    std::ofstream file(shown_ / "report_descriptor", std::ios::binary);
    for (const uint8_t byte : info.reportDescriptor)
        file.put(static_cast<char>(byte));
}

void HidDirectory::setBound(bool bound) const
{
    std::error_code ignored;
    if (!shown_.empty())
        fs::rename(bound ? hidden_ : shown_, bound ? shown_ : hidden_, ignored);
}

} // namespace sim
