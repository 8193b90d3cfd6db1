// Libraries of Kelprobe's that are loaded into other programs by LD_PRELOAD.
#pragma once

#include <filesystem>
#include <string>

namespace preload {

// The path of the library `name`, which is next to the running program or, if that is installed, in
// the library directory. LD_PRELOAD cannot hold a path with a blank, a colon or a dollar sign; if
// this one has one, a link to it is made in `linkDirectory`, and its path returned. Throws
// std::runtime_error if the library is missing or the link's path has one, too.
[[nodiscard]] std::string libraryPath(
    const std::string& name, const std::filesystem::path& linkDirectory);

// A value for LD_PRELOAD: `libraries` after those that this process has inherited. A sanitizer's
// library among those must stay the first.
[[nodiscard]] std::string appended(const std::string& libraries);

} // namespace preload
