// The device filter's JSON. Input: the text; a NUL in it ends it.
#include "host/DeviceFilter.h"
#include "host/IKXHost.h"

#include <cstdlib>
#include <exception>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    const size_t vendors = KX::VendorWhitelist().size();
    try {
        const int loaded = LoadHidFilterConfig(text.c_str(), static_cast<int>(text.size()));
        if (!loaded && KX::VendorWhitelist().size() != vendors)
            std::abort();
    } catch (const std::exception&) {
        // JsonCpp's errors are the caller's.
    }
    return 0;
}
