// Directories of the file system.
#pragma once

#include <string>

namespace rkb {

// Makes sure that `path` can be opened as a directory, creating it and its missing parents (mode
// 0777 less the umask). False, with errno as the system set it, when that fails; what was created
// on the way stays.
bool create_directories(const std::string& path);

// Where logs go when nobody says otherwise, with a "/" at its end: RKB_HOME + "/logs/" when that
// variable is set (be it empty), else HOME + "/.mivo/logs/", else "/var/opt/mivo/logs/". Creates
// nothing.
[[nodiscard]] std::string default_log_directory();

} // namespace rkb
