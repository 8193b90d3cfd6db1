// The device filter's JSON. Input: the text; a NUL in it ends it.
#include "fuzz/require.h"
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"

#include <exception>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    const size_t vendors = KX::VendorWhitelist().size();
    try {
        const int loaded = LoadHidFilterConfig(text.c_str(), static_cast<int>(text.size()));
        Require(loaded || KX::VendorWhitelist().size() == vendors);
    } catch (const std::exception&) {
        // JsonCpp's error for an element of the wrong type goes to the caller.
    }
    return 0;
}
