// Who is running: the process, its threads and its program.
#pragma once

#include <cstdint>
#include <string>

namespace rkb {

// Read once: a process made by fork() alone goes on under its parent's id, as it goes on in its
// parent's log file.
[[nodiscard]] uint32_t process_id();

// The kernel's id of the calling thread; read once per thread.
[[nodiscard]] uint32_t thread_id();

// The low 32 bits of the calling thread's pthread handle.
[[nodiscard]] uint32_t thread_handle();

// The last component of the path under which the program was started (the first argument that the
// system keeps of it); empty when the system does not tell.
[[nodiscard]] std::string program_name();

} // namespace rkb
