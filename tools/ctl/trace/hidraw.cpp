#include "tools/ctl/trace/hidraw.h"

#include "report/format/descriptor_file.h"

#include <cstdio>
#include <fstream>

namespace fs = std::filesystem;

namespace ctl {
namespace {

// Empty for other paths than those of hidraw nodes.
fs::path directoryOf(const std::string& path, const fs::path& classes)
{
    const fs::path node(path);
    const std::string name = node.filename();
    const bool isNode = node.parent_path() == "/dev" && name.starts_with("hidraw");
    return isNode ? classes / name / "device" : fs::path();
}

} // namespace

report::Bytes hidrawDescriptor(const std::string& path, const fs::path& classes)
{
    report::Bytes bytes;
    const fs::path directory = directoryOf(path, classes);
    if (directory.empty())
        return bytes;
    std::ifstream file(directory / "report_descriptor", std::ios::binary);
    bytes.resize(report::kMaxDescriptorSize);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    return bytes;
}

// The file has a line "HID_ID=0003:00001209:00000001": bus, vendor, product.
std::pair<uint16_t, uint16_t> hidrawIds(const std::string& path, const fs::path& classes)
{
    const fs::path directory = directoryOf(path, classes);
    if (directory.empty())
        return {};
    std::ifstream file(directory / "uevent");
    for (std::string line; std::getline(file, line);) {
        unsigned vendor = 0;
        unsigned product = 0;
        if (std::sscanf(line.c_str(), "HID_ID=%*x:%x:%x", &vendor, &product) == 2)
            return {static_cast<uint16_t>(vendor), static_cast<uint16_t>(product)};
    }
    return {};
}

} // namespace ctl
