// kelprobectl doctor: what stands between this user and the devices.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addDoctorCommand(Command program, Run& run);

} // namespace ctl
