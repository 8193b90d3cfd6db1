// kelprobectl meeting: the meeting of the window in a terminal.
#pragma once

#include "tools/ctl/cli/command.h"

namespace ctl {

void addMeetingCommand(Command program, Run& run);

} // namespace ctl
