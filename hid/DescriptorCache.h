// Parsed report descriptors of the devices that were opened so far.
#pragma once

#include "hid/model/Root.h"

#include <map>
#include <memory>

namespace KX {

// Owns a tree for each pair of vendor and product id. For one thread, the host's; a tree itself may
// be read on any thread.
class DescriptorCache {
public:
    // The process-wide cache. It is made on first use and destroyed at exit.
    static DescriptorCache& Instance();

    // Has the tree of the built-in descriptor.
    DescriptorCache();
    DescriptorCache(const DescriptorCache&) = delete;
    DescriptorCache& operator=(const DescriptorCache&) = delete;

    // The tree of a device, or null. It stays where it is until Remove() or the cache's end.
    [[nodiscard]] const Root* Find(uint16_t vendorId, uint16_t productId) const;

    // Adds an empty tree for a device that must not have one yet. Throws std::bad_alloc, with the
    // cache unchanged.
    Root& Add(uint16_t vendorId, uint16_t productId);

    // Deletes the tree of a device, if there is one.
    void Remove(uint16_t vendorId, uint16_t productId);

private:
    std::map<uint32_t, std::unique_ptr<Root>> trees_;
};

} // namespace KX
