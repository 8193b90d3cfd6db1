// kelprobectl trace: what a program and its devices send to each other.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addTraceCommand(Command program, Run& run);

} // namespace ctl
