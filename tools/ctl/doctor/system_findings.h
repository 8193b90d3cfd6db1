// What the machine and the session have to do with USB and the window.
#pragma once

#include "tools/ctl/doctor/finding.h"

namespace ctl {

// About the environment, the files and the libraries; not about devices.
[[nodiscard]] Findings systemFindings();

} // namespace ctl
