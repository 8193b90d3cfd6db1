#include "tools/ctl/calls/hid_calls.h"

#include "tools/ctl/calls/next_function.h"
#include "tools/ctl/calls/usb_calls.h"

#include <errno.h>
#include <hidapi/hidapi_libusb.h>
#include <pthread.h>
#include <time.h>

static _Atomic(hid_call_observer) current_observer;

void hid_calls_observe(hid_call_observer observer)
{
    atomic_store(&current_observer, observer);
}

static int64_t microseconds(clockid_t clock)
{
    struct timespec time;
    clock_gettime(clock, &time);
    return (int64_t)time.tv_sec * 1000000 + time.tv_nsec / 1000;
}

/* hidapi's functions call each other. Only the outermost call of a thread is reported. */
static _Thread_local int depth;

struct observation {
    hid_call_observer observer; /* null if the call is not reported */
    int64_t start;              /* microseconds on CLOCK_MONOTONIC */
    struct hid_call call;
};

static struct observation begin(
    enum usb_call usb, enum hid_call_kind kind, const struct open_device* device)
{
    struct observation observation = {.call = {.kind = kind}};
    if (++depth > 1)
        return observation;
    begin_usb_activity(usb);
    observation.observer = atomic_load(&current_observer);
    if (!observation.observer)
        return observation;
    if (device) {
        observation.call.device = device->number;
        observation.call.opener = device->opener;
    }
    observation.call.begin = microseconds(CLOCK_REALTIME);
    observation.start = microseconds(CLOCK_MONOTONIC);
    return observation;
}

/* hidapi does not expect that a thread is cancelled here, with a report that it has read. */
static void report(const struct observation* observation)
{
    int state = 0;
    const int error = errno;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    observation->observer(&observation->call);
    pthread_setcancelstate(state, NULL);
    errno = error;
}

static void end(struct observation* observation, int result)
{
    if (--depth > 0)
        return;
    struct usb_activity* const activity = usb_activity();
    if (observation->observer) {
        observation->call.duration = microseconds(CLOCK_MONOTONIC) - observation->start;
        observation->call.result = result;
        if (result < 0 && observation->call.usb_error == 0)
            observation->call.usb_error = activity->error;
        report(observation);
    }
    activity->call = USB_OUTSIDE;
}

static _Thread_local unsigned opens; /* calls of end_open() */

static void report_descriptor(struct observation* observation, const void* caller)
{
    uint8_t descriptor[MAX_REPORT_DESCRIPTOR];
    const int error = errno;
    observation->call.kind = HID_CALL_DESCRIPTOR;
    observation->call.size = read_report_descriptor(descriptor, caller);
    observation->call.data = descriptor;
    report(observation);
    errno = error;
}

static hid_device* end_open(struct observation* observation, hid_device* hid, const void* caller)
{
    ++opens;
    struct usb_activity* const activity = usb_activity();
    struct open_device* device = activity->device;
    struct hid_call* const call = &observation->call;
    if (!hid && device)
        remove_open_device(device);
    if (hid && !device)
        device = add_open_device(NULL);
    if (hid && device) {
        set_opened(device, hid);
        call->device = device->number;
        call->opener = device->opener;
    }
    if (activity->vendor_id != 0 || activity->product_id != 0) {
        call->vendor_id = activity->vendor_id;
        call->product_id = activity->product_id;
    }
    end(observation, hid ? 0 : -1);
    if (hid && observation->observer)
        report_descriptor(observation, caller);
    activity->device = NULL;
    return hid;
}

DECLARE_NEXT(hid_open);
DECLARE_NEXT(hid_open_path);
DECLARE_NEXT(hid_libusb_wrap_sys_device);
DECLARE_NEXT(hid_close);

EXPORT hid_device* hid_open(
    unsigned short vendor_id, unsigned short product_id, const wchar_t* serial_number)
{
    const unsigned before = opens;
    struct observation observation = begin(USB_OPENING, HID_CALL_OPEN, NULL);
    observation.call.vendor_id = vendor_id;
    observation.call.product_id = product_id;
    __typeof__(&hid_open) next = NEXT(hid_open);
    --depth; /* report the call of hid_open_path() in its place, which has the path */
    hid_device* const hid = next ? next(vendor_id, product_id, serial_number) : NULL;
    if (opens != before)
        return hid;
    ++depth;
    return end_open(&observation, hid, CALLER);
}

EXPORT hid_device* hid_open_path(const char* path)
{
    struct observation observation = begin(USB_OPENING, HID_CALL_OPEN, NULL);
    observation.call.path = path;
    __typeof__(&hid_open_path) next = NEXT(hid_open_path);
    return end_open(&observation, next ? next(path) : NULL, CALLER);
}

EXPORT hid_device* hid_libusb_wrap_sys_device(intptr_t sys_device, int interface)
{
    struct observation observation = begin(USB_OPENING, HID_CALL_OPEN, NULL);
    __typeof__(&hid_libusb_wrap_sys_device) next = NEXT(hid_libusb_wrap_sys_device);
    return end_open(&observation, next ? next(sys_device, interface) : NULL, CALLER);
}

EXPORT void hid_close(hid_device* hid)
{
    struct open_device* const device = find_hid(hid);
    struct observation observation = begin(USB_OUTSIDE, HID_CALL_CLOSE, device);
    if (device)
        atomic_store(&device->hid, NULL); /* hidapi may give another device this address */
    __typeof__(&hid_close) next = NEXT(hid_close);
    if (next)
        next(hid);
    if (device)
        remove_open_device(device);
    end(&observation, 0);
}

static int end_sending(
    struct observation* observation, const unsigned char* data, size_t length, int result)
{
    observation->call.data = data;
    observation->call.size = data ? length : 0;
    end(observation, result);
    return result;
}

static int end_receiving(struct observation* observation, const unsigned char* data, int result)
{
    observation->call.data = data;
    observation->call.size = result > 0 ? (size_t)result : 0;
    end(observation, result);
    return result;
}

static int end_reading(struct observation* observation, const struct open_device* device,
    const unsigned char* data, int result)
{
    if (result == 0)
        observation->observer = NULL; /* no report has come in time */
    if (result < 0 && device)
        observation->call.usb_error = reading_error(device);
    return end_receiving(observation, data, result);
}

/* A missing function, which an older hidapi does not have, fails. */

#define WRAP_SENDING(name, kind)                                                                   \
    DECLARE_NEXT(name);                                                                            \
    EXPORT int name(hid_device* hid, const unsigned char* data, size_t length)                     \
    {                                                                                              \
        struct observation observation = begin(USB_TRANSFERRING, kind, find_hid(hid));             \
        __typeof__(&name) next = NEXT(name);                                                       \
        return end_sending(&observation, data, length, next ? next(hid, data, length) : -1);       \
    }

#define WRAP_RECEIVING(name, kind)                                                                 \
    DECLARE_NEXT(name);                                                                            \
    EXPORT int name(hid_device* hid, unsigned char* data, size_t length)                           \
    {                                                                                              \
        struct observation observation = begin(USB_TRANSFERRING, kind, find_hid(hid));             \
        __typeof__(&name) next = NEXT(name);                                                       \
        return end_receiving(&observation, data, next ? next(hid, data, length) : -1);             \
    }

#if HID_API_VERSION < HID_API_MAKE_VERSION(0, 15, 0)
EXPORT int hid_send_output_report(hid_device* hid, const unsigned char* data, size_t length);
#endif

WRAP_SENDING(hid_write, HID_CALL_WRITE)
WRAP_SENDING(hid_send_output_report, HID_CALL_WRITE)
WRAP_SENDING(hid_send_feature_report, HID_CALL_SEND_FEATURE)
WRAP_RECEIVING(hid_get_feature_report, HID_CALL_GET_FEATURE)
WRAP_RECEIVING(hid_get_input_report, HID_CALL_GET_INPUT)

DECLARE_NEXT(hid_read);
DECLARE_NEXT(hid_read_timeout);

EXPORT int hid_read(hid_device* hid, unsigned char* data, size_t length)
{
    struct open_device* const device = find_hid(hid);
    struct observation observation = begin(USB_TRANSFERRING, HID_CALL_READ, device);
    __typeof__(&hid_read) next = NEXT(hid_read);
    return end_reading(&observation, device, data, next ? next(hid, data, length) : -1);
}

EXPORT int hid_read_timeout(hid_device* hid, unsigned char* data, size_t length, int milliseconds)
{
    struct open_device* const device = find_hid(hid);
    struct observation observation = begin(USB_TRANSFERRING, HID_CALL_READ, device);
    __typeof__(&hid_read_timeout) next = NEXT(hid_read_timeout);
    return end_reading(
        &observation, device, data, next ? next(hid, data, length, milliseconds) : -1);
}
