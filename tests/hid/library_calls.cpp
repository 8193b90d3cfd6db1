#include "tests/hid/library_calls.h"

#include <cerrno>
#include <dlfcn.h>
#include <hidapi/hidapi.h>
#include <libusb.h>
#include <pthread.h>

// The library's own definition.
#define NEXT(function) reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function))

extern "C" {

int hid_exit()
{
    ++calls::hidExits;
    return NEXT(hid_exit)();
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds)
{
    const int result = NEXT(hid_read_timeout)(device, data, length, milliseconds);
    if (result < 0)
        ++calls::failedHidReads;
    return result;
}

int libusb_control_transfer(libusb_device_handle* handle, uint8_t requestType, uint8_t request,
    uint16_t value, uint16_t index, unsigned char* data, uint16_t length, unsigned timeout)
{
    if (requestType == 0x81 && value == 0x2200)
        calls::beforeDescriptorRequest();
    return NEXT(libusb_control_transfer)(
        handle, requestType, request, value, index, data, length, timeout);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
    void* argument) noexcept
{
    if (calls::refuseThreads && attributes)
        return EAGAIN;
    return NEXT(pthread_create)(thread, attributes, routine, argument);
}
}
