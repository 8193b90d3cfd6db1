#include "sim/bus/usbfs_server.h"

#include <umockdev.h>

#include <stdexcept>

namespace sim {
namespace {

using SharedUsbfs = std::shared_ptr<Usbfs>;

SharedUsbfs& shared(gpointer data)
{
    return *static_cast<SharedUsbfs*>(data);
}

gboolean onIoctl(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer usbfs)
{
    shared(usbfs)->handleIoctl(client);
    return TRUE;
}

void onClientGone(gpointer usbfs, GObject* client)
{
    const std::unique_ptr<SharedUsbfs> owner(&shared(usbfs));
    (*owner)->removeClient(reinterpret_cast<UMockdevIoctlClient*>(client));
}

// umockdev never emits the "client-vanished" signal. Instead it destroys the client's object.
void onClientConnected(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer usbfs)
{
    auto owner = std::make_unique<SharedUsbfs>(shared(usbfs));
    g_object_weak_ref(reinterpret_cast<GObject*>(client), onClientGone, owner.release());
}

void connect(
    UMockdevIoctlBase* handler, const char* signal, GCallback callback, const SharedUsbfs& usbfs)
{
    const auto release = [](gpointer data, GClosure*) { delete &shared(data); };
    auto owner = std::make_unique<SharedUsbfs>(usbfs);
    g_signal_connect_data(handler, signal, callback, owner.release(), release, GConnectFlags{});
}

} // namespace

void serveIoctls(
    UMockdevTestbed* testbed, const std::string& node, const std::shared_ptr<Usbfs>& usbfs)
{
    UMockdevIoctlBase* const handler = umockdev_ioctl_base_new();
    connect(handler, "handle-ioctl", reinterpret_cast<GCallback>(onIoctl), usbfs);
    connect(handler, "client-connected", reinterpret_cast<GCallback>(onClientConnected), usbfs);
    const bool attached = umockdev_testbed_attach_ioctl(testbed, node.c_str(), handler, nullptr);
    g_object_unref(handler); // the testbed has its own reference
    if (!attached)
        throw std::runtime_error("cannot answer ioctls of " + node);
}

} // namespace sim
