// Formatting of the dump's lines.
#pragma once

#include <string>

namespace KX {

// As sprintf, cut at 1,023 characters.
[[gnu::format(printf, 1, 2)]] [[nodiscard]] std::string DumpText(const char* format, ...);

} // namespace KX
