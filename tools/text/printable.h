// Text from devices and files, made safe to print.
#pragma once

#include <string>
#include <string_view>

namespace text {

// `text`, which should be UTF-8, with each byte of control characters, line and paragraph
// separators, characters that change the direction of writing, U+FFFE, U+FFFF and invalid UTF-8
// replaced by "\xNN": it cannot move the cursor, begin a new line or reverse the text after it, and
// it may stand in XML. Pure.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace text
