// Reading of whole files. For the readers of this folder.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace report {

// Throws a DescriptorError "FILE: REASON" if the file cannot be read or has more than `maxSize`
// bytes, a number of whole MiB. Takes anything that can be read to its end, also a pipe. Blocks
// while it reads.
[[nodiscard]] std::string readFile(const std::filesystem::path& file, size_t maxSize);

} // namespace report
