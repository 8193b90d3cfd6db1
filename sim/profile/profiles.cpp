#include "sim/profile/profiles.h"

#include "report/format/file_content.h"
#include "report/format/recording.h"
#include "sim/profile/profile_text.h"
#include "sim/profile/recorded_devices.h"
#include "tools/text/suggestion.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace fs = std::filesystem;

namespace sim {
namespace {

constexpr const char* kExtension = ".json";

std::string readText(const fs::path& file)
{
    try {
        return report::readFile(file, report::kMaxRecordingSize);
    } catch (const report::DescriptorError& error) {
        throw ProfileError({error.text});
    }
}

Profile readProfile(const fs::path& file, std::string_view text)
{
    return parseProfile(text, file, [&file](const std::string& name) {
        return report::readDescriptorFile(file.parent_path() / name);
    });
}

// Those of the built-in profiles: the default one, then the others by name.
std::vector<fs::path> profileFiles()
{
    const fs::path directory = profileDirectory();
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(directory, error))
        if (entry.path().extension() == kExtension)
            files.push_back(entry.path());
    if (files.empty())
        throw ProfileError({directory.native() + ": expected profiles, files *.json"});
    const auto isLater = [](const fs::path& file) { return file.stem() != kDefaultProfile; };
    std::ranges::sort(
        files, {}, [&](const fs::path& file) { return std::pair(isLater(file), file.filename()); });
    return files;
}

std::vector<Profile> readProfiles()
{
    const std::vector<fs::path> files = profileFiles();
    std::vector<Profile> list;
    list.reserve(files.size());
    for (const fs::path& file : files)
        list.push_back(readProfile(file, readText(file)));
    return list;
}

ProfileError unknownProfile(const std::string& name)
{
    std::vector<std::string> stems;
    for (const fs::path& file : profileFiles())
        stems.push_back(file.stem());
    const std::vector<std::string_view> names(stems.begin(), stems.end());
    const std::string_view nearest = text::nearest(name, names);
    return ProfileError({"unknown profile " + name
        + (nearest.empty() ? "" : "; did you mean " + std::string(nearest) + '?')});
}

std::vector<Profile> readDevices(const fs::path& file)
{
    const std::string text = readText(file);
    if (file.extension() == kExtension || isProfile(text))
        return {readProfile(file, text)};
    return devicesIn(text, file);
}

std::vector<Profile> find(const std::string& nameOrFile)
{
    if (nameOrFile.empty())
        throw ProfileError({"expected a profile or a file, found an empty name"});
    if (nameOrFile.find_first_of("/.") != nameOrFile.npos)
        return readDevices(nameOrFile);
    std::error_code error;
    const fs::path builtIn = profileDirectory() / (nameOrFile + kExtension);
    if (fs::exists(builtIn, error))
        return readDevices(builtIn);
    if (fs::exists(nameOrFile, error))
        return readDevices(nameOrFile);
    throw unknownProfile(nameOrFile);
}

} // namespace

fs::path profileDirectory()
{
    if (const char* const named = std::getenv("KELPROBE_PROFILES"); named && *named)
        return named;
    fs::path installed
        = fs::read_symlink("/proc/self/exe").parent_path() / KELPROBE_INSTALLED_PROFILES;
    return fs::is_directory(installed) ? installed : fs::path(KELPROBE_SOURCE_PROFILES);
}

std::span<const Profile> profiles()
{
    static const std::vector<Profile> list = readProfiles();
    return list;
}

const Profile* findProfile(std::string_view name)
{
    const auto list = profiles();
    const auto found = std::ranges::find(list, name, &Profile::name);
    return found == list.end() ? nullptr : &*found;
}

std::vector<Profile> loadProfiles(const std::string& nameOrFile, const ProfileOptions& options)
{
    std::vector<Profile> list = find(nameOrFile);
    for (Profile& profile : list)
        applyOptions(profile.info, options);
    return list;
}

} // namespace sim
