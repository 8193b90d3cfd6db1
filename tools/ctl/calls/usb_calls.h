/* What hidapi does in libusb during its calls. The wrappers of libusb's functions are in
 * usb_calls.c. Calls that the program itself makes pass through them; only a report descriptor that
 * it reads is remembered. */
#pragma once

#include "tools/ctl/calls/open_devices.h"

#include <stddef.h>

enum usb_call { USB_OUTSIDE, USB_OPENING, USB_TRANSFERRING };

struct usb_activity {
    enum usb_call call; /* of hidapi, that this thread is in */
    int error;          /* libusb's last error in it, 0 if there was none */

    /* In hid_open(): the call of hid_open_path() in it, which has the path, is reported instead. */
    bool by_ids;
    bool reported;

    /* While opening: of the last libusb_open(). */
    uint16_t vendor_id;
    uint16_t product_id;
    struct open_device* device; /* null if it failed or is closed again */
    int interface;              /* the one that was claimed last, -1 before */
};

/* The activity of this thread. Begins anew with each call of hidapi, after which the caller
 * restores the earlier one: a signal handler may make calls during others. */
struct usb_activity* begin_usb_activity(enum usb_call call);
struct usb_activity* usb_activity(void);

/* Why hidapi does not read input reports any more: libusb's error, 0 if unknown. Not during or
 * after hid_close(). */
int reading_error(const struct open_device* device);

enum { MAX_REPORT_DESCRIPTOR = 4096 }; /* libusb makes no longer control transfers */

/* The report descriptor of the interface that this thread has just opened. If the thread has read
 * that of the same interface last, that one, without a transfer. Otherwise the device is asked, for
 * at most 1 s. Returns the length in bytes, 0 if it cannot be read. `caller` as for
 * find_next_function(). */
size_t read_report_descriptor(uint8_t bytes[MAX_REPORT_DESCRIPTOR], const void* caller);
