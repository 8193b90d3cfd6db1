// The parsed report descriptors of the devices that have been opened.
#pragma once

#include "hid/model/Root.h"

#include <map>
#include <memory>

namespace KX {

// Owns a tree for each pair of vendor and product id. Only the host's thread may use the cache; any
// thread may read a tree.
class DescriptorCache {
public:
    // The process-wide cache. It is made on first use and destroyed at exit.
    static DescriptorCache& Instance();

    // At first holds only the tree of the built-in descriptor.
    DescriptorCache();
    DescriptorCache(const DescriptorCache&) = delete;
    DescriptorCache& operator=(const DescriptorCache&) = delete;

    // The tree of a device, or null. Valid until Remove() or the destruction of the cache.
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
