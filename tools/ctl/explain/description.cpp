#include "tools/ctl/explain/description.h"

#include "hid/model/BuiltInDescriptor.h"
#include "tools/ctl/explain/consequences.h"

#include <algorithm>

namespace ctl {
namespace {

bool usesBuiltIn(const DescriptorOrigin& origin)
{
    return origin.vendorId == KX::kBuiltInVendorId && origin.productId == KX::kBuiltInProductId;
}

} // namespace

std::span<const uint8_t> stackDescriptor(const DescriptorOrigin& origin)
{
    return usesBuiltIn(origin) ? std::span<const uint8_t>(KX::kBuiltInDescriptor) : origin.bytes;
}

std::vector<std::string> remarksOn(const DescriptorOrigin& origin)
{
    std::vector<std::string> remarks;
    if (origin.device && !origin.device->firstOfItsIds)
        remarks.emplace_back("An earlier interface has the same ids. Kelprobe opens only the first "
                             "one, see kelprobectl list.");
    if (usesBuiltIn(origin)) {
        const bool same = std::ranges::equal(origin.bytes, KX::kBuiltInDescriptor);
        remarks.push_back(std::string("Kelprobe does not read the descriptor of this device. It "
                                      "uses a built-in one, which is ")
            + (same ? "the same." : "different: the controls are those of the built-in one."));
    } else if (origin.bytes.size() > kMaxReadableSize) {
        remarks.emplace_back("Kelprobe cannot read a descriptor of more than 4096 bytes from a "
                             "device. It opens such a device without controls.");
    }
    return remarks;
}

Description::Description(DescriptorOrigin from)
    : origin(std::move(from))
    , names(report::UsageNames::load())
    , items(report::annotate(origin.bytes, names))
    , layout(report::readLayout(origin.bytes))
    , controls(stackDescriptor(origin), layout, names)
    , meeting(meetingConsequences(controls, layout, names))
    , remarks(remarksOn(origin))
{
}

} // namespace ctl
