// How the commands of kelprobectl end.
#pragma once

#include <stdexcept>
#include <string>

namespace ctl {

// Exit statuses. They are part of the program's interface.
enum ExitStatus : int {
    kFine = 0,
    kFellShort = 1, // the device does not do what it should
    kWrongUse = 2,  // a mistake on the command line or in a file
    kNoAccess = 3,  // no device, or a device, file or stream that cannot be used
};

// Ends the command with an exit status. what() is one line for standard error that names the remedy
// if there is one.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus exitStatus, const std::string& what)
        : std::runtime_error(what)
        , status(exitStatus)
    {
    }

    const ExitStatus status;
};

} // namespace ctl
