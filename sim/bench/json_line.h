// JSON as it is written to the control socket.
#pragma once

#include <json/value.h>

#include <string>

namespace sim {

// One line without its end, of ASCII characters only. Numbers have at most six decimals.
[[nodiscard]] std::string jsonLine(const Json::Value& value);

} // namespace sim
