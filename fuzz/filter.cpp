// The device filter's JSON. Input: the text; a NUL in it ends it.
#include "fuzz/require.h"
#include "host/DeviceFilter.h"

#include <exception>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    KX::DeviceFilter filter;
    try {
        const bool loaded = filter.Load(text.c_str());
        const size_t entries = filter.VendorWhitelist().size() + filter.VidPidWhitelist().size()
            + filter.VidPidBlacklist().size() + filter.NameBlacklist().size();
        Require(loaded || entries == 0);
    } catch (const std::exception&) {
        // Load() passes on JsonCpp's error for an element of the wrong type.
    }
    return 0;
}
