// The libraries that make a program use the simulated bus instead of the machine's.
#pragma once

#include <filesystem>
#include <string>

namespace sim {

// A value for LD_PRELOAD: our own library and umockdev's. `linkDirectory` is as for
// preload::libraryPath(). Throws std::runtime_error as that does, and if umockdev's is missing.
std::string preloadLibraries(const std::filesystem::path& linkDirectory);

} // namespace sim
