// Where hosts begin and end.
#include "host/CKXHostHidImp.h"

#include <new>

IKXHost* CreateKXHost(IKXHostCallback* callback)
{
    if (!callback)
        return nullptr;
    auto* host = new (std::nothrow) KX::CKXHostHidImp;
    if (host)
        host->Init(callback);
    return host;
}

void DestroyKXHost(IKXHost* host)
{
    delete static_cast<KX::CKXHostHidImp*>(host);
}
