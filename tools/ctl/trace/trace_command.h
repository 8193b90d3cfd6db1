// kelprobectl trace: what a program and its devices send to each other.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addTraceCommand(CLI::App& app, Run& run);

} // namespace ctl
