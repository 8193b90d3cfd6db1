#include "hid/DescriptorCache.h"

#include "hid/model/BuiltInDescriptor.h"

#include <cassert>

namespace KX {

namespace {

uint32_t Key(uint16_t vendorId, uint16_t productId)
{
    return uint32_t{vendorId} << 16 | productId;
}

} // namespace

DescriptorCache& DescriptorCache::Instance()
{
    static DescriptorCache cache;
    return cache;
}

DescriptorCache::DescriptorCache()
{
    Add(kBuiltInVendorId, kBuiltInProductId).Parse(kBuiltInDescriptor);
}

const Root* DescriptorCache::Find(uint16_t vendorId, uint16_t productId) const
{
    const auto found = trees_.find(Key(vendorId, productId));
    return found == trees_.end() ? nullptr : found->second.get();
}

Root& DescriptorCache::Add(uint16_t vendorId, uint16_t productId)
{
    auto tree = std::make_unique<Root>();
    const auto [entry, added] = trees_.emplace(Key(vendorId, productId), std::move(tree));
    assert(added);
    return *entry->second;
}

void DescriptorCache::Remove(uint16_t vendorId, uint16_t productId)
{
    trees_.erase(Key(vendorId, productId));
}

} // namespace KX
