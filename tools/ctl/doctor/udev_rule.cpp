#include "tools/ctl/doctor/udev_rule.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace ctl {
namespace {

constexpr const char* kFileName = "70-kelprobe.rules";

// Without comments and empty lines.
std::string effectivePart(std::istream&& lines)
{
    std::string part;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.front() != '#')
            part += line + '\n';
    }
    return part;
}

// A rule for the devices with these ids alone.
std::string ruleFor(uint16_t vendorId, uint16_t productId)
{
    std::array<char, 128> line{};
    std::snprintf(line.data(), line.size(),
        R"(SUBSYSTEM=="usb", ATTR{idVendor}=="%04x", ATTR{idProduct}=="%04x", TAG+="uaccess")",
        unsigned{vendorId}, unsigned{productId});
    return line.data();
}

std::string installation(const std::string& command, const std::string& file)
{
    return "install a udev rule, then plug the device in again:\n  " + command
        + " | sudo tee /etc/udev/rules.d/" + file
        + "\n  sudo udevadm control --reload && sudo udevadm trigger --subsystem-match=usb";
}

} // namespace

std::vector<fs::path> udevRuleDirectories()
{
    return {"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/local/lib/udev/rules.d",
        "/usr/lib/udev/rules.d", "/lib/udev/rules.d"};
}

RuleState udevRuleState(std::span<const fs::path> directories)
{
    for (const fs::path& directory : directories) {
        std::ifstream file(directory / kFileName);
        if (!file)
            continue;
        const std::string ours = effectivePart(std::istringstream(std::string(udevRule())));
        return effectivePart(std::move(file)) == ours ? RuleState::kInstalled : RuleState::kDiffers;
    }
    return RuleState::kMissing;
}

std::string permissionRemedy(const DeviceEntry& entry, bool covered, RuleState state)
{
    if (!covered)
        return "it has no audio, so Kelprobe's udev rule does not cover it; "
            + installation("echo '" + ruleFor(entry.vendorId, entry.productId) + '\'',
                "70-kelprobe-device.rules");
    if (state != RuleState::kInstalled)
        return installation(
            std::string(program_invocation_name) + " doctor --udev-rule", kFileName);
    return "the udev rule is installed; plug the device in again\n"
           "the rule is for the user who sits at the machine; over ssh, run the program as root";
}

} // namespace ctl
