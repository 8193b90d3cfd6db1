#include "tools/ctl/traffic/failure_words.h"

#include <libusb.h>

namespace ctl {

FailureWords usbFailure(int usbError)
{
    switch (usbError) {
    case LIBUSB_ERROR_ACCESS:
        return {"no-permission", "no permission"};
    case LIBUSB_ERROR_BUSY:
        return {"busy", "in use by another program or driver"};
    case LIBUSB_ERROR_NO_DEVICE:
        return {"gone", "the device has gone"};
    case LIBUSB_ERROR_TIMEOUT:
        return {"no-response", "the device does not respond"};
    case LIBUSB_ERROR_PIPE:
        return {"refused", "the device refused it"};
    case LIBUSB_ERROR_IO:
        return {"transfer-failed", "the transfer failed"};
    case LIBUSB_ERROR_OVERFLOW:
        return {"overflow", "the device sent more than was asked for"};
    case LIBUSB_ERROR_NOT_FOUND:
        return {"not-found", "the device has no such interface"};
    case LIBUSB_ERROR_INVALID_PARAM:
        return {"invalid", "libusb refused the arguments"};
    case LIBUSB_ERROR_NO_MEM:
        return {"no-memory", "out of memory"};
    case LIBUSB_ERROR_NOT_SUPPORTED:
        return {"not-supported", "this system does not support it"};
    case 0:
        return {"unknown", "hidapi gives no reason"};
    default:
        return {"unknown", "libusb gives no reason"};
    }
}

bool meansGone(int usbError)
{
    return usbError == LIBUSB_ERROR_NO_DEVICE;
}

// hidapi looks for a device in the list of those that it can see. With its hidraw version the paths
// are device nodes, and why one cannot be opened is unknown.
FailureWords failureOf(const Call& call)
{
    if (call.kind == HID_CALL_OPEN && call.usbError == 0 && !call.path.starts_with("/dev/"))
        return {"no-such-device", "no such device"};
    return usbFailure(call.usbError);
}

} // namespace ctl
