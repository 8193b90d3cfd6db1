#include "sim/console/preload_libraries.h"

#include <dlfcn.h>

#include <stdexcept>

namespace fs = std::filesystem;

namespace sim {
namespace {

constexpr const char* kOwnLibrary = "kelprobe-sim-preload.so";
constexpr const char* kUmockdevLibrary = "libumockdev-preload.so.0";

fs::path ownLibrary()
{
    const fs::path directory = fs::read_symlink("/proc/self/exe").parent_path();
    fs::path built = directory / kOwnLibrary;
    fs::path installed = directory / KELPROBE_INSTALLED_LIBRARIES / kOwnLibrary;
    if (fs::exists(built))
        return built;
    if (fs::exists(installed))
        return installed;
    throw std::runtime_error("missing library: " + built.string());
}

bool fitsLdPreload(const fs::path& path)
{
    return path.native().find_first_of(" :$") == std::string::npos;
}

} // namespace

std::string preloadLibraries(const fs::path& linkDirectory)
{
    fs::path own = ownLibrary();
    if (!fitsLdPreload(own)) {
        const fs::path link = linkDirectory / kOwnLibrary;
        if (!fitsLdPreload(link))
            throw std::runtime_error("LD_PRELOAD cannot hold a path with a blank or a colon: "
                + own.string() + ", " + link.string());
        fs::create_symlink(own, link);
        own = link;
    }
    void* const library = dlopen(kUmockdevLibrary, RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error(
            std::string("missing library: ") + kUmockdevLibrary + " (Debian package umockdev)");
    dlclose(library);
    return own.string() + ':' + kUmockdevLibrary;
}

} // namespace sim
