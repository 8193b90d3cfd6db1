// What settings and environment share; private to this layer.
#pragma once

#include <string>

namespace rkb {

inline constexpr const char* media_ini_variable = "MIVOMEDIA_INI_PATH";

// `value` with a leading "~" replaced by the value of the environment variable HOME.
std::string with_home(std::string value);

// `value` ending in "/", or empty.
std::string with_final_slash(std::string value);

} // namespace rkb
