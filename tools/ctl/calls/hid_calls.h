/* Observes the calls that a process makes to hidapi.
 *
 * The functions of hid_calls.c have the names of hidapi's functions. They call hidapi's own and
 * pass arguments, results and errno through unchanged. A program that contains them, or has them
 * preloaded, can observe what it opens, writes and reads. Calls that hidapi makes itself are not
 * observed, nor are those for a device whose open was not. They also pass through the functions of
 * libusb that hidapi calls, because only those know the reason of a failure.
 *
 * The report descriptor is the one that the thread read last, if it was this interface's: some
 * programs read it before they open the device. Otherwise an observed open makes one request to the
 * device before it returns, which takes at most 1 s. A device that is open through hidraw is not
 * asked.
 *
 * C, because it is preloaded into programs of any kind. */
#pragma once

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): C, too */
#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C, too */

#ifdef __cplusplus
extern "C" {
#endif

enum hid_call_kind {
    HID_CALL_OPEN,
    HID_CALL_DESCRIPTOR, /* after each open: `data` is the report descriptor, `size` 0 if unknown */
    HID_CALL_CLOSE,
    HID_CALL_WRITE,        /* `data` as passed to hidapi, report id first */
    HID_CALL_READ,         /* an input report as hidapi returns it, or an error; not a time-out */
    HID_CALL_SEND_FEATURE, /* as HID_CALL_WRITE */
    HID_CALL_GET_FEATURE,  /* `data` as returned, report id first */
    HID_CALL_GET_INPUT     /* the same */
};

struct hid_call {
    enum hid_call_kind kind;
    uint32_t device;     /* number of the open device in its opener, from 1; 0 if it did not open */
    int32_t opener;      /* process that opened the device: after fork() it may be an earlier one */
    int64_t begin;       /* microseconds on CLOCK_MONOTONIC */
    int64_t duration;    /* microseconds */
    int result;          /* of the call; of an open 0, or -1 if it failed */
    int usb_error;       /* libusb's error (negative) that made the call fail; 0 if there was none,
                          * for example no such device, or if hidapi does not use libusb */
    const char* path;    /* of an open; may be null */
    uint16_t vendor_id;  /* of an open, 0 if unknown */
    uint16_t product_id; /* the same */
    const uint8_t* data; /* valid during the call of the observer only */
    size_t size;         /* bytes */
};

/* Called after each call, on the thread that made it and before it returns to its caller; any
 * number of threads at once, and in a signal handler that calls hidapi. In kelprobectl itself, one
 * thread at a time sends a report and has it observed, so their order is that of the device. May
 * change errno. The thread cannot be cancelled meanwhile. Must not call hidapi. */
typedef void (*hid_call_observer)(const struct hid_call* call);

/* Sets the observer of the process; null switches observing off. Any thread. Calls that are being
 * observed may still use the earlier one. */
void hid_calls_observe(hid_call_observer observer);

#ifdef __cplusplus
}
#endif
