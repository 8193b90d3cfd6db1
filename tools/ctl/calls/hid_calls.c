#define _GNU_SOURCE /* PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP */
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

/* Microseconds on CLOCK_MONOTONIC. */
static int64_t now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (int64_t)time.tv_sec * 1000000 + time.tv_nsec / 1000;
}

struct observation {
    bool inner;                 /* a part of another call, which is reported */
    bool in_place;              /* reported in place of the hid_open() that it is a part of */
    hid_call_observer observer; /* null if the call is not reported */
    struct usb_activity outer;  /* of the call that this one interrupts or is a part of */
    struct hid_call call;
};

/* hidapi's functions call each other. If such a call is a tail call, `caller` is the wrapper of the
 * first. A program that has found hidapi's functions with dlsym() does not call the wrappers, and
 * then there are only hidapi's own calls. Other calls during a call are those of a signal handler.
 */
static bool is_of_hidapi(enum usb_call outer, const void* caller, any_function next)
{
    if (outer == USB_OUTSIDE)
        return in_hidapi(caller);
    return in_same_library(caller, (const void*)(uintptr_t)next) || in_this_library(caller);
}

static struct observation begin(enum usb_call usb, enum hid_call_kind kind,
    const struct open_device* device, const void* caller, any_function next)
{
    struct observation observation = {.outer = *usb_activity(), .call = {.kind = kind}};
    if (is_of_hidapi(observation.outer.call, caller, next)) {
        observation.in_place = observation.outer.by_ids && kind == HID_CALL_OPEN;
        observation.inner = !observation.in_place;
    }
    if (observation.inner)
        return observation;
    begin_usb_activity(usb);
    if (kind == HID_CALL_OPEN || device) /* else its open was not seen */
        observation.observer = atomic_load(&current_observer);
    if (!observation.observer)
        return observation;
    if (device) {
        observation.call.device = device->number;
        observation.call.opener = device->opener;
    }
    observation.call.begin = now();
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

static void report_result(struct observation* observation, int result)
{
    struct hid_call* const call = &observation->call;
    if (!observation->observer)
        return;
    call->duration = now() - call->begin;
    call->result = result;
    if (result < 0 && call->usb_error == 0)
        call->usb_error = usb_activity()->error;
    report(observation);
}

static void end(struct observation* observation, int result)
{
    if (observation->inner)
        return;
    report_result(observation, result);
    *usb_activity() = observation->outer;
}

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
    if (observation->inner)
        return hid;
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
    report_result(observation, hid ? 0 : -1);
    if (hid && observation->observer)
        report_descriptor(observation, caller);
    *activity = observation->outer;
    if (observation->in_place)
        activity->reported = true;
    return hid;
}

DECLARE_NEXT(hid_open);
DECLARE_NEXT(hid_open_path);
DECLARE_NEXT(hid_libusb_wrap_sys_device);
DECLARE_NEXT(hid_close);

EXPORT hid_device* hid_open(
    unsigned short vendor_id, unsigned short product_id, const wchar_t* serial_number)
{
    __typeof__(&hid_open) next = NEXT(hid_open);
    struct observation observation
        = begin(USB_OPENING, HID_CALL_OPEN, NULL, CALLER, (any_function)next);
    observation.call.vendor_id = vendor_id;
    observation.call.product_id = product_id;
    usb_activity()->by_ids = true;
    hid_device* const hid = next ? next(vendor_id, product_id, serial_number) : NULL;
    if (usb_activity()->reported) {
        *usb_activity() = observation.outer;
        return hid;
    }
    return end_open(&observation, hid, CALLER);
}

EXPORT hid_device* hid_open_path(const char* path)
{
    __typeof__(&hid_open_path) next = NEXT(hid_open_path);
    struct observation observation
        = begin(USB_OPENING, HID_CALL_OPEN, NULL, CALLER, (any_function)next);
    observation.call.path = path;
    return end_open(&observation, next ? next(path) : NULL, CALLER);
}

EXPORT hid_device* hid_libusb_wrap_sys_device(intptr_t sys_device, int interface)
{
    __typeof__(&hid_libusb_wrap_sys_device) next = NEXT(hid_libusb_wrap_sys_device);
    struct observation observation
        = begin(USB_OPENING, HID_CALL_OPEN, NULL, CALLER, (any_function)next);
    return end_open(&observation, next ? next(sys_device, interface) : NULL, CALLER);
}

EXPORT void hid_close(hid_device* hid)
{
    struct open_device* const device = find_hid(hid);
    __typeof__(&hid_close) next = NEXT(hid_close);
    struct observation observation
        = begin(USB_OUTSIDE, HID_CALL_CLOSE, device, CALLER, (any_function)next);
    if (device)
        atomic_store(&device->hid, NULL); /* hidapi may give another device this address */
    if (next)
        next(hid);
    if (device)
        remove_open_device(device);
    end(&observation, 0);
}

static void end_sending(
    struct observation* observation, const unsigned char* data, size_t length, int result)
{
    observation->call.data = data;
    observation->call.size = data ? length : 0;
    end(observation, result);
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

/* With HID_CALLS_IN_ORDER, reports are sent one after another, and observed in this order. */
#ifdef HID_CALLS_IN_ORDER
static pthread_mutex_t sending = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;

static void begin_sending(void)
{
    pthread_mutex_lock(&sending);
}

static void finish_sending(void)
{
    pthread_mutex_unlock(&sending);
}
#else
static void begin_sending(void) { }
static void finish_sending(void) { }
#endif

/* A missing function, which an older hidapi does not have, fails. */

#define WRAP_SENDING(name, kind)                                                                   \
    DECLARE_NEXT(name);                                                                            \
    EXPORT int name(hid_device* hid, const unsigned char* data, size_t length)                     \
    {                                                                                              \
        __typeof__(&name) next = NEXT(name);                                                       \
        begin_sending();                                                                           \
        struct observation observation                                                             \
            = begin(USB_TRANSFERRING, kind, find_hid(hid), CALLER, (any_function)next);            \
        const int result = next ? next(hid, data, length) : -1;                                    \
        end_sending(&observation, data, length, result);                                           \
        finish_sending();                                                                          \
        return result;                                                                             \
    }

#define WRAP_RECEIVING(name, kind)                                                                 \
    DECLARE_NEXT(name);                                                                            \
    EXPORT int name(hid_device* hid, unsigned char* data, size_t length)                           \
    {                                                                                              \
        __typeof__(&name) next = NEXT(name);                                                       \
        struct observation observation                                                             \
            = begin(USB_TRANSFERRING, kind, find_hid(hid), CALLER, (any_function)next);            \
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
    __typeof__(&hid_read) next = NEXT(hid_read);
    struct observation observation
        = begin(USB_TRANSFERRING, HID_CALL_READ, device, CALLER, (any_function)next);
    return end_reading(&observation, device, data, next ? next(hid, data, length) : -1);
}

EXPORT int hid_read_timeout(hid_device* hid, unsigned char* data, size_t length, int milliseconds)
{
    struct open_device* const device = find_hid(hid);
    __typeof__(&hid_read_timeout) next = NEXT(hid_read_timeout);
    struct observation observation
        = begin(USB_TRANSFERRING, HID_CALL_READ, device, CALLER, (any_function)next);
    return end_reading(
        &observation, device, data, next ? next(hid, data, length, milliseconds) : -1);
}
