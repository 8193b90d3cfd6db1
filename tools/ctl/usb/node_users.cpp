#include "tools/ctl/usb/node_users.h"

#include "tools/text/printable.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace ctl {
namespace {

// The device number of a character device. Device nodes may have several paths.
std::optional<dev_t> deviceNumber(const fs::path& path)
{
    struct stat status { };
    if (stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode))
        return std::nullopt;
    return status.st_rdev;
}

bool isNumber(const std::string& name)
{
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Processes may end at any time, so failures mean that there is nothing to see.
bool hasOpen(const fs::path& process, dev_t device)
{
    std::error_code error;
    for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
         entry.increment(error)) {
        if (deviceNumber(entry->path()) == device)
            return true;
    }
    return false;
}

std::string nameOf(const fs::path& process)
{
    std::ifstream file(process / "comm");
    std::string name;
    std::getline(file, name);
    return text::printable(name) + " (" + process.filename().native() + ')';
}

} // namespace

std::vector<std::string> usersOfNode(const fs::path& node)
{
    std::vector<std::string> users;
    const auto device = deviceNumber(node);
    const std::string self = std::to_string(getpid());
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; device && !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (isNumber(name) && name != self && hasOpen(entry->path(), *device))
            users.push_back(nameOf(entry->path()));
    }
    return users;
}

} // namespace ctl
