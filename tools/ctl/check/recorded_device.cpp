#include "tools/ctl/check/recorded_device.h"

#include "hid/model/TelephonyStateMachine.h"

#include <cassert>
#include <utility>

namespace ctl {

// As CKXHostHidImp, with the state machine in place of a stack.
class RecordedHost final : public IKXHost, private KX::TelephonyStateMachine::Output {
public:
    RecordedHost(IKXHostCallback& callback, RecordedDevice& device)
        : callback_(callback)
        , device_(device)
    {
        machine_.SetControls(device.controls_);
        device_.host_ = this;
    }
    ~RecordedHost() { device_.host_ = nullptr; }
    RecordedHost(const RecordedHost&) = delete;
    RecordedHost& operator=(const RecordedHost&) = delete;

    int GetDeviceId(uint16_t*, uint16_t*) override { return 0; }
    void SelectDevice(const char*) override { machine_.HangUp(); } // as opening does
    int Reserved1() override { return 0; }
    void Reserved2() override { }
    bool GetState(KXState, uint8_t*) override { return false; }
    int IsSupported() override { return 1; }
    void ResetTrace() override { }

    void SetState(KXState state, const uint8_t* value) override
    {
        if (state == KXState::Mute)
            *value ? machine_.Mute() : machine_.Unmute();
        else if (*value == KXCallRinging)
            machine_.Ring();
        else if (*value == KXCallActive)
            machine_.OffHook();
        else
            machine_.HangUp();
    }

    void handle(const report::Bytes& report) { machine_.HandleReport(report); }

private:
    void Notify(KX::TelephonyStateMachine::Event event) override
    {
        using Event = KX::TelephonyStateMachine::Event;
        if (event == Event::OffHook || event == Event::HangUp) {
            callback_.OnCommand(
                event == Event::OffHook ? KXCommand::Accept : KXCommand::Reject, nullptr);
        } else {
            const uint8_t muted = event == Event::Mute;
            callback_.OnState(KXState::Mute, &muted);
        }
    }

    void Send(const KX::Bytes& report) override
    {
        device_.journal_->add({.kind = Entry::Kind::kSent, .report = report});
    }

    IKXHostCallback& callback_;
    RecordedDevice& device_;
    KX::TelephonyStateMachine machine_{*this};
};

RecordedDevice::RecordedDevice(KX::TelephonyControls controls)
    : controls_(std::move(controls))
{
}

RecordedDevice::~RecordedDevice()
{
    assert(!host_);
}

std::unique_ptr<Session> RecordedDevice::open(Journal& journal)
{
    assert(!host_);
    journal_ = &journal;
    const HostFunctions functions{
        .create = [this](IKXHostCallback* callback) { return new RecordedHost(*callback, *this); },
        .destroy = [](IKXHost* host) { delete static_cast<RecordedHost*>(host); }};
    auto session = std::make_unique<Session>(journal, functions, QStringLiteral("recording"));
    controller_ = &session->meeting();
    return session;
}

void RecordedDevice::receive(const report::Bytes& report)
{
    assert(host_);
    journal_->add({.kind = Entry::Kind::kReceived, .report = report});
    host_->handle(report);
}

bool RecordedDevice::isOffHook() const
{
    return host_ && controller_->meetingStatus();
}

} // namespace ctl
