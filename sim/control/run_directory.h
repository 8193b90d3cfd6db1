// The directory of a running bench: its lock, its control socket and the emulated bus.
#pragma once

#include "sim/bus/file_descriptor.h"

#include <filesystem>

namespace sim {

// "kelprobe-sim.XXXXXX" below TMPDIR (or /tmp), which only its user may enter. The file "lock" in
// it is locked while the bench lives, so that another one can see whether its directory was left
// behind.
class RunDirectory {
public:
    // Throws std::runtime_error.
    RunDirectory();
    ~RunDirectory(); // removes it with its contents
    RunDirectory(const RunDirectory&) = delete;
    RunDirectory& operator=(const RunDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path socket() const;
    // The file for the program's ProcessGroup, by which a later bench finds it.
    std::filesystem::path group() const;

private:
    std::filesystem::path path_;
    FileDescriptor lock_;
};

// Removes what benches of this user that were killed have left below TMPDIR: the processes that
// were started with them, which are killed, and their directories. Failures are ignored.
void removeDeadBenches();

} // namespace sim
