// What kind of device a report descriptor describes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace ctl {

// The usage pages of the top-level collections, each once, in their order. Takes any bytes.
[[nodiscard]] std::vector<uint16_t> collectionPages(std::span<const uint8_t> descriptor);

} // namespace ctl
