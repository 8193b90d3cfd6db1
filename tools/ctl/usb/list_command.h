// kelprobectl list: the machine's HID devices.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addListCommand(CLI::App& app, Run& run);

} // namespace ctl
