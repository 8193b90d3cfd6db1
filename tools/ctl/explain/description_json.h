// A description for programs.
#pragma once

#include "tools/ctl/explain/description.h"

namespace Json {
class Value;
}

namespace ctl {

// As documented in docs/kelprobectl-json.md. Pure.
[[nodiscard]] Json::Value toJson(const Description& description);

// {"hookSwitch": {"report": "030100", "reason": null, ...}, ...}
[[nodiscard]] Json::Value toJson(const ControlMap& map);

} // namespace ctl
