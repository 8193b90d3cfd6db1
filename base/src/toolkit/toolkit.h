// Directories of the file system.
#pragma once

#include <string>

namespace rkb {

// Creates the directory `path` and its missing parents, with mode 0777 minus the umask, unless it
// can be opened as a directory. Returns false when that fails; errno then has the reason, and
// parents that were created stay. Any thread, also when several create the same directory.
bool create_directories(const std::string& path);

// The directory of the default log files, with a "/" at its end: RKB_HOME + "/logs/" when that
// environment variable is set, even to an empty text; else HOME + "/.mivo/logs/"; else
// "/var/opt/mivo/logs/". It need not exist. No other thread may change the environment meanwhile.
[[nodiscard]] std::string default_log_directory();

} // namespace rkb
