// The interface between the device host and a HID stack. The order of the operations is part of the
// contract.
#pragma once

#include "hid/model/TelephonyStates.h"

#include <cstdint>

namespace KX {

// Receives what the user does on the device. All operations are called on the stack's reader
// thread, from the time Open() starts it until Close() returns: there may be events while Close()
// waits for the reader thread, but none afterwards. An operation must not close or delete the
// stack, because Close() would wait for its own thread. Close() takes longer while an operation
// runs.
class IHostStackSink {
public:
    virtual void OnDeviceMute() = 0;
    virtual void OnDeviceUnmute() = 0;
    virtual void OnDeviceOffHook() = 0; // answered
    virtual void OnDeviceHangUp() = 0;  // rejected

protected:
    ~IHostStackSink() = default;
};

// One device. All operations belong to one thread, the host's. Only one stack of a process may be
// open at a time: closing one ends hidapi for all.
//
// Sending a report blocks until the device has taken it, for at most 1 s.
class IHostHidStack {
public:
    // Closes the device.
    virtual ~IHostHidStack() = default;

    virtual int QuerySupport() = 0; // returns 1
    virtual int QueryOptionA() = 0; // returns 0
    virtual int QueryOptionB() = 0; // returns 0

    // Opens the first device with these ids and makes it idle with its LEDs off. At most once per
    // object unless it failed. `sink` is not owned. It may be null, otherwise it must live until
    // Close() has returned.
    //
    // Returns 1 on success. Returns 0 when the device cannot be opened or returns no report
    // descriptor, no thread can be started or memory runs out. Nothing is open then. A device
    // without telephony controls opens; operations send no report for an LED that it lacks.
    //
    // Blocks while hidapi lists the devices (up to 1 s for each string transfer with a device that
    // does not respond), while the report descriptor is read (up to 4 x 5 s; only for ids that were
    // not opened before) and while up to three reports are sent.
    [[nodiscard]] virtual int Open(IHostStackSink* sink, uint16_t vendorId, uint16_t productId) = 0;

    // Stops the reader thread and closes the device. May be repeated. Blocks until the reader
    // thread has finished its read (up to 100 ms) and, if that returned a report, has called the
    // sink and sent the one or two reports that follow.
    virtual void Close() = 0;

    virtual void Mute() = 0;    // sends one report; only during a call and with a Mute LED
    virtual void Unmute() = 0;  // the same
    virtual void HangUp() = 0;  // sends up to three reports
    virtual void OffHook() = 0; // sends up to two reports
    virtual void Ring() = 0;    // sends up to one report; also during a call

    [[nodiscard]] virtual uint32_t GetMuteState() = 0; // a StackMuteState
    [[nodiscard]] virtual uint32_t GetCallState() = 0; // a StackCallState
};

} // namespace KX
