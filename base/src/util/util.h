// The running process, its threads and its program. Any thread.
#pragma once

#include <cstdint>
#include <string>

namespace rkb {

// The id of this process, read by the first call. After fork() the child returns the id of its
// parent if the parent had called this before. Such a child also writes to the parent's log file.
[[nodiscard]] uint32_t process_id();

// The kernel's id of the calling thread. It is read once per thread, and again after fork().
[[nodiscard]] uint32_t thread_id();

// The low 32 bits of the calling thread's pthread handle.
[[nodiscard]] uint32_t thread_handle();

// The program's name: its first argument, as the system keeps it, without directories. Empty when
// the system does not provide it.
[[nodiscard]] std::string program_name();

} // namespace rkb
