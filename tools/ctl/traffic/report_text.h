// Reports, and what belongs to them, as text. Pure.
#pragma once

#include "report/meaning.h"
#include "tools/ctl/cli/output.h"

#include <chrono>
#include <json/value.h>

namespace ctl {

using Words = std::vector<report::ReportWords::Word>;

// "1209:0001".
[[nodiscard]] std::string idsText(uint16_t vendorId, uint16_t productId);

// Seconds in a column: "    1.234".
[[nodiscard]] std::string timeText(std::chrono::microseconds time);

// "03 08 00"; only the first bytes of a long report and its length.
[[nodiscard]] std::string bytesText(std::span<const uint8_t> bytes);

// The words, separated by ", ". Those that changed are strong if `output` is not null and has
// colours, otherwise a * follows them. "nothing on" if there are none.
[[nodiscard]] std::string wordsText(const Words& words, const Output* output);

// The bytes in a column, then the words.
[[nodiscard]] std::string reportText(
    std::span<const uint8_t> bytes, const Words& words, const Output* output);

// Sets the members "meaning" and "changed", arrays of words.
void addWords(Json::Value& json, const Words& words);

} // namespace ctl
