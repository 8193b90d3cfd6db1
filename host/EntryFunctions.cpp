// The entry functions that make and free hosts and load the device filter.
#include "host/CKXHostHidImp.h"
#include "host/DeviceFilter.h"

IKXHost* CreateKXHost(IKXHostCallback* callback)
{
    if (!callback)
        return nullptr;
    KX::DeviceFilter::Instance().FillDefaults();
    return new KX::CKXHostHidImp(callback);
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
