// Where a program's configuration file is.
#pragma once

#include <string>
#include <string_view>

namespace rkb {

// The path of the configuration file for the program started as `program_path`. It is in the
// directory "conf" below the one that the environment variable RKB_HOME names, without white space
// around that name. The file is "rkb-" + suffix + ".cfg", where the suffix is what follows the last
// "-" in the program's base name; without a suffix it is "rkb.cfg". Empty if RKB_HOME is unset or
// blank. The file need not exist. No other thread may change the environment at the same time.
std::string config_file_path(std::string_view program_path);

} // namespace rkb
