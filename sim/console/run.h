// What the commands of kelprobe-sim have in common.
#pragma once

#include "tools/command_line/command.h"

#include <stdexcept>

namespace sim {

using command_line::Run; // may throw

// A mistake in the command line. what() is one line.
class WrongUse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace sim
