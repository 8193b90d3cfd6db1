// The interface between the device host and a HID stack. The order of operations is contract.
#pragma once

#include <cstdint>

namespace KX {

// What the user did on the device. Called on the stack's reader thread only, never while or after
// the stack's Close() returns. An operation must not close or delete the stack that calls it.
class IHostStackSink {
public:
    virtual void OnDeviceMute() = 0;
    virtual void OnDeviceUnmute() = 0;
    virtual void OnDeviceOffHook() = 0; // answered
    virtual void OnDeviceHangUp() = 0;  // rejected or ended

protected:
    ~IHostStackSink() = default;
};

enum StackMuteState : uint32_t {
    kMuteNeverSet = 0,
    kMuted = 1,
    kUnmuted = 2,
};

enum StackCallState : uint32_t {
    kCallNeverSet = 0,
    kCallIdle = 1,   // on hook
    kCallActive = 2, // off hook
    kCallRinging = 3,
};

// One device. All operations belong to one thread, the host's; those that light lamps wait until
// the device has taken each report, at most a second each. Only one stack of a process may be open:
// closing it ends hidapi.
class IHostHidStack {
public:
    virtual ~IHostHidStack() = default;

    virtual int QuerySupport() = 0; // 1
    virtual int QueryOptionA() = 0; // 0
    virtual int QueryOptionB() = 0; // 0

    // Opens the first device of these ids and makes it idle, its lamps off. Once per object.
    // `sink` may be null; else it must live until Close() has returned. Returns 1, or 0 when the
    // device cannot be opened, tells no report descriptor, or no thread can be started; nothing is
    // open then. A device without telephony controls opens: what it lacks does nothing.
    [[nodiscard]] virtual int Open(IHostStackSink* sink, uint16_t vendorId, uint16_t productId) = 0;

    // Stops the reader and closes the device; within one read time-out (100 ms), or
    // when the report that the reader may be sending has been taken. May be repeated.
    virtual void Close() = 0;

    virtual void Mute() = 0;    // in a call only
    virtual void Unmute() = 0;  // in a call only
    virtual void HangUp() = 0;  // back to idle
    virtual void OffHook() = 0; // in a call
    virtual void Ring() = 0;    // an incoming call, also during a call

    [[nodiscard]] virtual uint32_t GetMuteState() = 0; // a StackMuteState
    [[nodiscard]] virtual uint32_t GetCallState() = 0; // a StackCallState
};

} // namespace KX
