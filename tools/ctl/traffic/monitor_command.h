// kelprobectl monitor: the input reports of a device as they arrive.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addMonitorCommand(CLI::App& app, Run& run);

} // namespace ctl
