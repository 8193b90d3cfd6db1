// kelprobectl: shows, explains and checks the call controls of USB HID devices.
//
// Runs the commands that need neither Qt nor libpcap. Loading these takes longer than most
// commands, so whatever else is asked for, --help included, is left to the program kelprobectl-all.
#include "base/src/util/standard_streams.h"
#include "tools/ctl/cli/command.h"
#include "tools/ctl/doctor/doctor_command.h"
#include "tools/ctl/explain/describe_command.h"
#include "tools/ctl/trace/trace_command.h"
#include "tools/ctl/traffic/lamp_command.h"
#include "tools/ctl/traffic/monitor_command.h"
#include "tools/ctl/traffic/send_command.h"
#include "tools/ctl/usb/list_command.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace fs = std::filesystem;

namespace {

struct Command {
    std::string_view name;
    ctl::AddCommand add;
};

constexpr Command kCommands[] = {
    {"list", ctl::addListCommand},
    {"describe", ctl::addDescribeCommand},
    {"monitor", ctl::addMonitorCommand},
    {"trace", ctl::addTraceCommand},
    {"lamp", ctl::addLampCommand},
    {"send", ctl::addSendCommand},
    {"doctor", ctl::addDoctorCommand},
};

// Next to this program or, if that is installed, in the directory for such programs.
fs::path findAllCommands()
{
    const char* const name = "kelprobectl-all";
    std::error_code ignored;
    const fs::path directory = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    fs::path built = directory / name;
    return fs::exists(built, ignored) ? built : directory / KELPROBE_INSTALLED_PROGRAMS / name;
}

// Returns only if that is not possible.
int becomeAllCommands(char** argv)
{
    const fs::path program = findAllCommands();
    execv(program.c_str(), argv);
    std::fprintf(stderr, "kelprobectl: cannot run %s: %s; install Kelprobe again\n",
        program.c_str(), std::strerror(errno));
    return ctl::kNoAccess;
}

} // namespace

int main(int argc, char** argv)
{
    rkb::protect_standard_streams();
    const std::string_view name = argc > 1 ? argv[1] : "";
    for (const Command& command : kCommands)
        if (command.name == name)
            return ctl::runCommandLine(argc, argv, std::span(&command.add, 1));
    return becomeAllCommands(argv);
}
