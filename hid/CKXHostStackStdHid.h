// The standard HID stack: drives and hears one USB telephony device through hidapi.
//
// Two threads come here. The host's makes all calls of IHostHidStack; the reader thread, running
// from Open() to Close(), reads input reports, calls the sink and answers presses with output
// reports of its own. Controls are looked up once before the reader starts and only read after
// that; the three states are atomics, each good on its own: the two threads may interleave between
// them, as the user's finger and the window may.
#pragma once

#include "base/src/util/thread.h"
#include "base/src/util/thread_mutex.h"
#include "hid/IHostHidStack.h"
#include "hid/IMivoAudioSdkSink.h"
#include "hid/model/TelephonyControls.h"
#include "hid/usb/HidDevice.h"

#include <atomic>
#include <memory>
#include <span>

namespace KX {

class CKXHostStackStdHid : public IHostHidStack, public IMivoAudioSdkSink {
public:
    CKXHostStackStdHid() = default;
    ~CKXHostStackStdHid() override;
    CKXHostStackStdHid(const CKXHostStackStdHid&) = delete;
    CKXHostStackStdHid& operator=(const CKXHostStackStdHid&) = delete;

    int QuerySupport() override { return 1; }
    int QueryOptionA() override { return 0; }
    int QueryOptionB() override { return 0; }
    [[nodiscard]] int Open(IHostStackSink* eventSink, uint16_t vendor, uint16_t product) override;
    void Close() override;
    void Mute() override;
    void Unmute() override;
    void HangUp() override;
    void OffHook() override;
    void Ring() override;
    [[nodiscard]] uint32_t GetMuteState() override { return muteState; }
    [[nodiscard]] uint32_t GetCallState() override { return callState; }
    void OnAudioSdkEvent() override { }

protected:
    // What the reader thread does with one input report.
    void HandleReport(std::span<const uint8_t> report);

    IHostStackSink* sink = nullptr; // not owned; null: nobody hears
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    std::unique_ptr<HidDevice> device;    // changes only while no reader runs
    const Root* descriptorRoot = nullptr; // the cache's
    TelephonyControls controls;

private:
    enum HookState : uint32_t { kHookNeverSet = 0, kOnHook = 1, kOffHook = 2 };

    [[nodiscard]] bool OpenKnown(const Root& tree);
    [[nodiscard]] bool OpenNew();
    void GiveUp();

    static void ReaderRoutine(void* self);
    [[nodiscard]] bool StopRequested();
    void ReadReports();
    void ToggleMute();
    void HandleRinging(std::span<const uint8_t> report);
    void AnsweredOnDevice();
    void RejectedOnDevice();
    void WaitingCallRefusedOnDevice();

    void SendRingOff();
    void SendOffHookOff();
    void SendOffHookOn();
    void SendHoldOff();
    void Send(const Bytes& report);

    std::atomic<uint32_t> muteState = kMuteNeverSet;
    std::atomic<uint32_t> callState = kCallNeverSet;
    std::atomic<uint32_t> hookState = kHookNeverSet; // the hook's position before the ring
    rkb::thread_t readerThread;
    rkb::thread_mutex_recursive lock;
    bool stopRequested = false; // under `lock`
};

} // namespace KX
