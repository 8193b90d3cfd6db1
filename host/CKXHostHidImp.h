// The one implementation of IKXHost. It maps states to operations of the HID stack and the stack's
// events to the callback. Apart from the stack, it stores only the selected device's key and ids.
// The application decides what the window's buttons do; the stack decides what the LEDs show.
#pragma once

#include "hid/IHostHidStack.h"
#include "hid/IMivoAudioSdkSink.h"
#include "host/IKXHost.h"

#include <memory>
#include <string>

namespace KX {

// Only the application's thread may call the IKXHost operations. The stack calls the sink
// operations on its reader thread, and they call the callback on that thread, without a lock or a
// queue. A stack is destroyed only after its reader thread has ended, so there is no event of an
// earlier device after SelectDevice().
class CKXHostHidImp final : public IKXHost, public IMivoAudioSdkSink, private IHostStackSink {
public:
    // `hostCallback` is not owned and must not be null.
    explicit CKXHostHidImp(IKXHostCallback* hostCallback);
    CKXHostHidImp(const CKXHostHidImp&) = delete;
    CKXHostHidImp& operator=(const CKXHostHidImp&) = delete;

    int GetDeviceId(uint16_t* vendor, uint16_t* product) override;
    void SelectDevice(const char* key) override;
    int Reserved1() override { return 0; }
    void Reserved2() override { }
    void SetState(KXState state, const uint8_t* value) override;
    [[nodiscard]] bool GetState(KXState state, uint8_t* value) override;
    int IsSupported() override;
    void ResetTrace() override;

private:
    void OnDeviceMute() override;
    void OnDeviceUnmute() override;
    void OnDeviceOffHook() override;
    void OnDeviceHangUp() override;

public:
    void OnAudioSdkEvent() override { }
    virtual ~CKXHostHidImp();

private:
    [[nodiscard]] std::unique_ptr<IHostHidStack> OpenStack();
    void ReportMute(uint8_t muted);
    void SetCallState(uint8_t value);

    uint16_t vendorId = 0;
    uint16_t productId = 0;
    IKXHostCallback* callback = nullptr;
    std::string deviceKey;
    std::unique_ptr<IHostHidStack> stack; // null while no device is selected
};

} // namespace KX
