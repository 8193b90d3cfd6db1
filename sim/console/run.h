// What the commands of kelprobe-sim have in common.
#pragma once

#include <functional>
#include <stdexcept>

namespace CLI {
class App;
}

namespace sim {

// The command that was chosen, with its options. Returns the exit status. May throw.
using Run = std::function<int()>;

// A mistake in the command line. what() is one line.
class WrongUse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace sim
