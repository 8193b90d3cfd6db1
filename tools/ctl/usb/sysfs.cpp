#include "tools/ctl/usb/sysfs.h"

#include <fstream>
#include <iterator>
#include <system_error>

namespace fs = std::filesystem;

namespace ctl {

report::Bytes sysfsDescriptor(const fs::path& interface)
{
    std::error_code ignored; // without the directory there is nothing to iterate
    for (const auto& entry : fs::directory_iterator(interface, ignored)) {
        std::ifstream file(entry.path() / "report_descriptor", std::ios::binary);
        if (file)
            return {std::istreambuf_iterator<char>(file), {}};
    }
    return {};
}

std::vector<std::string> hidrawNames(const fs::path& interface)
{
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(interface, ignored)) {
        for (const auto& node : fs::directory_iterator(entry.path() / "hidraw", ignored))
            names.push_back(node.path().filename());
    }
    return names;
}

std::string sysfsAttribute(const fs::path& device, const std::string& name)
{
    std::ifstream file(device / name, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

} // namespace ctl
