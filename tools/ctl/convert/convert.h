// kelprobectl convert: recordings in other formats.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addConvertCommand(Command program, Run& run);

} // namespace ctl
