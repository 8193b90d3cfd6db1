// The diagnostic print of a report descriptor.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace KX {

class Root;

// Formats one line of the dump as sprintf does. Cut at 1,023 characters.
[[gnu::format(printf, 1, 2)]] [[nodiscard]] std::string DumpText(const char* format, ...);

// The bytes as a list of hexadecimal numbers, 16 a line, followed by the tree.
[[nodiscard]] std::string DescriptorText(const Root& root, std::span<const uint8_t> bytes);

// Prints DescriptorText() on standard output.
void DumpDescriptor(const Root& root, std::span<const uint8_t> bytes);

} // namespace KX
