// kelprobectl check: an automatic conformance run over the real stack.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addCheckCommand(CLI::App& app, Run& run);

} // namespace ctl
