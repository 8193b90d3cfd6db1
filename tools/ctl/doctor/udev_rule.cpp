#include "tools/ctl/doctor/udev_rule.h"

#include "tools/ctl/usb/device_words.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

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
std::string ruleFor(const DeviceEntry& entry)
{
    const std::string ids = idsText(entry);
    return R"(SUBSYSTEM=="usb", ATTR{idVendor}==")" + ids.substr(0, ids.find(':'))
        + R"(", ATTR{idProduct}==")" + ids.substr(ids.find(':') + 1) + R"(", TAG+="uaccess")";
}

std::string fileNameFor(const DeviceEntry& entry)
{
    std::string ids = idsText(entry);
    std::replace(ids.begin(), ids.end(), ':', '-');
    return "70-kelprobe-" + ids + ".rules";
}

// The file that counts, or an empty path.
fs::path findRule(std::span<const fs::path> directories, const std::string& name)
{
    const auto found
        = std::find_if(directories.begin(), directories.end(), [&](const fs::path& directory) {
              std::error_code ignored;
              return fs::exists(directory / name, ignored);
          });
    return found == directories.end() ? fs::path() : *found / name;
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
    const fs::path file = findRule(directories, kFileName);
    if (file.empty())
        return RuleState::kMissing;
    const std::string ours = effectivePart(std::istringstream(std::string(udevRule())));
    return effectivePart(std::ifstream(file)) == ours ? RuleState::kInstalled : RuleState::kDiffers;
}

std::string permissionRemedy(
    const DeviceEntry& entry, std::string_view exclusion, std::span<const fs::path> directories)
{
    const bool covered = exclusion.empty();
    const std::string file = covered ? kFileName : fileNameFor(entry);
    const bool installed = covered ? udevRuleState(directories) == RuleState::kInstalled
                                   : !findRule(directories, file).empty();
    if (installed)
        return "the udev rule is installed (" + file + "); plug the device in again\n"
            + "the rule is for the user who sits at the machine; over ssh, run the program as root";
    if (covered)
        return installation(std::string(program_invocation_name) + " doctor --udev-rule", file);
    return std::string(exclusion) + ", so Kelprobe's udev rule does not cover it; "
        + installation("echo '" + ruleFor(entry) + '\'', file);
}

} // namespace ctl
