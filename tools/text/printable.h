// Text from devices and files, made safe to print.
#pragma once

#include <string>
#include <string_view>

namespace text {

// `text`, which should be UTF-8, with each control character, each byte that is not valid UTF-8 and
// U+FFFE and U+FFFF replaced by "\xNN": it cannot move the cursor or begin a new line, and it may
// stand in XML. Pure.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace text
