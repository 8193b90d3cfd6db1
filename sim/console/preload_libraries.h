// The libraries that make a program use the simulated bus instead of the machine's.
#pragma once

#include <filesystem>
#include <string>

namespace sim {

// A value for LD_PRELOAD: our own library, which is next to the running program or, if that is
// installed, in the library directory, and umockdev's. LD_PRELOAD cannot hold a path with a blank
// or a colon; if ours has one, a link to it is made in `linkDirectory`. Throws std::runtime_error
// if a library is missing or the link's path has a blank or a colon too.
std::string preloadLibraries(const std::filesystem::path& linkDirectory);

} // namespace sim
