// Sets of allowed and refused devices. Selecting a device does not use them: no policy has been
// defined for that.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

namespace KX {

// Vendor id in the high 16 bits, product id in the low 16 bits.
[[nodiscard]] constexpr uint32_t PackVidPid(uint16_t vendorId, uint16_t productId)
{
    return uint32_t{vendorId} << 16 | productId;
}

// The sets grow and never shrink. Not guarded: fill the process-wide instance on the thread that
// creates hosts.
class DeviceFilter {
public:
    using IdSet = std::unordered_set<uint32_t>;
    using NameSet = std::unordered_set<std::string>;

    // The process-wide filter. It exists from before main() to exit.
    static DeviceFilter& Instance();

    // All sets are empty.
    DeviceFilter();
    DeviceFilter(const DeviceFilter&) = delete;
    DeviceFilter& operator=(const DeviceFilter&) = delete;

    [[nodiscard]] const IdSet& VendorWhitelist() const { return vendorWhitelist; }
    [[nodiscard]] const IdSet& VidPidWhitelist() const { return vidPidWhitelist; } // packed
    [[nodiscard]] const IdSet& VidPidBlacklist() const { return vidPidBlacklist; } // packed
    [[nodiscard]] const NameSet& NameBlacklist() const { return nameBlacklist; }

    // Adds the built-in entries to each whitelist that is empty. Only the first call that succeeds
    // does anything. This is deliberate: lists loaded before it replace the built-in entries, lists
    // loaded after it extend them. Throws std::bad_alloc, with all sets unchanged.
    void FillDefaults();

    // Adds the lists of a JSON document; see LoadHidFilterConfig() for its rules. False, with all
    // sets unchanged, when the text does not parse.
    [[nodiscard]] bool Load(const char* jsonText);

private:
    IdSet vendorWhitelist;
    IdSet vidPidWhitelist;
    IdSet vidPidBlacklist;
    NameSet nameBlacklist;
    bool defaultsFilled = false;
};

} // namespace KX
