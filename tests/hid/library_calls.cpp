#include "tests/hid/library_calls.h"

#include <cerrno>
#include <dlfcn.h>
#include <hidapi/hidapi.h>
#include <libusb.h>
#include <pthread.h>

namespace calls {

std::atomic<int> hidExits = 0;
std::atomic<int> failedHidReads = 0;
thread_local bool refuseThreads = false;
std::function<void()> beforeDescriptorRequest;

} // namespace calls

namespace {

template <typename Function>
Function* Next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int hid_exit()
{
    ++calls::hidExits;
    static const auto next = Next<decltype(hid_exit)>("hid_exit");
    return next();
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds)
{
    static const auto next = Next<decltype(hid_read_timeout)>("hid_read_timeout");
    const int result = next(device, data, length, milliseconds);
    if (result < 0)
        ++calls::failedHidReads;
    return result;
}

int libusb_control_transfer(libusb_device_handle* handle, uint8_t requestType, uint8_t request,
    uint16_t value, uint16_t index, unsigned char* data, uint16_t length, unsigned timeout)
{
    const bool forDescriptor = requestType == 0x81 && value == 0x2200;
    if (forDescriptor && calls::beforeDescriptorRequest)
        calls::beforeDescriptorRequest();
    static const auto next = Next<decltype(libusb_control_transfer)>("libusb_control_transfer");
    return next(handle, requestType, request, value, index, data, length, timeout);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
    void* argument) noexcept
{
    if (calls::refuseThreads && attributes)
        return EAGAIN;
    static const auto next = Next<decltype(pthread_create)>("pthread_create");
    return next(thread, attributes, routine, argument);
}
}
