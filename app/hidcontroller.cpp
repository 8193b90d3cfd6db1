#include "app/hidcontroller.h"

#include "app/logrecorder.h"

HidController::HidController()
{
    qRegisterMetaType<KXCommand>("KXCommand");
    qRegisterMetaType<KXState>("KXState");

    m_createHost = CreateKXHost;
    m_destroyHost = DestroyKXHost;
    m_isSameConferenceDevice = IsSameConferenceDevice;

    connect(this, &HidController::sig_OnCommandChanged, this, &HidController::slt_OnCommandChanged,
        Qt::QueuedConnection);
    connect(this, &HidController::sig_OnStateChanged, this, &HidController::slt_OnStateChanged,
        Qt::QueuedConnection);
}

HidController::~HidController()
{
    if (m_destroyHost && m_host) {
        sendCall(KXCallIdle);
        m_destroyHost(m_host);
    }
    disconnect();
}

HidController& HidController::instance()
{
    static HidController controller;
    return controller;
}

void HidController::setFlag(bool& flag, bool value, void (HidController::*changed)())
{
    if (flag == value)
        return;
    flag = value;
    (this->*changed)();
}

void HidController::setMuteState(bool muted)
{
    setFlag(m_muteState, muted, &HidController::sig_muteStateChanged);
}

void HidController::setMeetingStatus(bool on)
{
    setFlag(m_meetingStatus, on, &HidController::sig_meetingStatusChanged);
}

void HidController::setRingState(bool ringing)
{
    setFlag(m_ringState, ringing, &HidController::sig_ringStateChanged);
}

void HidController::selectDevice(const QString& id)
{
    if (id == m_deviceId || !m_createHost || !m_destroyHost)
        return;
    if (m_host) {
        sendCall(KXCallIdle);
        log(" KXHost Destroyed");
        m_destroyHost(m_host);
        m_host = nullptr;
        discardQueuedEvents();
    }
    m_deviceId = id;
    createHost();
    syncStateToDevice();
}

// The old host sends no more events, but some may still be queued. Queued calls keep their order,
// so until this one runs, every event that arrives was queued before it.
void HidController::discardQueuedEvents()
{
    ++m_pendingDiscards;
    QMetaObject::invokeMethod(
        this, [this] { --m_pendingDiscards; }, Qt::QueuedConnection);
}

bool HidController::createHost()
{
    if (!m_createHost)
        return false;
    m_host = m_createHost(this);
    if (!m_host)
        return false;
    m_host.load()->SelectDevice(m_deviceId.toStdString().c_str());
    log(" KXHost Created");
    return true;
}

void HidController::syncStateToDevice()
{
    if (m_meetingStatus)
        sendCall(KXCallActive);
    sendMute(m_muteState);
}

void HidController::reserved() { }

void HidController::OnCommand(KXCommand command, void*)
{
    if (m_host)
        Q_EMIT sig_OnCommandChanged(command);
}

void HidController::OnState(KXState state, const uint8_t* value)
{
    if (value && m_host)
        Q_EMIT sig_OnStateChanged(state, *value);
}

void HidController::toggleMuteUnmute()
{
    if (!m_meetingStatus)
        return;
    const bool muted = !m_muteState;
    sendMute(muted);
    setMuteState(muted);
    log(muted ? " Muted from UI" : " Unmuted from UI");
}

void HidController::toggleRing()
{
    sendCall(KXCallRinging);
    log(m_meetingStatus ? " In Meeting and Incoming a New Meeting" : " Incoming Meeting");
    setRingState(true);
}

void HidController::toggleHangup()
{
    if (!m_ringState)
        return;
    sendCall(KXCallIdle);
    if (m_meetingStatus)
        sendCall(KXCallActive); // rejects the ringing call, keeps the running meeting
    log(m_meetingStatus ? " In Meeting and Reject a New Meeting from UI"
                        : " Reject Meeting from UI");
    setRingState(false);
}

void HidController::togglePickup()
{
    if (!m_ringState)
        return;
    if (m_meetingStatus)
        sendCall(KXCallIdle);
    sendCall(KXCallActive);
    log(m_meetingStatus ? " In Meeting and Accept a New Meeting from UI"
                        : " Accept Meeting from UI");
    setMeetingStatus(true);
    setRingState(false);
}

void HidController::slt_OnCommandChanged(KXCommand command)
{
    if (!m_host || m_pendingDiscards > 0)
        return;
    if (command == KXCommand::Accept)
        acceptFromDevice();
    else if (command == KXCommand::Reject)
        rejectFromDevice();
}

// ringState is not checked: a device may accept or reject while nothing rings.
void HidController::acceptFromDevice()
{
    sendCall(KXCallActive);
    setMeetingStatus(true);
    log(" Accept Meeting from device");
    setRingState(false);
}

// In a meeting this sends only off-hook, while toggleHangup() sends on-hook first. This is
// deliberate: the device has already left the ringing call.
void HidController::rejectFromDevice()
{
    sendCall(m_meetingStatus ? KXCallActive : KXCallIdle);
    log(m_meetingStatus ? " In Meeting and Reject a New Meeting from device"
                        : " Reject Meeting from device");
    setRingState(false);
}

// The device's mute state is accepted even while no meeting is on. It is not sent back.
void HidController::slt_OnStateChanged(KXState state, int value)
{
    if (!m_host || m_pendingDiscards > 0 || state != KXState::Mute)
        return;
    const bool muted = value != 0;
    setMuteState(muted);
    log(muted ? " Muted from device" : " Unmuted from device");
}

void HidController::send(KXState state, uint8_t value)
{
    if (IKXHost* host = m_host)
        host->SetState(state, &value);
}

void HidController::sendMute(bool muted)
{
    send(KXState::Mute, muted ? 1 : 0);
}

void HidController::sendCall(KXCallState state)
{
    send(KXState::Call, state);
}

void HidController::log(const char* text) const
{
    LogRecorder::instance().append(m_deviceId + QLatin1String(text));
}
