// Text of hidapi.
#pragma once

#include <string>

namespace ctl {

// Null-terminated UTF-32 as UTF-8. What is no character (a surrogate, a number too large) becomes
// U+FFFD. Null gives an empty text. Pure.
[[nodiscard]] std::string utf8(const wchar_t* text);

} // namespace ctl
