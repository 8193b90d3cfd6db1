#include "tools/ctl/doctor/node_users.h"

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

std::optional<struct stat> statusOf(const fs::path& path)
{
    struct stat status { };
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

// Nodes of one device in different places, as in a container, have the same device number.
bool isSameDevice(const struct stat& one, const struct stat& other)
{
    const bool sameFile = one.st_dev == other.st_dev && one.st_ino == other.st_ino;
    return sameFile
        || (S_ISCHR(one.st_mode) && S_ISCHR(other.st_mode) && one.st_rdev == other.st_rdev);
}

bool isNumber(const std::string& name)
{
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Processes may end at any time, so failures mean that there is nothing to see.
bool hasOpen(const fs::path& process, const struct stat& node)
{
    std::error_code error;
    for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
         entry.increment(error)) {
        const auto status = statusOf(entry->path());
        if (status && isSameDevice(*status, node))
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
    const auto status = statusOf(node);
    const std::string self = std::to_string(getpid());
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; status && !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (isNumber(name) && name != self && hasOpen(entry->path(), *status))
            users.push_back(nameOf(entry->path()));
    }
    return users;
}

} // namespace ctl
