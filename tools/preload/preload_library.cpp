#include "tools/preload/preload_library.h"

#include <cstdlib>
#include <stdexcept>

namespace fs = std::filesystem;

namespace preload {
namespace {

fs::path find(const std::string& name)
{
    const fs::path directory = fs::read_symlink("/proc/self/exe").parent_path();
    fs::path built = directory / name;
    fs::path installed = (directory / KELPROBE_INSTALLED_LIBRARIES / name).lexically_normal();
    if (fs::exists(built))
        return built;
    if (fs::exists(installed))
        return installed;
    throw std::runtime_error("missing library: " + installed.string());
}

bool fitsLdPreload(const fs::path& path)
{
    return path.native().find_first_of(" :$") == std::string::npos;
}

} // namespace

std::string libraryPath(const std::string& name, const fs::path& linkDirectory)
{
    fs::path library = find(name);
    if (fitsLdPreload(library))
        return library;
    fs::path link = linkDirectory / name;
    if (!fitsLdPreload(link))
        throw std::runtime_error("LD_PRELOAD cannot hold a path with a blank, a colon or '$': "
            + library.string() + ", " + link.string());
    fs::create_symlink(library, link);
    return link;
}

std::string appended(const std::string& libraries)
{
    const char* const inherited = std::getenv("LD_PRELOAD");
    return inherited && *inherited ? std::string(inherited) + ':' + libraries : libraries;
}

} // namespace preload
