// What the application sees of the device host: states, commands, the host, its callback and the
// entry functions. Objects cross the module's boundary only through the entry functions; the order
// of the virtual operations is part of the contract, as both sides may be built separately.
#pragma once

#include <cstdint>

// A kind of state; its value travels as one byte, in both directions.
enum class KXState : uint32_t {
    Mute = 0, // value: 1 muted, 0 not muted
    Call = 1, // value: a KXCallState
};

enum KXCallState : uint8_t {
    KXCallRinging = 0,   // an incoming meeting
    KXCallActive = 1,    // off-hook
    KXCallIdle = 2,      // on-hook
    KXCallUnknown = 255, // from GetState only: none set yet
};

// What the device asks of the application.
enum class KXCommand : uint32_t {
    Accept = 0, // the ringing call was answered on the device
    Reject = 1, // the ringing call was refused on the device
};

// The application's sink. Both operations arrive on the stack's reader thread and must not block
// it for long; `value` is valid during the call only.
class IKXHostCallback {
public:
    virtual void OnCommand(KXCommand command, void* reserved) = 0; // `reserved` is always null
    virtual void OnState(KXState state, const uint8_t* value) = 0;

protected:
    ~IKXHostCallback() = default;
};

// Drives one device. All operations belong to one thread, the application's. At most one host of a
// process may have a device selected: closing one ends hidapi for all.
class IKXHost {
public:
    // Ids of the selected device, 0 before any was selected. Returns 0.
    virtual int GetDeviceId(uint16_t* vendorId, uint16_t* productId) = 0;

    // Closes the device of the previous key and opens that of `deviceKey`,
    // "0xVVVV-HID-0xPPPP#" with four hexadecimal digits each, maybe followed by a name. Null, or
    // the key already selected: nothing happens. 17 characters or fewer: nothing is open
    // afterwards. Blocks for up to a read time-out (100 ms) while
    // a device is closed, and while the next one tells its report descriptor, up to 20 s with one
    // that does not answer.
    virtual void SelectDevice(const char* deviceKey) = 0;

    virtual int Reserved1() = 0;  // returns 0
    virtual void Reserved2() = 0; // does nothing

    // Makes the device show a state. Unknown states and values, a null `value` and a host without
    // a device are ignored.
    virtual void SetState(KXState state, const uint8_t* value) = 0;

    // The state that the stack holds now: true and `*value` written, or false and `*value` left.
    [[nodiscard]] virtual bool GetState(KXState state, uint8_t* value) = 0;

    // What the stack answers to QuerySupport; 0 without a device.
    virtual int IsSupported() = 0;

    // Empties the destination of the installed trace observer, if there is one.
    virtual void ResetTrace() = 0;

protected:
    ~IKXHost() = default; // DestroyKXHost() deletes hosts
};

// A new host without a device, or null when `callback` is null or memory runs out. The callback
// must live until DestroyKXHost() has returned.
[[nodiscard]] IKXHost* CreateKXHost(IKXHostCallback* callback);

// Closes the device and frees the host; no callback comes after it. Null is ignored.
void DestroyKXHost(IKXHost* host);

// Adds a JSON document's lists to the device filter sets. Returns 1, or 0 when `jsonText` is null,
// `length` is below 2 or the text does not parse; `length` serves that check alone, the text is
// read up to its NUL. An element of a wrong type, or something else where an object or a
// list is meant, raises JsonCpp's error (a std::exception); elements before it stay.
// Call on the thread that creates hosts: the sets are not guarded.
int LoadHidFilterConfig(const char* jsonText, int length);

// `*differs` becomes 0 when both names contain the same known conference device's name and begin
// with the same decimal number (0 when there is none), else 1; also 1 for a null name.
void IsSameConferenceDevice(const char* nameA, const char* nameB, uint8_t* differs);

// 1 when the name contains a known speakerphone's; 0 otherwise, and for null.
[[nodiscard]] int IsKnownSpeakerphone(const char* name);

// Whether the name contains that of the known capture box; false for null.
[[nodiscard]] bool IsCaptureBox(const char* name);

// Hands out a process-wide writable buffer of 32 bytes, preset to "Revolabs": its address in
// `*name` and as the result, its size in bytes in `*capacity`. Not guarded.
char* GetLegacyDeviceName(char** name, uint32_t* capacity);
