// Parsed report descriptors of the devices met so far, for the life of the process.
#pragma once

#include "hid/model/Root.h"

#include <map>
#include <memory>

namespace KX {

// Used on the host's thread only.
class DescriptorCache {
public:
    // The one cache; made on first use with the tree of the built-in descriptor.
    static DescriptorCache& Instance();

    // The tree of a device, or null. Trees are never removed, so the pointer stays good.
    [[nodiscard]] const Root* Find(uint16_t vendorId, uint16_t productId) const;

    // Enters an empty tree for a device that has none yet; owned by the cache.
    Root& Add(uint16_t vendorId, uint16_t productId);

private:
    DescriptorCache();

    std::map<uint32_t, std::unique_ptr<Root>> trees_;
};

} // namespace KX
