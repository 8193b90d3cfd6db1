// Process-wide sets for choosing among devices. They exist from before main() to exit, grow and
// never shrink. Selecting a device does not ask them: a policy that does is yet to come.
//
// Not guarded: fill them on the thread that creates hosts.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

namespace KX {

// Vendor id in the high 16 bits, product id in the low ones.
[[nodiscard]] constexpr uint32_t PackVidPid(uint16_t vendorId, uint16_t productId)
{
    return uint32_t{vendorId} << 16 | productId;
}

[[nodiscard]] const std::unordered_set<uint32_t>& VendorWhitelist();
[[nodiscard]] const std::unordered_set<uint32_t>& VidPidWhitelist(); // packed
[[nodiscard]] const std::unordered_set<uint32_t>& VidPidBlacklist(); // packed
[[nodiscard]] const std::unordered_set<std::string>& NameBlacklist();

// Adds the built-in entries to those whitelists that are empty; once per process, further calls do
// nothing. A configuration loaded before replaces the built-in entries by that; it is meant to.
void FillDefaultFilters();

} // namespace KX
