// Device profiles as JSON text. docs/device-profiles.md describes the format,
// docs/device-profile.schema.json defines it.
#pragma once

#include "report/format/descriptor_file.h"
#include "sim/profile/profile.h"

#include <functional>

namespace sim {

// Longer texts are refused. Room for the descriptors of several interfaces.
inline constexpr size_t kMaxProfileSize = size_t{1024} * 1024;

// Whether a text is meant as a profile: it begins as JSON does, perhaps with mistakes, and as no
// descriptor does. C source may begin with a brace, but numbers follow.
[[nodiscard]] bool isProfile(std::string_view text);

// Reads the descriptor file that a profile names, which is a file name without a folder.
using DescriptorReader = std::function<report::DescriptorResult(const std::string& name)>;

// Takes any text. `file` is the FILE in mistakes; the profile's name is made from it. Throws
// ProfileError with all mistakes, or the first few of very many; if the text is not JSON, with the
// first one. Any thread.
[[nodiscard]] Profile parseProfile(
    std::string_view text, const std::string& file, const DescriptorReader& readDescriptor);

// A text from which parseProfile() makes the same profile, except for its name. It contains the
// descriptors. Ends with a line end.
[[nodiscard]] std::string writeProfile(const Profile& profile);

} // namespace sim
