// Where a program's configuration file is.
#pragma once

#include <string>
#include <string_view>

namespace rkb {

// The configuration file of the program started as `program_path`, in the directory "conf" below
// the one that the environment variable RKB_HOME names (white space around it does not count):
// "rkb-" + the part of the program's base name behind its last "-" + ".cfg", or "rkb.cfg" when it
// has no such part. Empty when RKB_HOME is unset or blank. The file need not exist. Reads the
// environment: no other thread may change it meanwhile.
std::string config_file_path(std::string_view program_path);

} // namespace rkb
