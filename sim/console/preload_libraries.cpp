#include "sim/console/preload_libraries.h"

#include "tools/preload/preload_library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace sim {
namespace {

constexpr const char* kOwnLibrary = "kelprobe-sim-preload.so";
constexpr const char* kUmockdevLibrary = "libumockdev-preload.so.0";

} // namespace

std::string preloadLibraries(const std::filesystem::path& linkDirectory)
{
    const std::string own = preload::libraryPath(kOwnLibrary, linkDirectory);
    void* const library = dlopen(kUmockdevLibrary, RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error(
            std::string("missing library: ") + kUmockdevLibrary + " (Debian package umockdev)");
    dlclose(library);
    return own + ':' + kUmockdevLibrary;
}

} // namespace sim
