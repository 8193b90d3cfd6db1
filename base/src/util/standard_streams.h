// Guards the process against closed standard streams and closed pipes.
#pragma once

namespace rkb {

// Opens /dev/null for each of standard input, output and error that is closed. Otherwise the next
// file that is opened would take its number: a warning of Qt's could be written into the connection
// to the display or into a device. Also ignores SIGPIPE, so that writing into a closed pipe fails
// and does not end the process, which would leave the device as it is.
//
// Call it before anything opens a file.
void protect_standard_streams();

} // namespace rkb
