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

constexpr std::string_view kDefault = "speakerphone";

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

std::vector<Profile> readProfiles()
{
    const fs::path directory = profileDirectory();
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(directory, error))
        if (entry.path().extension() == ".json")
            files.push_back(entry.path());
    if (files.empty())
        throw ProfileError({directory.native() + ": expected profiles, files *.json"});
    const auto isLater = [](const fs::path& file) { return file.stem() != kDefault; };
    std::ranges::sort(
        files, {}, [&](const fs::path& file) { return std::pair(isLater(file), file.filename()); });
    std::vector<Profile> list;
    list.reserve(files.size());
    for (const fs::path& file : files)
        list.push_back(readProfile(file, readText(file)));
    return list;
}

ProfileError unknownProfile(const std::string& name)
{
    std::vector<std::string_view> names;
    names.reserve(profiles().size());
    for (const Profile& profile : profiles())
        names.push_back(profile.name);
    const std::string_view nearest = text::nearest(name, names);
    return ProfileError({"unknown profile " + name
        + (nearest.empty() ? "" : "; did you mean " + std::string(nearest) + '?')});
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
    std::vector<Profile> list;
    if (const Profile* const builtIn = findProfile(nameOrFile)) {
        list.push_back(*builtIn);
    } else {
        const bool isName = nameOrFile.find_first_of("/.") == nameOrFile.npos;
        if (isName && !fs::exists(nameOrFile))
            throw unknownProfile(nameOrFile);
        const std::string text = readText(nameOrFile);
        if (isProfile(text))
            list.push_back(readProfile(nameOrFile, text));
        else
            list = devicesIn(text, nameOrFile);
    }
    for (Profile& profile : list)
        applyOptions(profile.info, options);
    return list;
}

} // namespace sim
