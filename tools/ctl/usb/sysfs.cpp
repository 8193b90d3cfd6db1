#include "tools/ctl/usb/sysfs.h"

#include "tools/ctl/cli/unique_fd.h"
#include "tools/ctl/usb/usb_handles.h"

#include <array>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace ctl {
namespace {

constexpr std::string_view kUsbHidDevice = "0003:"; // begins its name, "0003:1209:0001.0004"

// Empty if it cannot be read, as without the driver or after an unplug.
template <typename Content>
Content contentOf(const std::string& path)
{
    Content content;
    std::array<char, 4096> part; // attributes have at most a page
    const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    while (file.get() >= 0) {
        const ssize_t size = read(file.get(), part.data(), part.size());
        if (size > 0)
            content.insert(content.end(), part.begin(), part.begin() + size);
        else if (size == 0 || errno != EINTR)
            break;
    }
    return content;
}

std::vector<std::string> namesIn(const std::string& directory)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, Release<closedir>> opened(opendir(directory.c_str()));
    while (opened) {
        const dirent* const entry = readdir(opened.get());
        if (!entry)
            break;
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    return names;
}

// The kernel's HID driver has one such directory in that of the interface.
std::vector<std::string> hidDirectories(const std::string& interface)
{
    std::vector<std::string> paths;
    for (const std::string& name : namesIn(interface)) {
        if (name.starts_with(kUsbHidDevice))
            paths.emplace_back(interface).append("/").append(name);
    }
    return paths;
}

} // namespace

report::Bytes sysfsDescriptor(const std::string& interface)
{
    report::Bytes descriptor;
    for (const std::string& directory : hidDirectories(interface)) {
        if (descriptor.empty())
            descriptor = contentOf<report::Bytes>(directory + "/report_descriptor");
    }
    return descriptor;
}

std::vector<std::string> hidrawNames(const std::string& interface)
{
    std::vector<std::string> names;
    for (const std::string& directory : hidDirectories(interface)) {
        for (std::string& name : namesIn(directory + "/hidraw"))
            names.push_back(std::move(name));
    }
    return names;
}

std::string sysfsDriver(const std::string& interface)
{
    std::array<char, PATH_MAX> target;
    const ssize_t size = readlink((interface + "/driver").c_str(), target.data(), target.size());
    const std::string_view path(target.data(), size > 0 ? static_cast<size_t>(size) : 0);
    return std::string(path.substr(path.rfind('/') + 1)); // npos + 1 is 0
}

std::string sysfsAttribute(const std::string& device, const std::string& name)
{
    auto text = contentOf<std::string>(device + '/' + name);
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

} // namespace ctl
