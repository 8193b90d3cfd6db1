#include "hid/DescriptorCache.h"

#include "hid/model/BuiltInDescriptor.h"

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
    auto& tree = trees_[Key(vendorId, productId)];
    tree = std::make_unique<Root>();
    return *tree;
}

} // namespace KX
