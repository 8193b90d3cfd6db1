// The diagnostic print of a report descriptor.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace KX {

class Root;

// The bytes as a list of hexadecimal numbers, 16 a line, and the tree below it.
[[nodiscard]] std::string DescriptorText(const Root& root, std::span<const uint8_t> bytes);

// Prints that on standard output.
void DumpDescriptor(const Root& root, std::span<const uint8_t> bytes);

} // namespace KX
