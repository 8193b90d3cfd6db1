// Where a program's configuration file is.
#pragma once

#include <string>
#include <string_view>

namespace rkb {

// The path of the configuration file for the program started as `program_path`. The file is in the
// directory "conf" below the directory that the environment variable RKB_HOME names; white space
// around that name is ignored. The file's name is "rkb-" + suffix + ".cfg", where the suffix is
// what follows the last "-" in the program's base name; without a suffix it is "rkb.cfg". The
// result is empty if RKB_HOME is unset or blank. The file need not exist. No other thread may
// change the environment at the same time.
std::string config_file_path(std::string_view program_path);

} // namespace rkb
