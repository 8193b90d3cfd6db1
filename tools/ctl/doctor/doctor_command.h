// kelprobectl doctor: what stands between this user and the devices.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addDoctorCommand(CLI::App& app, Run& run);

} // namespace ctl
