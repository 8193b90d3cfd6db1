// The hash behind the index of an ini file's names.
#pragma once

#include <cstdint>
#include <string_view>

namespace rkb {

// The same for the same bytes within a process only: the seed is drawn at random when the process
// first hashes, so that no file can be written whose names all collide. Any thread.
uint32_t ini_hash(std::string_view name);

} // namespace rkb
