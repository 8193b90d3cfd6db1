// Devices made from descriptor files and recordings.
#pragma once

#include "sim/profile/profiles.h"

namespace sim {

// `content` is that of a file that is no profile. At least one device. Throws ProfileError. Pure.
[[nodiscard]] std::vector<Profile> devicesIn(std::string_view content, const std::string& file);

// The device that has the descriptor with this index, from 0, in the file, and whose panel has the
// controls of that descriptor's interface. There must be such a descriptor. Throws ProfileError.
// Pure.
[[nodiscard]] Profile deviceOfDescriptor(
    std::string_view content, const std::string& file, size_t index);

void applyOptions(UsbDeviceInfo& info, const ProfileOptions& options);

} // namespace sim
