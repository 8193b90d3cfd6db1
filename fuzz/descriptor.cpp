// A report descriptor, its lookups and its dump. Input: the descriptor's bytes.
#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "hid/model/TelephonyControls.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::span bytes(data, size);
    KX::Root root;
    root.Parse(bytes);

    const auto controls = KX::TelephonyControls::FromDescriptor(root);
    if (controls.hasMuteLed && !controls.hasOffHookLed)
        std::abort();
    KX::Bytes report;
    for (const uint32_t page : {0x01u, 0x0Bu, 0x0Cu, 0xFF00u})
        for (const uint32_t collection : {0x01u, 0x05u})
            for (uint32_t usage = 0; usage < 0x100; ++usage) {
                const bool input = root.FindInput(page, collection, usage, report);
                const bool output = root.FindOutput(page, collection, usage, report);
                if ((input || output) && (report.empty() || report.size() > 65535))
                    std::abort();
            }
    if (KX::DescriptorText(root, bytes).size() < 2)
        std::abort();
    return 0;
}
