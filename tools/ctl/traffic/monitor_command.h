// kelprobectl monitor: the input reports of a device as they arrive.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addMonitorCommand(Command program, Run& run);

} // namespace ctl
