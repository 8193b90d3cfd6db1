// Who is running: the process, its threads and its program.
#pragma once

#include <cstdint>
#include <string>

namespace rkb {

// The id of this process. It is read once, by the first call: a process made by fork() returns the
// id of its parent if that had called this before. It also shares the parent's log file.
[[nodiscard]] uint32_t process_id();

// The kernel's id of the calling thread. It is read once per thread, and anew after fork().
[[nodiscard]] uint32_t thread_id();

// The low 32 bits of the calling thread's pthread handle.
[[nodiscard]] uint32_t thread_handle();

// The last component of the path under which the program was started (the first argument that the
// system keeps of it); empty when the system does not tell.
[[nodiscard]] std::string program_name();

} // namespace rkb
