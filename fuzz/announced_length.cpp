// The length that a HID descriptor announces for its report descriptor. Input: the class-specific
// bytes of an interface.
#include "fuzz/require.h"
#include "hid/usb/DescriptorRetrieval.h"

#include <algorithm>
#include <vector>

namespace {

// Computes the same from a list of all class descriptors.
std::optional<uint16_t> NaiveLength(const std::vector<unsigned>& bytes)
{
    struct Entry {
        unsigned type;
        unsigned length;
    };
    std::vector<Entry> entries;
    for (size_t at = 6; at + 2 < bytes.size() && entries.size() < bytes[5]; at += 3)
        entries.push_back({bytes[at], bytes[at + 1] + 256 * bytes[at + 2]});
    const auto report = std::find_if(
        entries.begin(), entries.end(), [](const Entry& entry) { return entry.type == 0x22; });
    if (report == entries.end())
        return std::nullopt;
    return static_cast<uint16_t>(report->length);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Require(KX::AnnouncedDescriptorLength({data, size})
        == NaiveLength(std::vector<unsigned>(data, data + size)));
    return 0;
}
