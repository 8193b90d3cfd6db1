// The commands that kelprobe-sim takes, line by line.
#pragma once

#include "sim/console/station.h"

#include <list>
#include <string_view>

namespace sim {

// What `help` and "kelprobe-sim help" say about the commands.
std::string_view commandHelp();

class Console {
public:
    explicit Console(std::list<Station>& stations)
        : stations_(stations)
    {
    }

    // "2: mute" is for the second device, "mute" for the first. A line that
    // makes no sense is answered with one line; an empty one with none.
    void execute(std::string_view line);

private:
    std::list<Station>& stations_;
};

} // namespace sim
