// Byte strings: descriptors, and reports as hidapi exchanges them, report id first.
#pragma once

#include <cstdint>
#include <vector>

namespace KX {

using Bytes = std::vector<uint8_t>;

} // namespace KX
