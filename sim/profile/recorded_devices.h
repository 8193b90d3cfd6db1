// Devices made from descriptor files and recordings.
#pragma once

#include "sim/profile/profiles.h"

namespace sim {

// `content` is that of a file that is no profile. At least one device. Throws ProfileError. Pure.
[[nodiscard]] std::vector<Profile> devicesIn(std::string_view content, const std::string& file);

void applyOptions(UsbDeviceInfo& info, const ProfileOptions& options);

} // namespace sim
