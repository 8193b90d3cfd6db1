/* The devices that the process has open through hidapi. Any thread. Never blocks. */
#pragma once

#include <hidapi/hidapi.h>
#include <libusb.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdint.h>

struct open_device {
    _Atomic(hid_device*) hid;           /* null until the open succeeds */
    _Atomic(libusb_device_handle*) usb; /* null once closed and with hidapi's hidraw version */
    /* The transfer that waits for input reports, and libusb's error if it could not be submitted.
     * It belongs to hidapi. */
    _Atomic(struct libusb_transfer*) reading;
    atomic_int submit_error;
    uint32_t number; /* from 1, in the order of opening; also in later processes after fork() */
    int32_t opener;  /* process */

    atomic_bool used;
    struct open_device* next;
};

/* The device of a handle. Null if there is none. */
struct open_device* find_hid(hid_device* hid);
struct open_device* find_usb(libusb_device_handle* usb);

/* Adds a device, whose handle may be null. Null if there is no memory. */
struct open_device* add_open_device(libusb_device_handle* usb);

/* Gives the device a number and lets find_hid() find it. */
void set_opened(struct open_device* device, hid_device* hid);

/* Removes a device, which then may be another one's at any time. */
void remove_open_device(struct open_device* device);
