#include "base/src/toolkit/toolkit.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rkb {

namespace {

bool is_directory(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return false;
    close(file);
    return true;
}

} // namespace

bool create_directories(const std::string& path)
{
    if (is_directory(path))
        return true;
    if (errno == ENAMETOOLONG) // creating every parent of such a path would take minutes
        return false;
    // Only the final check counts: another process may be creating the same directories.
    for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1))
        mkdir(path.substr(0, end).c_str(), 0777);
    mkdir(path.c_str(), 0777);
    return is_directory(path);
}

std::string default_log_directory()
{
    if (const char* home = getenv("RKB_HOME"))
        return std::string(home) + "/logs/";
    if (const char* home = getenv("HOME"))
        return std::string(home) + "/.mivo/logs/";
    return "/var/opt/mivo/logs/";
}

} // namespace rkb
