// kelprobectl lamp: switches a lamp of a device.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addLampCommand(Command program, Run& run);

} // namespace ctl
