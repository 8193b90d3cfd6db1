#include "tools/ctl/calls/open_devices.h"

#include <stdlib.h>
#include <unistd.h>

/* Entries are reused but never freed, so that any thread can walk along the list at any time. */
static _Atomic(struct open_device*) devices;
static atomic_uint last_number;

struct open_device* find_hid(hid_device* hid)
{
    struct open_device* device = hid ? atomic_load(&devices) : NULL;
    while (device && atomic_load(&device->hid) != hid)
        device = device->next;
    return device;
}

struct open_device* find_usb(libusb_device_handle* usb)
{
    struct open_device* device = usb ? atomic_load(&devices) : NULL;
    while (device && atomic_load(&device->usb) != usb)
        device = device->next;
    return device;
}

static struct open_device* take_unused(void)
{
    for (struct open_device* device = atomic_load(&devices); device; device = device->next) {
        bool unused = false;
        if (atomic_compare_exchange_strong(&device->used, &unused, true))
            return device;
    }
    struct open_device* const device = calloc(1, sizeof *device);
    if (!device)
        return NULL;
    atomic_store(&device->used, true);
    device->next = atomic_load(&devices);
    while (!atomic_compare_exchange_weak(&devices, &device->next, device)) { }
    return device;
}

struct open_device* add_open_device(libusb_device_handle* usb)
{
    struct open_device* const device = take_unused();
    if (device)
        atomic_store(&device->usb, usb);
    return device;
}

void set_opened(struct open_device* device, hid_device* hid)
{
    device->number = atomic_fetch_add(&last_number, 1) + 1;
    device->opener = (int32_t)getpid();
    atomic_store(&device->hid, hid);
}

void remove_open_device(struct open_device* device)
{
    atomic_store(&device->hid, NULL);
    atomic_store(&device->usb, NULL);
    atomic_store(&device->reading, NULL);
    atomic_store(&device->submit_error, 0);
    atomic_store(&device->used, false);
}
