// The standard HID stack: one USB telephony device, driven through hidapi.
#pragma once

#include "base/src/util/thread.h"
#include "base/src/util/thread_mutex.h"
#include "hid/DescriptorCache.h"
#include "hid/IHostHidStack.h"
#include "hid/IMivoAudioSdkSink.h"
#include "hid/model/TelephonyStateMachine.h"
#include "hid/usb/HidDevice.h"

#include <memory>

namespace KX {

// Owns the device and the reader thread, which runs from Open() to Close(). The reader thread
// passes input reports to the state machine and delivers the events and output reports that result.
// The host's thread runs everything else. `device` changes only while there is no reader thread.
class CKXHostStackStdHid final : public IHostHidStack,
                                 public IMivoAudioSdkSink,
                                 private TelephonyStateMachine::Output {
public:
    // `descriptorCache` must outlive the stack.
    explicit CKXHostStackStdHid(DescriptorCache& descriptorCache = DescriptorCache::Instance());
    ~CKXHostStackStdHid() override;
    CKXHostStackStdHid(const CKXHostStackStdHid&) = delete;
    CKXHostStackStdHid& operator=(const CKXHostStackStdHid&) = delete;

    int QuerySupport() override { return 1; }
    int QueryOptionA() override { return 0; }
    int QueryOptionB() override { return 0; }
    [[nodiscard]] int Open(IHostStackSink* eventSink, uint16_t vendor, uint16_t product) override;
    void Close() override;
    void Mute() override { machine.Mute(); }
    void Unmute() override { machine.Unmute(); }
    void HangUp() override { machine.HangUp(); }
    void OffHook() override { machine.OffHook(); }
    void Ring() override { machine.Ring(); }
    [[nodiscard]] uint32_t GetMuteState() override { return machine.MuteState(); }
    [[nodiscard]] uint32_t GetCallState() override { return machine.CallState(); }
    void OnAudioSdkEvent() override { }

    // Whether the last Open() failed because memory ran out: it may succeed later.
    [[nodiscard]] bool RanOutOfMemory() const { return ranOutOfMemory; }

private:
    [[nodiscard]] bool OpenDevice();
    [[nodiscard]] const Root* OpenKnownDevice(const Root& tree);
    [[nodiscard]] const Root* OpenNewDevice();
    [[nodiscard]] bool OpenAndParse(Root& tree);
    void CloseDevice();

    [[nodiscard]] bool StartReader();
    static void ReaderRoutine(void* self);
    [[nodiscard]] bool StopRequestedWithin(uint32_t milliseconds);
    void ReadReports();

    // Called by the machine, on either thread.
    void Notify(TelephonyStateMachine::Event event) override;
    void Send(const Bytes& report) override;

    DescriptorCache& cache;
    IHostStackSink* sink = nullptr; // not owned; may be null
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    bool ranOutOfMemory = false;
    std::unique_ptr<HidDevice> device;
    TelephonyStateMachine machine{*this};
    rkb::thread_t readerThread;
    rkb::thread_mutex_recursive lock;
    rkb::condition_t stopSignal; // stopRequested was set; used with `lock`
    bool stopRequested = false;  // guarded by `lock`
};

} // namespace KX
