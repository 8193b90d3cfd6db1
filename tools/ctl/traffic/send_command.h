// kelprobectl send: sends one report to a device.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addSendCommand(Command program, Run& run);

} // namespace ctl
