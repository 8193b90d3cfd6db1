// The devices that can be simulated: built-in profiles and files.
#pragma once

#include "report/format/descriptor_source.h"
#include "sim/profile/profile.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace sim {

// Where the built-in profiles are: the directory that the environment variable KELPROBE_PROFILES
// names, else the installed one ("../share/kelprobe/profiles" from the directory of the running
// program) if there is one, else the one in the source tree.
std::filesystem::path profileDirectory();

inline constexpr const char* kDefaultProfile = "speakerphone";

// All built-in profiles: the default one, then the others by name. The first
// call reads the files, and throws ProfileError if one of them cannot be read.
std::span<const Profile> profiles();

// Null if there is no built-in profile of that name. Throws as profiles() does.
[[nodiscard]] const Profile* findProfile(std::string_view name);

// Values that replace those of a file. Without them a descriptor that has no ids gets 1209:0001,
// which are for tests, and one that has no name gets that of the file.
struct ProfileOptions {
    std::optional<report::DeviceIds> ids = {};
    std::optional<std::string> product = {}; // UTF-8
    // The new number of the interface with the controls. An interface that already has it gets the
    // old one.
    std::optional<uint8_t> interfaceNumber = {};
    bool noOutEndpoint = false; // that interface has none
};

// The devices of a built-in profile or, if none has that name, of a file. An argument with a slash
// or a dot is always a file. A file is a profile if it is named *.json or begins as JSON does; else
// any file that report::readDescriptors() reads. Only the file that is meant is read. A profile
// gives one device. In other files, descriptors of several interfaces of one device become one
// device: those of usbhid-dump with the same bus and device, and those of a recording with the same
// ids and the same physical path except for the interface. Blocks while files are read. Throws
// ProfileError.
[[nodiscard]] std::vector<Profile> loadProfiles(
    const std::string& nameOrFile, const ProfileOptions& options = {});

} // namespace sim
