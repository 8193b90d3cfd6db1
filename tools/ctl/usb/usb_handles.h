// hidapi, libusb and owners of what libusb allocates.
#pragma once

#include <hidapi/hidapi.h>
#include <libusb.h>

#include <memory>

namespace ctl {

template <auto function>
struct Release {
    template <typename T>
    void operator()(T* object) const
    {
        function(object);
    }
};

inline void freeDeviceList(libusb_device** list)
{
    libusb_free_device_list(list, 1);
}

using UsbContext = std::unique_ptr<libusb_context, Release<libusb_exit>>;
using UsbDeviceRef = std::unique_ptr<libusb_device, Release<libusb_unref_device>>;
using UsbDeviceHandle = std::unique_ptr<libusb_device_handle, Release<libusb_close>>;
using UsbConfiguration
    = std::unique_ptr<libusb_config_descriptor, Release<libusb_free_config_descriptor>>;
using UsbDeviceList = std::unique_ptr<libusb_device*, Release<freeDeviceList>>;

} // namespace ctl
