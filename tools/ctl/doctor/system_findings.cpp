#include "tools/ctl/doctor/system_findings.h"

#include "report/usage_names.h"
#include "tools/ctl/doctor/udev_rule.h"
#include "tools/ctl/usb/usb_handles.h"

#include <cstdlib>
#include <cwchar>
#include <filesystem>

namespace fs = std::filesystem;

namespace ctl {
namespace {

using Level = Finding::Level;

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value && *value;
}

bool exists(const char* path)
{
    std::error_code ignored;
    return fs::exists(path, ignored);
}

std::string remedyWithoutNodes()
{
    if (exists("/.flatpak-info"))
        return "this is a Flatpak sandbox: flatpak override --user --device=all APPLICATION";
    if (isSet("SNAP_NAME"))
        return std::string("this is a snap: snap connect ") + std::getenv("SNAP_NAME") + ":raw-usb";
    if (exists("/.dockerenv") || exists("/run/.containerenv"))
        return "this is a container: start it with --device /dev/bus/usb, after plugging the "
               "device in";
    return "in a container or sandbox, give it access to /dev/bus/usb; in a virtual machine, pass "
           "the device on to it";
}

Finding nodes()
{
    if (exists("/dev/bus/usb"))
        return {Level::kFine, "usb-nodes", "/dev/bus/usb is there", ""};
    return {Level::kProblem, "usb-nodes",
        "/dev/bus/usb is not there, so no USB device can be opened", remedyWithoutNodes()};
}

std::string versions()
{
    const libusb_version* const usb = libusb_get_version();
    return std::string("hidapi ") + hid_version_str() + ", libusb " + std::to_string(usb->major)
        + '.' + std::to_string(usb->minor) + '.' + std::to_string(usb->micro);
}

Finding libraries()
{
    const bool silent = std::wcsstr(hid_error(nullptr), L"not implemented") != nullptr;
    if (!silent)
        return {Level::kFine, "libraries", versions(), ""};
    return {Level::kNote, "libraries", versions() + "; this hidapi gives no reasons for failures",
        "kelprobectl trace shows those of libusb"};
}

Finding rule()
{
    switch (udevRuleState(udevRuleDirectories())) {
    case RuleState::kInstalled:
        return {Level::kFine, "udev-rule", "Kelprobe's udev rule is installed", ""};
    case RuleState::kDiffers:
        return {Level::kNote, "udev-rule", "a changed version of Kelprobe's udev rule is installed",
            ""};
    case RuleState::kMissing:
        break;
    }
    return {Level::kNote, "udev-rule", "Kelprobe's udev rule is not installed", ""};
}

Finding usageNames()
{
    if (!report::UsageNames::load().empty())
        return {Level::kFine, "usage-names", "the names of usages are installed", ""};
    return {Level::kNote, "usage-names", "the names of usages are not installed",
        "install the package usb.ids"};
}

Finding display()
{
    if (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY"))
        return {Level::kFine, "display", "there is a display for the window", ""};
    return {Level::kNote, "display", "there is no display, so the window cannot be shown",
        "kelprobectl meeting plays a meeting without the window"};
}

} // namespace

Findings systemFindings()
{
    return {nodes(), libraries(), rule(), usageNames(), display()};
}

} // namespace ctl
