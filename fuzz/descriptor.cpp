// A report descriptor: its lookups and its dump. Input: the descriptor's bytes.
#include "fuzz/naive_descriptor.h"
#include "fuzz/require.h"
#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyControls.h"

#include <string>

namespace {

using Controls = std::map<naive::Lookup, naive::Control>;

void CheckLookup(const KX::Root& root, const Controls& controls, const naive::Lookup& lookup)
{
    const auto& [direction, page, collectionUsage, usage] = lookup;
    KX::Bytes report;
    const bool found = direction == naive::Direction::Input
        ? root.FindInput(page, collectionUsage, usage, report)
        : root.FindOutput(page, collectionUsage, usage, report);
    const auto expected = controls.find(lookup);
    Require(found == (expected != controls.end()));
    Require(found ? report == naive::Template(expected->second) : report.empty());
}

// Looks up all controls that exist, also in the other direction, and the usual usages of a headset.
void CheckLookups(const KX::Root& root, const Controls& controls)
{
    constexpr uint32_t usageCount = 0x40;
    for (const naive::Direction direction : {naive::Direction::Input, naive::Direction::Output}) {
        for (const auto& [lookup, control] : controls)
            CheckLookup(
                root, controls, {direction, lookup.page, lookup.collectionUsage, lookup.usage});
        for (uint32_t usage = 0; usage < usageCount; ++usage)
            CheckLookup(root, controls, {direction, 0x0B, 0x05, usage});
    }
}

// The dump begins with the bytes, from which they can be read again.
void CheckDump(const KX::Root& root, std::span<const uint8_t> bytes)
{
    const std::string text = KX::DescriptorText(root, bytes);
    const size_t end = text.find('}');
    size_t at = 0;
    for (const uint8_t byte : bytes) {
        at = text.find("0x", at);
        Require(at < end && std::strtoul(&text[at], nullptr, 16) == byte);
        ++at;
    }
    Require(text.find("0x", at) >= end);
    Require(text.find("}\n----------------Root(") == end);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t maxSize = 4096; // Linux does not read longer descriptors
    if (size > maxSize)
        return 0;
    const std::span bytes(data, size);
    KX::Root root;
    root.Parse(bytes);
    CheckLookups(root, naive::ReadDescriptor(bytes));
    if (size % 8 == 0) // it takes longer than everything else
        CheckDump(root, bytes);

    const auto controls = KX::TelephonyControls::FromDescriptor(root);
    Require(!controls.hasMuteLed || controls.hasOffHookLed);
    return 0;
}
