// kelprobectl-all: kelprobectl with all its commands. kelprobectl starts it, see main.cpp.
#include "base/src/util/standard_streams.h"
#include "tools/ctl/check/check.h"
#include "tools/ctl/cli/command.h"
#include "tools/ctl/convert/convert.h"
#include "tools/ctl/doctor/doctor_command.h"
#include "tools/ctl/explain/describe_command.h"
#include "tools/ctl/meeting/meeting.h"
#include "tools/ctl/trace/trace_command.h"
#include "tools/ctl/traffic/lamp_command.h"
#include "tools/ctl/traffic/monitor_command.h"
#include "tools/ctl/traffic/send_command.h"
#include "tools/ctl/usb/list_command.h"

#include <array>

namespace {

// In the order of --help.
constexpr std::array kCommands{
    ctl::addListCommand,
    ctl::addDescribeCommand,
    ctl::addMonitorCommand,
    ctl::addMeetingCommand,
    ctl::addTraceCommand,
    ctl::addLampCommand,
    ctl::addSendCommand,
    ctl::addCheckCommand,
    ctl::addDoctorCommand,
    ctl::addConvertCommand,
};

} // namespace

int main(int argc, char** argv)
{
    rkb::protect_standard_streams();
    return ctl::runCommandLine(argc, argv, kCommands);
}
