// The commands that kelprobe-sim takes, line by line.
#pragma once

#include "sim/console/console_device.h"

#include <list>
#include <string_view>

namespace sim {

// The text of the command `help`.
std::string_view commandHelp();

class Console {
public:
    // At least one device.
    explicit Console(std::list<ConsoleDevice>& devices)
        : devices_(devices)
    {
    }

    // Executes a line: "2: mute" is for the second device, "mute" for the first. Prints one line if
    // it is not a command. Blank lines are ignored.
    void execute(std::string_view line);

private:
    std::list<ConsoleDevice>& devices_;
};

} // namespace sim
