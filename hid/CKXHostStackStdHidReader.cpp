// What the device says: the reader thread.
#include "hid/CKXHostStackStdHid.h"

#include "hid/model/ReportTemplate.h"

#include <array>
#include <chrono>
#include <mutex>
#include <thread>

namespace KX {

namespace {

constexpr size_t kReadBufferSize = 64; // a full-speed interrupt packet
constexpr int kReadTimeoutMs = 100;
// A device that has been unplugged fails every read at once; without a pause that burns a core.
constexpr std::chrono::milliseconds kFailedReadPause{1};

} // namespace

void CKXHostStackStdHid::ReaderRoutine(void* self)
{
    static_cast<CKXHostStackStdHid*>(self)->ReadReports();
}

bool CKXHostStackStdHid::StopRequested()
{
    const std::lock_guard guard(lock);
    return stopRequested;
}

void CKXHostStackStdHid::ReadReports()
{
    std::array<uint8_t, kReadBufferSize> buffer;
    while (!StopRequested()) {
        const int size = device->Read(buffer, kReadTimeoutMs);
        if (size > 0)
            HandleReport(std::span(buffer).first(static_cast<size_t>(size)));
        else if (size < 0)
            std::this_thread::sleep_for(kFailedReadPause);
    }
}

// In a call only the mute button is heard: the hook switch does not end a call from the device.
void CKXHostStackStdHid::HandleReport(std::span<const uint8_t> report)
{
    if (callState == kCallActive) {
        if (!controls.hasPhoneMute)
            return;
        if (Matches(controls.phoneMuteMask, report))
            ToggleMute();
    }
    if (callState == kCallRinging) // read again: the host may have let it ring meanwhile
        HandleRinging(report);
}

// The sink hears of it before the lamp changes.
void CKXHostStackStdHid::ToggleMute()
{
    if (muteState == kMuted) {
        if (sink)
            sink->OnDeviceUnmute();
        Unmute();
    } else {
        if (sink)
            sink->OnDeviceMute();
        Mute();
    }
}

void CKXHostStackStdHid::HandleRinging(std::span<const uint8_t> report)
{
    switch (AnswerTo(controls, hookState == kOffHook, report)) {
    case RingAnswer::Ignore:
        break;
    case RingAnswer::Answer:
        AnsweredOnDevice();
        break;
    case RingAnswer::Reject:
        RejectedOnDevice();
        break;
    case RingAnswer::RefuseWaiting:
        WaitingCallRefusedOnDevice();
        break;
    }
}

void CKXHostStackStdHid::AnsweredOnDevice()
{
    callState = kCallActive;
    hookState = kOffHook;
    if (sink)
        sink->OnDeviceOffHook();
    SendRingOff();
    SendOffHookOn();
}

void CKXHostStackStdHid::RejectedOnDevice()
{
    callState = kCallIdle;
    hookState = kOnHook;
    if (sink)
        sink->OnDeviceHangUp();
    SendRingOff();
    SendOffHookOff();
}

void CKXHostStackStdHid::WaitingCallRefusedOnDevice()
{
    callState = kCallActive;
    hookState = kOffHook;
    if (sink)
        sink->OnDeviceHangUp();
    SendRingOff();
    SendOffHookOn();
}

} // namespace KX
