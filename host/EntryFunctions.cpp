// The entry functions that make and free hosts and load the device filter.
#include "base/src/trace.h"
#include "host/CKXHostHidImp.h"
#include "host/DeviceFilter.h"

#include <new>

IKXHost* CreateKXHost(IKXHostCallback* callback)
{
    if (!callback)
        return nullptr;
    try {
        KX::DeviceFilter::Instance().FillDefaults();
        return new KX::CKXHostHidImp(callback);
    } catch (const std::bad_alloc&) {
        KX::Trace(KX::kTraceError, "no memory for a host");
        return nullptr;
    }
}

void DestroyKXHost(IKXHost* host)
{
    delete static_cast<KX::CKXHostHidImp*>(host);
}

int LoadHidFilterConfig(const char* jsonText, int length)
{
    constexpr int shortestDocument = 2; // "{}"
    if (!jsonText || length < shortestDocument)
        return 0;
    return KX::DeviceFilter::Instance().Load(jsonText) ? 1 : 0;
}
