#include "tools/ctl/calls/usb_calls.h"

#include "tools/ctl/calls/next_function.h"

#include <string.h>

enum {
    TO_INTERFACE_IN = 0x81, /* device to host, standard, interface */
    DESCRIPTOR_TIMEOUT_MS = 1000,

    /* HID descriptor (USB Device Class Definition for HID 1.11, 6.2.1). */
    ENTRY_COUNT_OFFSET = 5,
    FIRST_ENTRY_OFFSET = 6,
    ENTRY_SIZE = 3
};

static _Thread_local struct usb_activity activity;

/* The report descriptor that this thread has read last. */
static _Thread_local struct {
    uint8_t bus;
    uint8_t address; /* a device that is plugged in gets another one than before */
    uint16_t interface;
    size_t size; /* 0 if there is none */
    uint8_t bytes[MAX_REPORT_DESCRIPTOR];
} seen;

struct usb_activity* begin_usb_activity(enum usb_call call)
{
    activity = (struct usb_activity){.call = call, .interface = -1};
    return &activity;
}

struct usb_activity* usb_activity(void)
{
    return &activity;
}

static int noted(int result)
{
    if (activity.call != USB_OUTSIDE && result < 0)
        activity.error = result;
    return result;
}

/* The functions that are only called. */
DECLARE_NEXT(libusb_get_device);
DECLARE_NEXT(libusb_get_device_descriptor);
DECLARE_NEXT(libusb_get_bus_number);
DECLARE_NEXT(libusb_get_device_address);
DECLARE_NEXT(libusb_get_active_config_descriptor);
DECLARE_NEXT(libusb_free_config_descriptor);

/* The wrappers. */
DECLARE_NEXT(libusb_init);
DECLARE_NEXT(libusb_open);
DECLARE_NEXT(libusb_wrap_sys_device);
DECLARE_NEXT(libusb_close);
DECLARE_NEXT(libusb_detach_kernel_driver);
DECLARE_NEXT(libusb_claim_interface);
DECLARE_NEXT(libusb_control_transfer);
DECLARE_NEXT(libusb_interrupt_transfer);
DECLARE_NEXT(libusb_submit_transfer);

EXPORT int libusb_init(libusb_context** context)
{
    return noted(NEXT(libusb_init)(context));
}

static void note_opened(libusb_device* device, libusb_device_handle* handle, const void* caller)
{
    if (activity.call != USB_OPENING)
        return;
    activity.device = handle ? add_open_device(handle) : NULL;
    struct libusb_device_descriptor descriptor;
    if (NEXT_FOR(caller, libusb_get_device_descriptor)(device, &descriptor) == LIBUSB_SUCCESS) {
        activity.vendor_id = descriptor.idVendor;
        activity.product_id = descriptor.idProduct;
    }
}

EXPORT int libusb_open(libusb_device* device, libusb_device_handle** handle)
{
    const void* const caller = CALLER;
    const int result = noted(NEXT(libusb_open)(device, handle));
    note_opened(device, result == LIBUSB_SUCCESS ? *handle : NULL, caller);
    return result;
}

EXPORT int libusb_wrap_sys_device(
    libusb_context* context, intptr_t number, libusb_device_handle** handle)
{
    const void* const caller = CALLER;
    const int result = noted(NEXT(libusb_wrap_sys_device)(context, number, handle));
    if (result == LIBUSB_SUCCESS)
        note_opened(NEXT_FOR(caller, libusb_get_device)(*handle), *handle, caller);
    return result;
}

EXPORT void libusb_close(libusb_device_handle* handle)
{
    struct open_device* const device = find_usb(handle);
    if (device && device == activity.device) {
        activity.device = NULL;
        remove_open_device(device);
    } else if (device) {
        atomic_store(&device->usb, NULL);
    }
    NEXT(libusb_close)(handle);
}

EXPORT int libusb_detach_kernel_driver(libusb_device_handle* handle, int interface)
{
    return noted(NEXT(libusb_detach_kernel_driver)(handle, interface));
}

EXPORT int libusb_claim_interface(libusb_device_handle* handle, int interface)
{
    activity.interface = interface;
    return noted(NEXT(libusb_claim_interface)(handle, interface));
}

/* Whether `handle` and `interface` are the ones in `seen`. */
static bool find_seen(libusb_device_handle* handle, uint16_t interface, const void* caller)
{
    libusb_device* const device = NEXT_FOR(caller, libusb_get_device)(handle);
    const uint8_t bus = NEXT_FOR(caller, libusb_get_bus_number)(device);
    const uint8_t address = NEXT_FOR(caller, libusb_get_device_address)(device);
    if (seen.size > 0 && seen.bus == bus && seen.address == address && seen.interface == interface)
        return true;
    seen.bus = bus;
    seen.address = address;
    seen.interface = interface;
    seen.size = 0;
    return false;
}

EXPORT int libusb_control_transfer(libusb_device_handle* handle, uint8_t type, uint8_t request,
    uint16_t value, uint16_t index, unsigned char* data, uint16_t length, unsigned timeout)
{
    const void* const caller = CALLER;
    const int result
        = NEXT(libusb_control_transfer)(handle, type, request, value, index, data, length, timeout);
    if (type == TO_INTERFACE_IN && request == LIBUSB_REQUEST_GET_DESCRIPTOR
        && value >> 8 == LIBUSB_DT_REPORT && result > 0 && result <= MAX_REPORT_DESCRIPTOR) {
        (void)find_seen(handle, index, caller);
        seen.size = (size_t)result;
        memcpy(seen.bytes, data, seen.size);
    }
    /* While hidapi opens a device, it only reads strings, and does without one that fails. */
    return activity.call == USB_OPENING ? result : noted(result);
}

EXPORT int libusb_interrupt_transfer(libusb_device_handle* handle, unsigned char endpoint,
    unsigned char* data, int length, int* transferred, unsigned timeout)
{
    return noted(
        NEXT(libusb_interrupt_transfer)(handle, endpoint, data, length, transferred, timeout));
}

/* Called by the thread that hidapi starts for each device. */
EXPORT int libusb_submit_transfer(struct libusb_transfer* transfer)
{
    const bool reads = transfer->type == LIBUSB_TRANSFER_TYPE_INTERRUPT
        && (transfer->endpoint & LIBUSB_ENDPOINT_DIR_MASK) == LIBUSB_ENDPOINT_IN;
    struct open_device* const device = reads ? find_usb(transfer->dev_handle) : NULL;
    const int result = NEXT(libusb_submit_transfer)(transfer);
    if (device) {
        atomic_store(&device->reading, transfer);
        atomic_store(&device->submit_error, result);
    }
    return result;
}

int reading_error(const struct open_device* device)
{
    const int submit_error = atomic_load(&device->submit_error);
    if (submit_error < 0)
        return submit_error;
    const struct libusb_transfer* const transfer = atomic_load(&device->reading);
    const bool gone = transfer && transfer->status == LIBUSB_TRANSFER_NO_DEVICE;
    return gone ? LIBUSB_ERROR_NO_DEVICE : 0;
}

/* The length that the interface announces for its report descriptor, 0 if it announces none. */
static uint16_t announced_length(const struct libusb_interface_descriptor* interface)
{
    const unsigned char* const extra = interface->extra;
    const int count = interface->extra_length > ENTRY_COUNT_OFFSET ? extra[ENTRY_COUNT_OFFSET] : 0;
    for (int i = 0; i < count; ++i) {
        const int offset = FIRST_ENTRY_OFFSET + i * ENTRY_SIZE;
        if (offset + ENTRY_SIZE > interface->extra_length)
            return 0;
        if (extra[offset] == LIBUSB_DT_REPORT)
            return (uint16_t)(extra[offset + 1] | extra[offset + 2] << 8);
    }
    return 0;
}

static uint16_t descriptor_length(libusb_device_handle* handle, int interface, const void* caller)
{
    libusb_device* const device = NEXT_FOR(caller, libusb_get_device)(handle);
    struct libusb_config_descriptor* configuration = NULL;
    if (NEXT_FOR(caller, libusb_get_active_config_descriptor)(device, &configuration) < 0)
        return 0;
    uint16_t length = 0;
    for (int i = 0; i < configuration->bNumInterfaces && length == 0; ++i)
        for (int j = 0; j < configuration->interface[i].num_altsetting && length == 0; ++j)
            if (configuration->interface[i].altsetting[j].bInterfaceNumber == interface)
                length = announced_length(&configuration->interface[i].altsetting[j]);
    NEXT_FOR(caller, libusb_free_config_descriptor)(configuration);
    return length;
}

size_t read_report_descriptor(uint8_t bytes[MAX_REPORT_DESCRIPTOR], const void* caller)
{
    libusb_device_handle* const handle
        = activity.device ? atomic_load(&activity.device->usb) : NULL;
    if (!handle || activity.interface < 0)
        return 0;
    const uint16_t interface = (uint16_t)activity.interface;
    if (find_seen(handle, interface, caller)) {
        memcpy(bytes, seen.bytes, seen.size);
        return seen.size;
    }
    const uint16_t length = descriptor_length(handle, interface, caller);
    if (length == 0 || length > MAX_REPORT_DESCRIPTOR)
        return 0;
    const int result = NEXT_FOR(caller, libusb_control_transfer)(handle, TO_INTERFACE_IN,
        LIBUSB_REQUEST_GET_DESCRIPTOR, LIBUSB_DT_REPORT << 8, interface, bytes, length,
        DESCRIPTOR_TIMEOUT_MS);
    return result > 0 ? (size_t)result : 0;
}
