// kelprobectl check: an automatic conformance run over the real stack.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addCheckCommand(Command program, Run& run);

} // namespace ctl
