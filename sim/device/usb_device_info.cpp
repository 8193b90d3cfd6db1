#include "sim/device/usb_device_info.h"

#include "report/layout.h"

#include <algorithm>

namespace sim {
namespace {

bool hasTelephony(const InterfaceInfo& interface)
{
    const auto isTelephony = [](const report::Collection& collection) {
        return collection.parent == report::Collection::kNone
            && collection.usage.page == report::kTelephonyPage;
    };
    return interface.isHid()
        && std::ranges::any_of(
            report::readLayout(interface.reportDescriptor).collections, isTelephony);
}

} // namespace

size_t UsbDeviceInfo::controlsIndex() const
{
    if (chosenControls)
        return *chosenControls;
    auto found = std::ranges::find_if(interfaces, hasTelephony);
    if (found == interfaces.end())
        found = std::ranges::find_if(interfaces, &InterfaceInfo::isHid);
    return found == interfaces.end() ? 0 : static_cast<size_t>(found - interfaces.begin());
}

} // namespace sim
