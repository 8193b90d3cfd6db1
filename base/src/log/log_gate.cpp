#include "base/src/log/log_gate.h"

namespace rkb {

constinit std::array<std::atomic<uint8_t>, log_module_count> log_open_levels{log_debug + 1};

} // namespace rkb
