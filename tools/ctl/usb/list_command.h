// kelprobectl list: the machine's HID devices.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addListCommand(Command program, Run& run);

} // namespace ctl
