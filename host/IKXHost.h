// The interface of the device host: states, commands, the host, its callback and the entry
// functions. Objects cross the module's boundary only through the entry functions. The order of the
// virtual operations is part of the contract, because the two sides may be built separately.
#pragma once

#include <cstdint>

// A kind of state. Its value is one byte in both directions.
enum class KXState : uint32_t {
    Mute = 0, // value: 1 muted, 0 not muted
    Call = 1, // value: a KXCallState
};

enum KXCallState : uint8_t {
    KXCallRinging = 0,   // an incoming meeting
    KXCallActive = 1,    // off-hook
    KXCallIdle = 2,      // on-hook
    KXCallUnknown = 255, // only from GetState(): no state has been set yet
};

// A command from the device to the application.
enum class KXCommand : uint32_t {
    Accept = 0, // the ringing call was answered on the device
    Reject = 1, // the ringing call was rejected on the device
};

// The application's sink. The stack's reader thread calls both operations. They must not block for
// long and must not call the host. `value` is valid during the call only.
class IKXHostCallback {
public:
    virtual void OnCommand(KXCommand command, void* reserved) = 0; // `reserved` is always null
    virtual void OnState(KXState state, const uint8_t* value) = 0;

protected:
    ~IKXHostCallback() = default;
};

// Drives one device. Only the application's thread may call the operations. At most one host of a
// process may have a device selected: closing a device ends hidapi for the whole process. No
// operation throws.
//
// Sending a report to the device blocks until the device has taken it, for at most 1 s.
class IKXHost {
public:
    // Writes the ids of the last key that had 18 characters or more, 0 before there was one.
    // Returns 0.
    virtual int GetDeviceId(uint16_t* vendorId, uint16_t* productId) = 0;

    // Closes the selected device and opens the one that `deviceKey` names:
    // "0xVVVV-HID-0xPPPP#" with four hexadecimal digits each; a name may follow. Does nothing when
    // the key is null or is already selected. With fewer than 18 characters, or when memory runs
    // out, no device is selected afterwards. A device that cannot be opened is selected
    // nevertheless.
    //
    // Blocks
    // - while the earlier device is closed: for a read of up to 100 ms and, if that returned a
    //   report, for the callback and the one or two reports that follow;
    // - while hidapi lists the devices: with a device that does not respond, for up to three
    //   transfers of 1 s for each of its three name strings;
    // - while the report descriptor is read, if no device with these ids was opened before: for up
    //   to 4 x 5 s;
    // - while up to three reports set the new device on-hook.
    //
    // There may be callbacks of the earlier device while it is closed, but none later.
    virtual void SelectDevice(const char* deviceKey) = 0;

    virtual int Reserved1() = 0;  // returns 0
    virtual void Reserved2() = 0; // does nothing

    // Makes the device show a state, which takes up to three reports. Ignores unknown states and
    // values, a null `value`, and the call when no device is selected.
    virtual void SetState(KXState state, const uint8_t* value) = 0;

    // Writes the state that the stack currently has to `*value`. False, with `*value` unchanged,
    // for an unknown state, a null `value`, without a device, or when the mute state was never set.
    [[nodiscard]] virtual bool GetState(KXState state, uint8_t* value) = 0;

    // Returns the stack's QuerySupport(), or 0 without a device.
    virtual int IsSupported() = 0;

    // Empties the destination of the installed trace observer, if there is one.
    virtual void ResetTrace() = 0;

protected:
    ~IKXHost() = default; // DestroyKXHost() deletes hosts
};

// Makes a host without a device. Null when `callback` is null or memory runs out. The caller owns
// the host and frees it with DestroyKXHost(). The callback is not owned and must live until
// DestroyKXHost() has returned.
[[nodiscard]] IKXHost* CreateKXHost(IKXHostCallback* callback);

// Closes the device, which blocks as in SelectDevice(), and frees the host. There may be callbacks
// during the call, but none later. Ignores null.
void DestroyKXHost(IKXHost* host);

// Adds the lists of a JSON document to the process-wide device filter. Returns 1. Returns 0, with
// nothing added, when `jsonText` is null, `length` is below 2 or the text does not parse. `length`
// is used for this check only: the text is read up to its NUL.
//
// The document is an object with the member "HID", an object of lists: "WhitelistVendorId",
// "WhitelistVidPid", "BlacklistVendorId", "BlacklistVidPid" and "BlacklistDeviceName". Null and
// missing members count as empty. As many elements of the two lists of pairs are read as
// "BlacklistVendorId" has; elements that are missing count as null. Other types:
// - Document or "HID" of another type: raises an error.
// - A number, text, boolean or {} in place of a list: counts as empty. A list of pairs of these
//   types raises an error as soon as an element is to be read from it.
// - A non-empty object in place of a list: raises an error. As "BlacklistVendorId" it only counts
//   its members.
// - Elements that are ids: the fraction of a number is dropped, true is 1, false and null are 0.
//   Numbers outside the range of uint32_t, texts, lists and objects raise an error.
// - Elements that are names: numbers and booleans become their text, null becomes "". Lists and
//   objects raise an error.
//
// Errors are JsonCpp's exceptions, derived from std::exception. Entries that were added before an
// error stay. Throws std::bad_alloc as well. Call it on the thread that creates hosts: the filter
// is not guarded.
int LoadHidFilterConfig(const char* jsonText, int length);

// Sets `*differs` to 0 when both names contain the name of the same known conference device and
// start with the same decimal number (0 when there is none). Otherwise sets it to 1, also for a
// null name.
void IsSameConferenceDevice(const char* nameA, const char* nameB, uint8_t* differs);

// Returns 1 when `name` contains the name of a known speakerphone, otherwise 0, also for null.
[[nodiscard]] int IsKnownSpeakerphone(const char* name);

// Whether `name` contains the name of the known capture box. False for null.
[[nodiscard]] bool IsCaptureBox(const char* name);

// Returns a process-wide writable buffer of 32 bytes, preset to "Revolabs", and writes its address
// to `*name` and its size in bytes to `*capacity` unless these are null. Not guarded.
char* GetLegacyDeviceName(char** name, uint32_t* capacity);
