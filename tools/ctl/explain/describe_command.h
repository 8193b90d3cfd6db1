// kelprobectl describe: what Kelprobe makes of a report descriptor.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addDescribeCommand(Command program, Run& run);

} // namespace ctl
