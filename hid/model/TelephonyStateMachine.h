// The call, mute and hook states of a telephony device: how operations of the host and input
// reports of the device change them, and which events and output reports follow.
//
// Uses no device and starts no thread. Only SetControls() allocates memory.
#pragma once

#include "hid/model/LedReports.h"
#include "hid/model/TelephonyControls.h"
#include "hid/model/TelephonyStates.h"

#include <atomic>
#include <span>

namespace KX {

// The operations may run on one thread while HandleReport() runs on another. Each of the three
// states is a separate atomic, and the two threads may interleave between any two steps. No lock is
// held while the output is called, so the output may block.
class TelephonyStateMachine {
public:
    // What the user did on the device.
    enum class Event {
        Mute,
        Unmute,
        OffHook, // answered
        HangUp,  // rejected
    };

    // Receives events and output reports in order, on the thread of the call that causes them:
    // events on the thread of HandleReport(), reports on either.
    class Output {
    public:
        virtual void Notify(Event event) = 0;
        virtual void Send(const Bytes& report) = 0; // report id first; never empty

    protected:
        ~Output() = default;
    };

    // `output` must outlive the machine. At first all states are "never set" and there are no
    // controls.
    explicit TelephonyStateMachine(Output& output);
    TelephonyStateMachine(const TelephonyStateMachine&) = delete;
    TelephonyStateMachine& operator=(const TelephonyStateMachine&) = delete;

    // Sets the controls of the device. The states are kept. No other operation may run meanwhile.
    // Throws std::bad_alloc, with the earlier controls unchanged.
    void SetControls(TelephonyControls controls);

    // The state changes before the reports are sent, except that Ring() sends first.
    void Ring(); // also during a call; does nothing on a device without a Ring LED
    void OffHook();
    void HangUp();
    void Mute();   // does nothing unless a call is active and there is a Mute LED
    void Unmute(); // the same

    // Takes an input report as hidapi delivers it.
    //
    // When the call state changes, the event and then the reports follow. Muting has the opposite
    // order: first the event, then the mute state and the report. The mute state and the report are
    // left out when the call has ended meanwhile or the device has no Mute LED.
    void HandleReport(std::span<const uint8_t> report);

    [[nodiscard]] uint32_t MuteState() const { return muteState_; } // a StackMuteState
    [[nodiscard]] uint32_t CallState() const { return callState_; } // a StackCallState

private:
    enum HookState : uint32_t { kHookNeverSet = 0, kOnHook = 1, kOffHook = 2 };

    void ToggleMute();
    void HandleIncomingCall(std::span<const uint8_t> report);
    void HandleWaitingCall(std::span<const uint8_t> report);
    void ContinueCall(Event event);
    void RejectCall();
    void Send(const Bytes& report);

    Output& output_;
    TelephonyControls controls_;
    LedReports leds_;
    std::atomic<uint32_t> muteState_ = kMuteNeverSet;
    std::atomic<uint32_t> callState_ = kCallNeverSet;
    std::atomic<uint32_t> hookState_ = kHookNeverSet; // the hook's position before the ring
};

} // namespace KX
